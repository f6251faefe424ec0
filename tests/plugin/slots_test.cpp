/// The contract with the host: exported names, slots by position, loading and unloading.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/hex.h"

namespace test {
namespace {

std::vector<std::string> ExportsOfTheLibrary() {
  const std::unique_ptr<FILE, int (*)(FILE*)> symbols(popen("nm -D --defined-only '" ZARN_LIGHTING_PATH "'", "r"),
                                                      pclose);
  std::vector<std::string> names;
  char address[64];
  char kind[8];
  char name[512];
  while (std::fscanf(symbols.get(), "%63s %7s %511s", address, kind, name) == 3) names.emplace_back(name);
  std::sort(names.begin(), names.end());
  return names;
}

bool IsLoaded(const std::string& path) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library != nullptr) dlclose(library);
  return library != nullptr;
}

std::ptrdiff_t ThreadCount() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks));
}

TEST(Exports, AreTheSevenAndNothingElse) {
  EXPECT_EQ(ExportsOfTheLibrary(),
            (std::vector<std::string>{
                "CheckDeviceStatus", "CreateRGBController_ZarnECGlobalClassInstance",
                "CreateRGBController_ZarnECKeyboardClassInstance", "CreateRGBController_ZarnHIDKeyboardClassInstance",
                "CreateZarnECGlobalControllerClassInstance", "CreateZarnECKeyboardControllerClassInstance",
                "CreateZarnHIDKeyboardControllerClassInstance"}));
}

class Loading : public MachineTest {};

TEST_F(Loading, RunsNothingAndUnloadingLeavesNothing) {
  const TemporaryFolder folder;  // a copy counts as another library than the one that this process has loaded
  const std::string path = folder.path() / "copy.so";
  std::filesystem::copy(ZARN_LIGHTING_PATH, path);
  int calls = 0;
  platform::SetJournal([&](const platform::JournalEntry&) { ++calls; });
  const auto threads = ThreadCount();
  {
    const Plugin plugin(path.c_str());
    EXPECT_TRUE(IsLoaded(path));
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(ThreadCount(), threads);
    plugin.Create("ZarnECKeyboard")->RequestColorPush();
  }
  platform::SetJournal(nullptr);
  // The destructors have run by then, and LeakSanitizer would find what they left.
  EXPECT_FALSE(IsLoaded(path));
}

class Slots : public PluginTest {};

TEST_F(Slots, AnswerAtTheirPositions) {
  machine->SetSmbios(TableWithItems(2, 91, {{8, 4}}));
  RGBControllerInterface* const keyboard = plugin().Create("ZarnECKeyboard").release();
  const auto pack = [&](std::size_t slot, auto... arguments) {
    return Take(CallSlot<std::uint8_t*>(keyboard, slot, arguments...));
  };
  const auto unpack = [&](std::size_t slot, const Bytes& bytes, auto... version) {
    CallSlot(keyboard, slot, bytes.data(), version...);
  };
  CallSlot(keyboard, 3, PackedColor{0x111111});
  CallSlot(keyboard, 4, std::int32_t{0}, PackedColor{0x222222});
  CallSlot(keyboard, 2, std::uint32_t{2}, PackedColor{0x123456});
  CallSlot(keyboard, 0);
  EXPECT_EQ(CallSlot<PackedColor>(keyboard, 1, std::uint32_t{2}), 0x123456U);
  unpack(12, Hex("0a 00 00 00 01 00 01 00 00 00"));
  EXPECT_EQ(pack(11), Hex("16 00 00 00 04 00 01 00 00 00 22 22 22 00 56 34 12 00 22 22 22 00"));
  unpack(14, Hex("0e 00 00 00 00 00 00 00 01 00 02 00 00 00"));
  EXPECT_EQ(pack(13, std::int32_t{0}),
            Hex("1a 00 00 00 00 00 00 00 04 00 02 00 00 00 22 22 22 00 56 34 12 00 22 22 22 00"));
  unpack(16, Hex("03 00 00 00 aa bb cc 00"));
  const std::unique_ptr<std::uint8_t[]> one(CallSlot<std::uint8_t*>(keyboard, 15, std::int32_t{3}));
  EXPECT_EQ(Bytes(one.get(), one.get() + 8), Hex("03 00 00 00 aa bb cc 00"));

  const Bytes breathing = pack(9, std::int32_t{2}, std::uint32_t{3});
  EXPECT_EQ(breathing.size(), pack(9, std::int32_t{2}, std::uint32_t{2}).size() + 12);
  unpack(10, breathing, std::uint32_t{3});
  EXPECT_EQ(CallSlot<std::int32_t>(keyboard, 5), 2);
  CallSlot(keyboard, 32);
  EXPECT_EQ(CallSlot<std::int32_t>(keyboard, 5), 0);
  unpack(8, pack(7, std::uint32_t{3}), std::uint32_t{3});
  CallSlot(keyboard, 25);
  const ControllerRecords twice = DescriptionOf(*keyboard);
  EXPECT_EQ(twice.mode_list.size(), 18U);
  EXPECT_EQ(twice.led_list.size(), 12U);

  for (const std::size_t nothing : {23U, 24U, 26U, 31U}) CallSlot(keyboard, nothing);  // 24: the worker's own
  EXPECT_EQ(machine->TakeCalls().size(), 0U);
  CallSlot(keyboard, 6, std::int32_t{4});  // calls slot 22
  CallSlot(keyboard, 34);                  // slot 33 that also frees; the pending push runs first
  EXPECT_EQ(machine->TakeCalls().size(), 1U);
}

TEST_F(Slots, NullForAFactoryGivesNull) {
  for (const char* const name : {"ZarnECGlobal", "ZarnECKeyboard", "ZarnHIDKeyboard"}) {
    EXPECT_EQ(plugin().CreateAround(name, nullptr), nullptr);
  }
}

}  // namespace
}  // namespace test
