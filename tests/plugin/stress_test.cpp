/// Many controllers, many threads: what ThreadSanitizer is for. ZARN_STRESS_ROUNDS sets the number of rounds.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "tests/plugin/plugin_fixture.h"

namespace test {
namespace {

class Stress : public PluginTest {
 protected:
  Stress() {
    machine->SetSmbios(TableWithItems(2, 91, {{8, 4}}));
    machine->answer = [this](const FirmwareCall& call) {
      ++(call.method == L"SetGamingLED" ? color_pushes : other_calls);
      return FirmwareAnswer{S_OK, {{L"gmOutput", std::uint32_t{0}}}};
    };
  }

  static int Rounds() {
    const char* const rounds = std::getenv("ZARN_STRESS_ROUNDS");
    return rounds != nullptr ? std::atoi(rounds) : 2000;
  }

  std::atomic<int> color_pushes = 0;
  std::atomic<int> other_calls = 0;
};

TEST_F(Stress, CreatedDrivenAndDestroyedOverAndOverEveryFirstRequestIsCarriedOut) {
  const int rounds = Rounds();
  for (int i = 0; i < rounds; ++i) {
    const auto keyboard = plugin().Create("ZarnECKeyboard");
    keyboard->RequestColorPush();
    if (i % 2 == 0) continue;
    // From here on a request may be absorbed by a running one, or end with its controller.
    keyboard->ChooseMode(2 + i % 7);
    keyboard->PaintAllZones(static_cast<PackedColor>(i));
    keyboard->WriteModeToDevice();
  }
  EXPECT_EQ(color_pushes, rounds);
}

TEST_F(Stress, RecordsMayBeChangedFromManyThreadsWhilePushesRun) {
  const auto keyboard = plugin().Create("ZarnECKeyboard");
  keyboard->AddChangeListener([](void* heard) { ++*static_cast<std::atomic<int>*>(heard); }, &other_calls);
  const auto description = Take(keyboard->PackDescription(3));
  const auto work = [&](int rounds) {
    for (int i = 0; i < rounds; ++i) {
      keyboard->RebindZoneStorage();
      keyboard->StoreLedColor(static_cast<std::uint32_t>(i % 4), keyboard->FetchLedColor(1) + 1);
      keyboard->PaintAllZones(static_cast<PackedColor>(i));
      keyboard->PaintZone(0, 7);
      keyboard->ChooseMode(keyboard->CurrentModeIndex() == 1 ? 2 : 1);
      keyboard->UnpackModePacket(Take(keyboard->PackModePacket(i % 9, 3)).data(), 3);
      keyboard->UnpackColorTablePacket(Take(keyboard->PackColorTablePacket()).data());
      keyboard->UnpackZoneColorsPacket(Take(keyboard->PackZoneColorsPacket(0)).data());
      const std::unique_ptr<std::uint8_t[]> one_color(keyboard->PackOneColorPacket(i % 4));
      keyboard->UnpackOneColorPacket(one_color.get());
      if (i % 16 == 0) keyboard->UnpackDescription(description.data(), 3);
      Take(keyboard->PackDescription(static_cast<std::uint32_t>(i % 4)));
      keyboard->NotifyChangeListeners();
      keyboard->RequestColorPush();
      keyboard->RequestModePush();
    }
  };
  std::vector<std::thread> hosts;
  hosts.reserve(4);
  for (int i = 0; i < 4; ++i) hosts.emplace_back(work, 100);
  for (std::thread& host : hosts) host.join();
  // The hosts may be done before the worker begins.
  while (color_pushes == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

/// Two controllers' workers and a host's thread, with the log on.
TEST_F(Stress, HidKeyboardsAreDrivenFromManyThreads) {
  SwitchLogOn();
  ScriptedHid& hid = machine->Plug(VendorCollection(0xFF5A, {{0xA3, 0x35, 8}, {0xA4, 0x41, 8}, {0xA4, 0x48, 16}}));
  hid.answers[0xA1] = {0xA1, 1, 0x21};
  hid.answers[0xA3] = {0xA3, 0x21, 2};
  std::atomic<int> exchanges = 0;
  hid.fail = [&exchanges](auto) { return ++exchanges % 7 == 0 ? ERROR_GEN_FAILURE : ERROR_SUCCESS; };
  plugin().Discover();
  const auto create = [] { return plugin().Create("ZarnHIDKeyboard"); };
  const auto first = create();
  auto second = create();
  std::thread host([&] {
    for (int i = 0; i < 50; ++i) {
      first->StoreLedColor(0, static_cast<PackedColor>(i));
      first->WriteLedToDevice(i % 2);
    }
  });
  for (int i = 0; i < 20; ++i) {
    first->RequestColorPush();
    first->ChooseMode(i % 2);
    second->RequestModePush();
    second->WriteModeToDevice();
    if (i % 5 == 0) second = create();  // one goes, and closes the handles that the other one uses
    if (i % 5 == 1) {
      EXPECT_EQ(plugin().Discover().count, 1);
    }
  }
  host.join();
  EXPECT_GT(hid.TakeReports().size(), 50U);
}

}  // namespace
}  // namespace test
