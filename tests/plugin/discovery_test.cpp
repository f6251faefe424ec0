/// Discovery where no profile leads: odd records, failing platform calls, memory running out.

#include <gtest/gtest.h>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/fault_driver.h"

namespace test {
namespace {

/// The firmware confirms a light bar.
class Discovery : public PluginTest {
 protected:
  Discovery() {
    machine->answer = [](const FirmwareCall&) {
      return FirmwareAnswer{S_OK, {{L"gmOutput", Bytes{0, 0, 0, 0, 0, 7, 7}}, {L"gmReturn", std::uint64_t{0}}}};
    };
  }
  std::int32_t CountWith(const std::vector<std::pair<int, int>>& items) {
    machine->SetSmbios(TableWithItems(2, 91, items));
    return plugin().Discover().count;
  }
};

TEST_F(Discovery, ItemsCountInTheirOrderUpToTheFirstLightBar) {
  EXPECT_EQ(CountWith({{8, 1}, {10, 2}, {23, 1}, {8, 0}}), 2);
  EXPECT_EQ(CountWith({{8, 1}, {10, 2}, {23, 2}, {23, 1}}), 1);
  EXPECT_EQ(CountWith({{8, 1}, {10, 2}, {23, 5}, {23, 1}}), 1);
  EXPECT_EQ(CountWith({{23, 1}, {8, 1}, {10, 2}}), 0);
  EXPECT_EQ(CountWith({{8, 1}, {10, 2}}), 1);
  EXPECT_EQ(CountWith({{8, 4}, {10, 2}, {23, 5}}), 1);
  EXPECT_EQ(CountWith({{8, 0}, {10, 1}, {9, 9}, {8, 3}, {10, 2}}), 1);  // later ones override
  EXPECT_EQ(CountWith({{8, 3}, {10, 2}, {8, 2}, {10, 3}}), 1);          // other values change nothing
  EXPECT_EQ(CountWith({{8, 2}, {10, 2}}), 0);
  EXPECT_EQ(CountWith({{8, 0x0101}, {10, 2}}), 0);
  EXPECT_EQ(CountWith({{8, 1}, {10, 2}, {10, 1}}), 0);
  EXPECT_EQ(CountWith({{8, 1}, {10, 2}, {8, 0}}), 0);
}

TEST_F(Discovery, FailuresShowInTheCountAloneAndLeaveNothingOpen) {
  ScriptedHid& keyboard = machine->Plug(VendorCollection(0xFF5A, {{0xA4, 0x41, 8}}));
  keyboard.answers[0xA1] = {0xA1, 1, 0x22};  // no keyboard, so discovery goes on to the firmware
  machine->SetSmbios(TableWithItems(2, 91, {{8, 1}, {10, 2}, {23, 1}}));
  // A list that holds a device is never built again, so every run needs a fresh plug-in.
  auto fresh = std::make_unique<FreshPlugin>();
  Discovered found;
  ::testing::internal::CaptureStderr();
  FailInTurn([&] { found = (*fresh)->Discover(); },
             [&](const FaultRun& run) {
               if (run.threw_bad_alloc || found.interface_type == 99) {
                 // The host's own texts had no room, or discovery had no memory and touched nothing.
                 EXPECT_EQ(found, Discovered());
                 EXPECT_TRUE(run.met);
               } else {
                 const wchar_t* const names[] = {L"as it was", L"ZarnECKeyboard", L"ZarnECGlobal,ZarnECKeyboard"};
                 EXPECT_EQ(found.names, names[found.count]);
                 EXPECT_TRUE(run.met || found.count == 2);
               }
               found = {};
               fresh = std::make_unique<FreshPlugin>();
             });
  ::testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace test
