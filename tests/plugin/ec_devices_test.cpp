/// The EC devices where no profile leads: odd records, odd answers, firmware that holds a call.

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "tests/plugin/plugin_fixture.h"

namespace test {
namespace {

class EcKeyboard : public PluginTest {
 protected:
  using Items = std::vector<std::pair<int, int>>;

  EcKeyboard() { UseFirmware(2, 91, {{8, 4}}); }

  void UseFirmware(std::uint8_t major, std::uint8_t minor, const Items& items) {
    machine->SetSmbios(TableWithItems(major, minor, items));
    keyboard = plugin().Create("ZarnECKeyboard");
  }
  std::unique_ptr<RGBControllerInterface> keyboard;
};

TEST_F(EcKeyboard, ZonesFollowTheFirmwaresRecord) {
  const std::pair<Items, std::size_t> cases[] = {
      {{{8, 1}}, 1}, {{{10, 2}, {8, 3}, {8, 4}}, 3},  // the first item counts
      {{{8, 0}}, 0}, {{{8, 2}}, 0},                   //
      {{{8, 5}}, 0}, {{{8, 0x0104}}, 0},              //
      {{}, 0}};
  for (const auto& [items, leds] : cases) {
    UseFirmware(3, 0, items);
    EXPECT_EQ(DescriptionOf(*keyboard).zone_list.size(), 1U);
    EXPECT_EQ(DescriptionOf(*keyboard).led_list.size(), leds);
  }
}

TEST_F(EcKeyboard, RecordsMayBeChangedWhileTheFirmwareHoldsAPush) {
  std::latch inside(1);
  std::latch go_on(1);
  machine->answer = [&](const FirmwareCall&) {
    inside.count_down();
    go_on.wait();
    return FirmwareAnswer{S_OK, {{L"gmOutput", std::uint32_t{0}}}};
  };
  keyboard->UnpackModePacket(Take(keyboard->PackModePacket(2, 3)).data(), 3);
  std::thread host([&] { keyboard->WriteModeToDevice(); });
  inside.wait();
  keyboard->StoreLedColor(0, 5);
  keyboard->UnpackDescription(Take(keyboard->PackDescription(3)).data(), 3);
  keyboard->SelectFirstMode();
  EXPECT_EQ(DescriptionOf(*keyboard).mode_list.size(), 18U);
  go_on.count_down();
  host.join();
}

TEST_F(EcKeyboard, ColourPathLogsItsStepsBytesAndOutcomes) {
  UseFirmware(2, 85, {{8, 1}});
  SwitchLogOn();
  keyboard->StoreLedColor(0, 0xC0B0A0);
  machine->answer = [](const FirmwareCall& call) {
    return FirmwareAnswer{S_OK, {{L"gmOutput", std::uint32_t{call.method == L"SetGamingLED" ? 0xABCU : 0x80000001U}}}};
  };
  keyboard->WriteColorsToDevice();
  const auto numbered = [](const std::string& operation, const std::string& text,
                           std::initializer_list<const char*> bytes) {
    std::string lines;
    for (std::size_t i = 0; const char* const byte : bytes)
      lines += LogLine(operation, text + "input[" + std::to_string(i++) + "]" + byte);
    return lines;
  };
  const std::string switches =
      LogLine("SendColors", "WMI stSMBiosType172: 2.85") +
      numbered("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction ",
               {": 0x08", ": 0x00", ": 0x00", ": 0x00", ": 0x00", ": 0x01", ": 0x00", ": 0x00"});
  const std::string brightness =
      numbered("SetKeyboardBrightness", "ECKeyboard::SetGamingKbbacklightFunction() ",
               {":0x0", ":0x0", ":0x32", ":0x0", ":0x0", ":0x0", ":0x0", ":0x0", ":0x3", ":0x1"});
  const std::string color =
      LogLine("SetKeyboardColor", "ECKeyboard::SetGamingRgbKbSettingFunction() Zone1, input: 0xC0B0A001");
  EXPECT_EQ(NewLog(),
            switches + LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction output : 0xABC") + brightness +
                LogLine("SetKeyboardBrightness", "WMI SetGamingKbbacklightFunction output : 0xFFFFFFFF80000001") +
                color);
  machine->has_firmware = false;
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(NewLog(), switches + LogLine("SetKeyboardOnOff", "SetGamingLEDBehaviorFunction is fail!!") + brightness +
                          LogLine("SetKeyboardBrightness", "SetGamingKbbacklightFunction is fail!!") + color);
}

}  // namespace
}  // namespace test
