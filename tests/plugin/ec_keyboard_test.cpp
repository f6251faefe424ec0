/// The EC keyboard as a host has it: through the plug-in's exports and slots, over a machine that records.

#include <gtest/gtest.h>

#include <latch>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "tests/plugin/plugin_fixture.h"
#include "tests/support/hex.h"

namespace test {
namespace {

class EcKeyboard : public PluginTest {
 protected:
  EcKeyboard() { UseFirmware(2, 91, {{8, 4}}); }

  void UseFirmware(std::uint8_t major, std::uint8_t minor, const std::vector<std::pair<int, int>>& items) {
    machine->SetSmbios(TableWithItems(major, minor, items));
    keyboard = plugin().CreateKeyboard();
    machine->TakeCalls();
  }

  /// Replaces the settings of a mode by a packet, as a host does, and makes it the active one.
  void Choose(std::int32_t index, std::uint32_t speed, std::uint32_t brightness, std::uint32_t direction,
              const std::vector<PackedColor>& colors) {
    ControllerRecords records = Describe();
    ModeRecord& mode = records.mode_list.at(static_cast<std::size_t>(index));
    mode.speed_setting = speed;
    mode.brightness_setting = brightness;
    mode.direction_setting = direction;
    mode.mode_colors = colors;
    keyboard->UnpackModePacket(PackModePacket(records, index, 3).bytes.get(), 3);
  }
  ControllerRecords Describe() const {
    ControllerRecords records;
    EXPECT_TRUE(UnpackDescription(records, Take(keyboard->PackDescription(3)), 3));
    return records;
  }
  /// What crossed the wire since the last call, a line each: bytes in hexadecimal, numbers as they are.
  std::string Wire() const {
    std::string wire;
    for (const FirmwareCall& call : machine->TakeCalls()) {
      wire += std::string(call.method.begin(), call.method.end()) + ":" + InWords(call.input) + "\n";
    }
    return wire;
  }

  std::unique_ptr<RGBControllerInterface> keyboard;
};

/// The description of the four-zone keyboard behind its total_size; what stands between <1 and > is there from version
/// 1 on, between <3 and > from version 3 on.
constexpr char kDescription[] =
    "05 00 00 00 18 00 5a 61 72 6e 20 45 43 20 4b 65 79 62 6f 61 72 64 20 44 65 76 69 63 65 00 "
    "<1 05 00 5a 61 72 6e 00 > 18 00 5a 61 72 6e 20 45 43 20 4b 65 79 62 6f 61 72 64 20 44 65 76 69 63 65 00 "
    "01 00 00 01 00 00 01 00 00 09 00 00 00 00 00 "
    "07 00 44 69 72 65 63 74 00 ff 00 00 00 30 00 00 00 00 00 00 00 00 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 00 00 00 00 00 00 00 00 00 00 00 00 <3 32 00 00 00 > 00 00 00 00 01 00 00 00 00 00 "
    "07 00 53 54 41 54 49 43 00 00 00 00 00 51 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 01 00 00 00 01 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 02 00 00 00 01 00 "
    "00 00 00 00 "
    "0a 00 42 52 45 41 54 48 49 4e 47 00 01 00 00 00 51 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 01 00 00 00 01 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 02 00 00 00 01 00 "
    "00 00 00 00 "
    "05 00 4e 45 4f 4e 00 02 00 00 00 11 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 00 00 00 00 00 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 00 00 00 00 00 00 "
    "05 00 57 41 56 45 00 03 00 00 00 1f 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 00 00 00 00 00 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 00 00 00 00 00 00 "
    "09 00 53 48 49 46 54 49 4e 47 00 04 00 00 00 53 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 01 00 00 00 01 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 02 00 00 00 01 00 "
    "00 00 00 00 "
    "05 00 5a 4f 4f 4d 00 05 00 00 00 51 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 01 00 00 00 01 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 02 00 00 00 01 00 "
    "00 00 00 00 "
    "07 00 4d 45 54 45 4f 52 00 06 00 00 00 51 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 01 00 00 00 01 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 02 00 00 00 01 00 "
    "00 00 00 00 "
    "0a 00 54 57 49 4e 4b 4c 49 4e 47 00 07 00 00 00 51 00 00 00 01 00 00 00 09 00 00 00 "
    "<3 00 00 00 00 64 00 00 00 > 01 00 00 00 01 00 00 00 05 00 00 00 <3 32 00 00 00 > 00 00 00 00 02 00 00 00 01 00 "
    "00 00 00 00 "
    "01 00 18 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 00 "
    "01 00 00 00 04 00 00 00 04 00 00 00 04 00 00 00 00 00 04 00 "
    "1a 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 20 31 00 00 00 00 00 "
    "1a 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 20 32 00 00 00 00 00 "
    "1a 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 20 33 00 00 00 00 00 "
    "1a 00 4b 65 79 62 6f 61 72 64 20 42 61 63 6b 6c 69 67 68 74 20 7a 6f 6e 65 20 34 00 00 00 00 00 "
    "04 00 ff 00 00 00 00 ff 00 00 00 00 ff 00 ff ff ff 00 ";

Bytes DescriptionAt(std::uint32_t version, const std::string& total_size) {
  std::string text = kDescription;
  for (std::size_t open = text.find('<'); open != std::string::npos; open = text.find('<')) {
    const std::size_t close = text.find('>', open);
    const bool there = version >= static_cast<std::uint32_t>(text[open + 1] - '0');
    text.replace(open, close - open + 1, there ? text.substr(open + 2, close - open - 2) : "");
  }
  return Hex(total_size + " " + text);
}

TEST_F(EcKeyboard, DescriptionHasItsBytesAtEveryVersionAndIsReadWholeOrNotAtAll) {
  keyboard->StoreLedColor(0, 0x0000FF);
  keyboard->StoreLedColor(1, 0x00FF00);
  keyboard->StoreLedColor(2, 0xFF0000);
  keyboard->StoreLedColor(3, 0xFFFFFF);
  EXPECT_EQ(Take(keyboard->PackDescription(0)), DescriptionAt(0, "ce 02 00 00"));
  EXPECT_EQ(Take(keyboard->PackDescription(1)), DescriptionAt(1, "d5 02 00 00"));
  EXPECT_EQ(Take(keyboard->PackDescription(3)), DescriptionAt(3, "41 03 00 00"));
  Bytes cut = DescriptionAt(3, "41 03 00 00");
  while (!cut.empty()) {
    cut.pop_back();
    ControllerRecords records;
    EXPECT_FALSE(UnpackDescription(records, ExactBlock(cut).view(), 3)) << cut.size();
    EXPECT_TRUE(records.mode_list.empty());
  }
  EXPECT_EQ(Wire(), "");
}

TEST_F(EcKeyboard, ZonesFollowTheFirmwaresRecord) {
  const auto leds = [&](const std::vector<std::pair<int, int>>& items) {
    UseFirmware(3, 0, items);
    const ControllerRecords records = Describe();
    EXPECT_EQ(records.zone_list.size(), 1U);
    EXPECT_EQ(records.color_table.size(), records.led_list.size());
    return records.led_list.size();
  };
  EXPECT_EQ(leds({{8, 1}}), 1U);
  EXPECT_EQ(leds({{10, 2}, {8, 3}, {8, 4}}), 3U);  // the first item counts
  EXPECT_EQ(leds({{8, 0}}), 0U);
  EXPECT_EQ(leds({{8, 2}}), 0U);
  EXPECT_EQ(leds({{8, 5}}), 0U);
  EXPECT_EQ(leds({{8, 0x0104}}), 0U);
  EXPECT_EQ(leds({}), 0U);
}

TEST_F(EcKeyboard, ColourPathSwitchesZonesThenSetsBrightnessThenColours) {
  keyboard->StoreLedColor(1, 0x0000FF);
  keyboard->StoreLedColor(3, 0x563412);
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(Wire(),
            "SetGamingLED: 08 00 00 00 00 0a 00 00 00 00 00 00 00 00 00 00\n"
            "SetGamingKBBacklight: 00 00 32 00 00 00 00 00 03 01 00 00 00 00 00 00\n"
            "SetGamingRgbKb: 1\n"
            "SetGamingRgbKb: 65282\n"  // 0x0000FF02
            "SetGamingRgbKb: 4\n"
            "SetGamingRgbKb: 1446253064\n");  // 0x56341208
  EXPECT_EQ(machine->TakeSleeps(), std::vector<std::uint32_t>(6, 30));
}

TEST_F(EcKeyboard, ZoneSwitchPacketHasTheLengthOfTheFirmware) {
  const auto length = [&](std::uint8_t major, std::uint8_t minor) {
    UseFirmware(major, minor, {{8, 1}});
    keyboard->WriteLedToDevice(0);
    return std::get<Bytes>(machine->TakeCalls().at(0).input).size();
  };
  EXPECT_EQ(length(1, 99), 8U);
  EXPECT_EQ(length(2, 85), 8U);
  EXPECT_EQ(length(2, 86), 12U);
  EXPECT_EQ(length(2, 90), 12U);
  EXPECT_EQ(length(2, 91), 16U);
  EXPECT_EQ(length(3, 0), 16U);
  machine->smbios.reset();
  keyboard = plugin().CreateKeyboard();
  keyboard->WriteZoneToDevice(0);
  EXPECT_EQ(Wire(),
            "SetGamingLED: 08 00 00 00 00 00 00 00\n"
            "SetGamingKBBacklight: 00 00 32 00 00 00 00 00 03 01 00 00 00 00 00 00\n");
}

TEST_F(EcKeyboard, EffectsGoOutAsOnePacketWithTheirSettings) {
  const auto packet = [&](std::int32_t mode, std::uint32_t speed, std::uint32_t brightness, std::uint32_t direction,
                          PackedColor color) {
    Choose(mode, speed, brightness, direction, {color});
    keyboard->WriteModeToDevice();
    return Wire();
  };
  const std::string method = "SetGamingKBBacklight: ";
  EXPECT_EQ(packet(2, 7, 30, 0, 0x0000FF), method + "01 07 1e 00 02 ff 00 00 03 01 00 00 00 00 00 00\n");
  EXPECT_EQ(packet(3, 5, 50, 0, 0xFFFFFF), method + "02 05 32 00 02 00 00 00 03 01 00 00 00 00 00 00\n");
  EXPECT_EQ(packet(4, 5, 50, 1, 0), method + "03 05 32 00 01 00 00 00 03 01 00 00 00 00 00 00\n");
  EXPECT_EQ(packet(4, 5, 50, 2, 0), method + "03 05 32 00 03 00 00 00 03 01 00 00 00 00 00 00\n");
  EXPECT_EQ(packet(5, 0x105, 0x132, 0x1FFFF, 0x332211), method + "04 05 32 00 00 11 22 33 03 01 00 00 00 00 00 00\n");
  EXPECT_EQ(packet(8, 9, 100, 0x10000, 0x00FF00), method + "07 09 64 00 02 00 ff 00 03 01 00 00 00 00 00 00\n");
}

TEST_F(EcKeyboard, StaticTakesTheColourPathAndStaysInTheRecords) {
  Choose(1, 5, 80, 0, {0x00FF00});
  keyboard->WriteModeToDevice();
  const std::string wire = Wire();
  EXPECT_EQ(wire,
            "SetGamingLED: 08 00 00 00 00 0f 00 00 00 00 00 00 00 00 00 00\n"
            "SetGamingKBBacklight: 00 00 50 00 00 00 00 00 03 01 00 00 00 00 00 00\n"
            "SetGamingRgbKb: 16711681\nSetGamingRgbKb: 16711682\nSetGamingRgbKb: 16711684\nSetGamingRgbKb: 16711688\n");
  const ControllerRecords records = Describe();
  EXPECT_EQ(records.color_table, std::vector<PackedColor>(4, 0x00FF00));
  EXPECT_EQ(records.mode_list[0].brightness_setting, 80U);

  keyboard->SelectFirstMode();
  EXPECT_EQ(keyboard->CurrentModeIndex(), 0);
  EXPECT_EQ(Wire(), "");
  keyboard->WriteModeToDevice();  // "Direct" sends the same again
  EXPECT_EQ(Wire(), wire);
  Choose(2, 5, 50, 0, {1});
  keyboard->WriteColorsToDevice();  // whatever the mode
  EXPECT_EQ(Wire(), wire);
}

TEST_F(EcKeyboard, ZonesAfterOneThatFailsAreStillColoured) {
  machine->answer = [](const FirmwareCall& call) {
    const bool second_zone = call.input == Value(std::wstring(L"2"));
    return FirmwareAnswer{second_zone ? static_cast<HRESULT>(-1) : S_OK, {{L"gmOutput", std::uint32_t{0}}}};
  };
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(machine->TakeCalls().size(), 6U);
  EXPECT_EQ(machine->TakeSleeps().size(), 5U);
}

TEST_F(EcKeyboard, RecordsMayBeChangedWhileTheFirmwareHoldsAPush) {
  std::latch inside(1);
  std::latch go_on(1);
  machine->answer = [&](const FirmwareCall&) {
    inside.count_down();
    go_on.wait();
    return FirmwareAnswer{S_OK, {{L"gmOutput", std::uint32_t{0}}}};
  };
  Choose(2, 5, 50, 0, {1});
  std::thread host([&] { keyboard->WriteModeToDevice(); });
  inside.wait();
  keyboard->StoreLedColor(0, 5);
  keyboard->UnpackDescription(Take(keyboard->PackDescription(3)).data(), 3);
  keyboard->SelectFirstMode();
  EXPECT_EQ(Describe().mode_list.size(), 18U);
  go_on.count_down();
  host.join();
}

TEST_F(EcKeyboard, ModeWithoutItsColourIsBlackAndIndexesOutsideTheListSendNothing) {
  Choose(2, 5, 50, 0, {});
  keyboard->WriteModeToDevice();
  EXPECT_EQ(Wire(), "SetGamingKBBacklight: 01 05 32 00 02 00 00 00 03 01 00 00 00 00 00 00\n");
  Choose(1, 5, 50, 0, {});
  keyboard->StoreLedColor(0, 5);
  keyboard->WriteModeToDevice();
  EXPECT_EQ(keyboard->FetchLedColor(0), 0U);
  machine->TakeCalls();
  for (const std::int32_t index : {-1, 9, std::numeric_limits<std::int32_t>::max()}) {
    keyboard->ChooseMode(index);
    keyboard->WriteModeToDevice();
  }
  keyboard.reset();
  EXPECT_EQ(Wire(), "");
}

TEST_F(EcKeyboard, LayoutDefinedAgainAppendsAnotherZone) {
  keyboard->DefineLayout();
  const ControllerRecords records = Describe();
  EXPECT_EQ(records.zone_list.size(), 2U);
  EXPECT_EQ(records.zone_list[1].first_index, 4U);
  EXPECT_EQ(records.led_list.size(), 8U);
  EXPECT_EQ(records.color_table.size(), 8U);
}

TEST_F(EcKeyboard, EffectLogsItsRequestAndEveryByte) {
  SwitchLogOn();
  Choose(2, 7, 30, 0, {0x0000FF});
  keyboard->WriteModeToDevice();
  std::string expected = LogLine("SetMode", "Enter!!") +
                         LogLine("SetMode", "mode=1, speed=7, direction=2, brightness=30, color= (0XFF,0X0,0X0)");
  const char* const bytes[] = {"0X1", "0X7", "0X1E", "0X0", "0X2", "0XFF", "0X0", "0X0",
                               "0X3", "0X1", "0X0",  "0X0", "0X0", "0X0",  "0X0", "0X0"};
  for (std::size_t i = 0; i < 16; ++i) {
    expected += LogLine("SetMode", "input_data[" + std::to_string(i) + "] = " + bytes[i]);
  }
  EXPECT_EQ(NewLog(), expected);
  EXPECT_EQ(Wire(), "SetGamingKBBacklight: 01 07 1e 00 02 ff 00 00 03 01 00 00 00 00 00 00\n");
  Choose(2, 261, 30, 0xFFFE, {0});
  keyboard->WriteModeToDevice();
  EXPECT_EQ(
      NewLog().find(LogLine("SetMode", "mode=1, speed=261, direction=65535, brightness=30, color= (0X0,0X0,0X0)")),
      LogLine("SetMode", "Enter!!").size());
}

TEST_F(EcKeyboard, ColourPathLogsItsStepsBytesAndOutcomes) {
  UseFirmware(2, 85, {{8, 1}});
  SwitchLogOn();
  keyboard->StoreLedColor(0, 0xC0B0A0);
  machine->answer = [](const FirmwareCall& call) {
    return FirmwareAnswer{S_OK, {{L"gmOutput", std::uint32_t{call.method == L"SetGamingLED" ? 0xABCU : 0x80000001U}}}};
  };
  keyboard->WriteColorsToDevice();
  const std::string steps = LogLine("SendColors", "WMI stSMBiosType172: 2.85") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[0]: 0x08") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[1]: 0x00") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[2]: 0x00") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[3]: 0x00") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[4]: 0x00") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[5]: 0x01") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[6]: 0x00") +
                            LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction input[7]: 0x00");
  std::string brightness;
  const char* const bytes[] = {"0x0", "0x0", "0x32", "0x0", "0x0", "0x0", "0x0", "0x0", "0x3", "0x1"};
  for (std::size_t i = 0; i < 10; ++i) {
    brightness += LogLine("SetKeyboardBrightness",
                          "ECKeyboard::SetGamingKbbacklightFunction() input[" + std::to_string(i) + "]:" + bytes[i]);
  }
  const std::string color =
      LogLine("SetKeyboardColor", "ECKeyboard::SetGamingRgbKbSettingFunction() Zone1, input: 0xC0B0A001");
  EXPECT_EQ(NewLog(),
            steps + LogLine("SetKeyboardOnOff", "WMI SetGamingLEDBehaviorFunction output : 0xABC") + brightness +
                LogLine("SetKeyboardBrightness", "WMI SetGamingKbbacklightFunction output : 0xFFFFFFFF80000001") +
                color);
  machine->has_firmware = false;
  keyboard->WriteColorsToDevice();
  EXPECT_EQ(NewLog(), steps + LogLine("SetKeyboardOnOff", "SetGamingLEDBehaviorFunction is fail!!") + brightness +
                          LogLine("SetKeyboardBrightness", "SetGamingKbbacklightFunction is fail!!") + color);
}

}  // namespace
}  // namespace test
