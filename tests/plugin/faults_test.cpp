/// The plug-in when the platform or memory fails, call by call.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/fault_driver.h"

namespace test {
namespace {

class Faults : public PluginTest {
 protected:
  Faults() { machine->SetSmbios(TableWithItems(2, 91, {{8, 4}, {23, 1}})); }
};

TEST_F(Faults, DevicesThatCannotBeBuiltLeaveTheirControllersWithTheHost) {
  for (const std::string name : {"ZarnECKeyboard", "ZarnECGlobal"}) {
    void* controller = plugin().CreateController(name);
    std::unique_ptr<RGBControllerInterface> device;
    FailInTurn([&] { device = plugin().CreateAround(name, controller); },
               [&](const FaultRun& run) {
                 EXPECT_EQ(run.threw_bad_alloc, run.met);  // construction calls no platform
                 EXPECT_EQ(device == nullptr, run.met);
                 device.reset();
                 if (!run.met) controller = plugin().CreateController(name);
               });
    EXPECT_NE(plugin().CreateAround(name, controller), nullptr);
  }
}

TEST_F(Faults, PushesUnderFaultsReturnAndLeaveTheRecordsAsTheyWere) {
  SwitchLogOn();  // its calls fail in turn, too
  const auto keyboard = plugin().Create("ZarnECKeyboard");
  keyboard->StoreLedColor(2, 0x00FF00);
  const auto before = Take(keyboard->PackDescription(3));
  const auto check = [&](std::size_t calls_without_fault) {
    return [&, calls_without_fault](const FaultRun& run) {
      EXPECT_FALSE(run.threw_bad_alloc);
      const std::size_t calls = machine->TakeCalls().size();
      EXPECT_LE(calls, calls_without_fault);
      // One platform call that fails costs one firmware call at most.
      const bool once = run.fault.source == Fault::Source::PlatformCall && !run.fault.for_ever;
      EXPECT_TRUE(!once || calls + 1 >= calls_without_fault);
      EXPECT_TRUE(run.met || calls == calls_without_fault);
    };
  };
  FailInTurn([&] { keyboard->WriteColorsToDevice(); }, check(6));
  EXPECT_EQ(Take(keyboard->PackDescription(3)), before);
  keyboard->UnpackModePacket(Take(keyboard->PackModePacket(2, 3)).data(), 3);
  FailInTurn([&] { keyboard->WriteModeToDevice(); }, check(1));
  const auto light = plugin().Create("ZarnECGlobal");
  light->UnpackModePacket(Take(light->PackModePacket(1, 3)).data(), 3);
  FailInTurn([&] { light->WriteModeToDevice(); }, check(1));
}

/// A plug-in whose list of lighting devices is built, with one keyboard of one zone.
class HidFaults : public MachineTest {
 protected:
  HidFaults() {
    keyboard.answers[0xA1] = {0xA1, 1, 0x21};
    keyboard.answers[0xA3] = {0xA3, 0x21, 1};
    EXPECT_EQ(fresh->Discover().count, 1);
  }

  void* CreateController() { return fresh->CreateController("ZarnHIDKeyboard"); }
  std::unique_ptr<RGBControllerInterface> CreateAround(void* controller) {
    return fresh->CreateAround("ZarnHIDKeyboard", controller);
  }
  std::unique_ptr<RGBControllerInterface> Create() { return CreateAround(CreateController()); }
  /// Unplugs all keyboards after so many platform calls of `operation`, or at its end.
  void UnplugAfter(std::uint64_t calls, const std::function<void()>& operation) {
    platform::SetJournal([this, &calls](const platform::JournalEntry&) {
      if (calls-- == 0) machine->hid_devices.clear();
    });
    operation();
    platform::SetJournal({});
    machine->hid_devices.clear();
  }

  ScriptedHid& keyboard = machine->Plug(VendorCollection(0xFF5A, {{0xA3, 0x35, 8}, {0xA4, 0x41, 8}, {0xA4, 0x45, 8}}));
  FreshPlugin fresh;
};

TEST_F(HidFaults, AKeyboardIsCreatedOrLeavesNothingBehind) {
  void* controller = nullptr;
  FailInTurn([&] { controller = CreateController(); },
             [&](const FaultRun& run) {
               EXPECT_TRUE(!run.threw_bad_alloc || run.fault.source == Fault::Source::Memory);
               if (!run.threw_bad_alloc) {
                 const auto device = CreateAround(std::exchange(controller, nullptr));
                 // It is asked up to five times, so a call that fails once costs nothing.
                 EXPECT_TRUE(DescriptionOf(*device).led_list.size() == 1 || (run.met && run.fault.for_ever));
               }
               Create();  // closes what a failed controller left open in the list
             });
}

TEST_F(HidFaults, PushesUnderFaultsReturnAndReachTheKeyboardOnceThereAreNone) {
  auto device = Create();
  device->StoreLedColor(0, 0xFF);
  const auto before = Take(device->PackDescription(3));
  Bytes report = {0xA4, 0x21, 2, 0xFF};
  report.resize(65);
  const auto check = [&](const FaultRun& run) {
    EXPECT_FALSE(run.threw_bad_alloc);
    // A call that fails once costs one attempt of five. Memory that runs out once costs the push.
    const bool may_be_lost = run.met && (run.fault.for_ever || run.fault.source == Fault::Source::Memory);
    EXPECT_TRUE(keyboard.TakeReports() == std::vector<Bytes>{report} || may_be_lost);
    Create();  // closes the list's handles
    keyboard.TakeReports();
  };
  Create();
  keyboard.TakeReports();
  FailInTurn([&] { device->WriteColorsToDevice(); }, check);
  FailInTurn([&] { device->WriteLedToDevice(0); }, check);
  EXPECT_EQ(Take(device->PackDescription(3)), before);
  device->UnpackModePacket(Take(device->PackModePacket(1, 3)).data(), 3);  // "STATIC", black
  report[3] = 0;
  FailInTurn([&] { device->WriteModeToDevice(); }, check);
}

TEST_F(HidFaults, UnpluggedBeforeAnyCallItComesBackWithTheNextPush) {
  const auto device = Create();
  const std::function<void()> operations[] = {[&] { device->WriteLedToDevice(0); },
                                              [&] { device->WriteColorsToDevice(); },
                                              [&] { device->WriteModeToDevice(); }, [&] { Create(); }};
  for (const auto& operation : operations) {
    for (std::uint64_t calls = 0; calls < 20; ++calls) {
      UnplugAfter(calls, operation);
      ScriptedHid& replugged = machine->Plug(VendorCollection(0xFF5A, {}));
      device->WriteLedToDevice(0);
      EXPECT_EQ(replugged.TakeReports().size(), 1U) << "unplugged after call " << calls;
      EXPECT_EQ(platform::TakeComplaints(), std::vector<std::string>{});
    }
  }
}

TEST_F(Faults, SlotsThatRunOutOfMemoryChangeNothing) {
  auto keyboard = plugin().Create("ZarnECKeyboard");
  const auto before = Take(keyboard->PackDescription(3));
  const auto mode_packet = Take(keyboard->PackModePacket(5, 3));
  const auto check = [&](const FaultRun& run) {
    EXPECT_EQ(run.threw_bad_alloc, run.met);
    EXPECT_EQ(Take(keyboard->PackDescription(3)) == before, run.met);
    if (!run.met) keyboard = plugin().Create("ZarnECKeyboard");
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
