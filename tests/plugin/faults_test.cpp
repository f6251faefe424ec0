/// What the plug-in does when the platform or memory fails under it, call by call.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/fault_driver.h"

namespace test {
namespace {

class Faults : public PluginTest {
 protected:
  Faults() { machine->SetSmbios(TableWithItems(2, 91, {{8, 4}})); }

  /// How many zones the keyboard around `controller` has, which it takes over.
  static std::size_t ZonesOf(ZarnECKeyboardController* controller) {
    const std::unique_ptr<RGBControllerInterface> keyboard(plugin().CreateKeyboard(controller));
    ControllerRecords records;
    UnpackDescription(records, Take(keyboard->PackDescription(3)), 3);
    return records.led_list.size();
  }
};

TEST_F(Faults, KeyboardControllerWhoseRecordCannotBeReadHasNoZones) {
  ZarnECKeyboardController* controller = nullptr;
  FailInTurn([&] { controller = plugin().CreateKeyboardController(); },
             [&](const FaultRun& run) {
               if (run.threw_bad_alloc) {
                 EXPECT_EQ(run.fault.source, Fault::Source::Memory);
                 EXPECT_EQ(controller, nullptr);
                 return;
               }
               EXPECT_EQ(ZonesOf(std::exchange(controller, nullptr)), run.met ? 0U : 4U);
             });
}

TEST_F(Faults, KeyboardThatCannotBeBuiltLeavesItsControllerWithTheHost) {
  ZarnECKeyboardController* controller = plugin().CreateKeyboardController();
  RGBControllerInterface* keyboard = nullptr;
  FailInTurn([&] { keyboard = plugin().CreateKeyboard(controller); },
             [&](const FaultRun& run) {
               EXPECT_EQ(run.threw_bad_alloc, run.met);  // construction calls no platform
               EXPECT_EQ(keyboard == nullptr, run.met);
               if (keyboard == nullptr) return;
               std::unique_ptr<RGBControllerInterface>(std::exchange(keyboard, nullptr))->WriteColorsToDevice();
               EXPECT_EQ(machine->TakeCalls().size(), 6U);
               controller = plugin().CreateKeyboardController();
             });
  ZonesOf(controller);
}

TEST_F(Faults, PushesUnderFaultsReturnAndLeaveTheRecordsAsTheyWere) {
  SwitchLogOn();  // so that the log's calls fail in turn as well
  const auto keyboard = plugin().CreateKeyboard();
  keyboard->StoreLedColor(2, 0x00FF00);
  const auto before = Take(keyboard->PackDescription(3));
  std::size_t calls_without_fault = 6;
  const auto check = [&](const FaultRun& run) {
    EXPECT_FALSE(run.threw_bad_alloc);
    const std::size_t calls = machine->TakeCalls().size();
    if (!run.met) {
      EXPECT_EQ(calls, calls_without_fault);
    }
    EXPECT_LE(calls, calls_without_fault);
  };
  FailInTurn([&] { keyboard->WriteColorsToDevice(); },
             [&](const FaultRun& run) {
               // One platform call that fails costs one firmware call at most.
               if (run.fault.source == Fault::Source::PlatformCall && !run.fault.for_ever) {
                 EXPECT_GE(machine->CallCount(), calls_without_fault - 1);
               }
               check(run);
             });
  EXPECT_EQ(Take(keyboard->PackDescription(3)), before);
  keyboard->UnpackModePacket(Take(keyboard->PackModePacket(1, 3)).data(), 3);  // "STATIC"
  FailInTurn([&] { keyboard->WriteModeToDevice(); }, check);

  keyboard->UnpackModePacket(Take(keyboard->PackModePacket(2, 3)).data(), 3);
  calls_without_fault = 1;
  FailInTurn([&] { keyboard->WriteModeToDevice(); }, check);
}

TEST_F(Faults, SlotsThatRunOutOfMemoryChangeNothing) {
  auto keyboard = plugin().CreateKeyboard();
  const auto before = Take(keyboard->PackDescription(3));
  const auto mode_packet = Take(keyboard->PackModePacket(5, 3));
  const auto check = [&](const FaultRun& run) {
    EXPECT_EQ(run.threw_bad_alloc, run.met);
    EXPECT_EQ(Take(keyboard->PackDescription(3)) == before, run.met);
    if (!run.met) keyboard = plugin().CreateKeyboard();
  };
  FailInTurn([&] { keyboard->UnpackModePacket(mode_packet.data(), 3); }, check);
  FailInTurn([&] { keyboard->UnpackDescription(before.data(), 3); }, check);
  FailInTurn([&] { keyboard->DefineLayout(); }, check);
  keyboard->AddChangeListener([](void*) {}, nullptr);
  FailInTurn([&] { keyboard->NotifyChangeListeners(); },
             [](const FaultRun& run) { EXPECT_EQ(run.threw_bad_alloc, run.met); });
}

}  // namespace
}  // namespace test
