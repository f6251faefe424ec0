#include "zarnctl/settings.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "zarnctl/complaint.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

ModeRecord Direct() {
  ModeRecord mode;
  mode.label = "Direct";
  mode.hw_code = kPerLedModeCode;
  mode.capabilities = 0x30;
  mode.brightness_highest = 100;
  mode.brightness_setting = 50;
  mode.color_source = ColorSource::PerLedColors;
  return mode;
}

ModeRecord Wave() {
  ModeRecord mode = Direct();
  mode.label = "WAVE";
  mode.capabilities = 0x1F;
  mode.speed_lowest = 1;
  mode.speed_highest = 9;
  mode.speed_setting = 5;
  mode.color_source = ColorSource::NoColors;
  return mode;
}

ModeRecord Shifting() {
  ModeRecord mode = Wave();
  mode.label = "SHIFTING";
  mode.capabilities = 0x53;
  mode.color_count_least = mode.color_count_most = 1;
  mode.color_source = ColorSource::ModeColors;
  return mode;
}

std::string LineOf(const std::function<void()>& action) {
  try {
    action();
    return "no complaint";
  } catch (const Complaint& complaint) {
    EXPECT_EQ(complaint.code(), ExitCode::WrongCommandLine);
    return complaint.what();
  }
}

std::string Refusal(const ModeRecord& mode, const ModeSettings& settings) {
  return LineOf([&] { WithSettings(mode, settings); });
}

TEST(Settings, ReplaceWhatIsGivenAndKeepTheRest) {
  const ModeRecord mode = WithSettings(Shifting(), {"", 9, {}, 1, 0x0000ff});
  EXPECT_EQ(mode.speed_setting, 9U);
  EXPECT_EQ(mode.brightness_setting, 50U);
  EXPECT_EQ(mode.direction_setting, 1U);
  EXPECT_EQ(mode.mode_colors, std::vector<PackedColor>{0x0000ff});
  EXPECT_EQ(WithSettings(Direct(), {"", {}, 0, {}, {}}).brightness_setting, 0U);
}

TEST(Settings, OutOfRangeNamesWhatTheModeTakes) {
  EXPECT_EQ(Refusal(Wave(), {"", 12, {}, {}, {}}), "--speed 12: WAVE takes 1 to 9");
  EXPECT_EQ(Refusal(Wave(), {"", 0, {}, {}, {}}), "--speed 0: WAVE takes 1 to 9");
  EXPECT_EQ(Refusal(Wave(), {"", {}, 101, {}, {}}), "--brightness 101: WAVE takes 0 to 100");
  EXPECT_EQ(Refusal(Wave(), {"", {}, {}, 6, {}}), "--direction 6: WAVE takes 0, 1, 2, 3, 4 or 5");
  EXPECT_EQ(Refusal(Shifting(), {"", {}, {}, 2, {}}), "--direction 2: SHIFTING takes 0 or 1");
}

TEST(Settings, WhatAModeDoesNotHaveCannotBeSet) {
  ModeRecord fixed = Direct();
  fixed.capabilities = ModeCapability::PerLedColors;
  EXPECT_EQ(Refusal(fixed, {"", {}, 50, {}, {}}), "--brightness: Direct has no brightness");
  EXPECT_EQ(Refusal(Direct(), {"", 1, {}, {}, {}}), "--speed: Direct has no speed");
  EXPECT_EQ(Refusal(Direct(), {"", {}, {}, 0, {}}), "--direction: Direct has no direction");
  EXPECT_EQ(Refusal(Direct(), {"", {}, {}, {}, 1}), "--color: Direct shows a colour per LED; use 'zarnctl leds'");
  EXPECT_EQ(Refusal(Wave(), {"", {}, {}, {}, 1}), "--color: WAVE shows no colour of its own");
}

TEST(Settings, ModesAreFoundInAnyCaseAndListedOtherwise) {
  const std::vector<ModeRecord> modes{Direct(), Wave(), Shifting()};
  EXPECT_EQ(FindMode(modes, "wAvE"), 1);
  EXPECT_EQ(FindPerLedMode(modes), 0);
  EXPECT_EQ(LineOf([&] { FindMode(modes, "WAV"); }), "--mode WAV: the modes are Direct, WAVE or SHIFTING");
}

TEST(Settings, LedsTakeOneColourForAllOrOneForEach) {
  EXPECT_EQ(ColorPerLed({7}, 3), (std::vector<PackedColor>{7, 7, 7}));
  EXPECT_EQ(ColorPerLed({7, 8}, 2), (std::vector<PackedColor>{7, 8}));
  EXPECT_EQ(LineOf([] { ColorPerLed({7, 8}, 4); }), "leds: 2 colours given; give one for all, or 4, one for each LED");
}

TEST(Texts, ColoursAreRedFirstOnTheCommandLine) {
  EXPECT_EQ(ReadColor("--color", "ff8001"), 0x0180ffU);
  EXPECT_EQ(ReadColor("--color", "#FF8001"), 0x0180ffU);
  EXPECT_EQ(ColorText(0x0180ff), "#ff8001");
  for (const char* const wrong : {"", "#", "ff800", "ff80011", "-f8001", "ff800g"}) {
    EXPECT_EQ(LineOf([&] { ReadColor("--color", wrong); }),
              std::string("--color ") + wrong + ": a colour is six hexadecimal digits, RRGGBB");
  }
}

TEST(Texts, NumbersAreWholeAndFitTheirField) {
  EXPECT_EQ(ReadNumber("--speed", "4294967295"), 4294967295U);
  for (const char* const wrong : {"", "-1", "+1", " 1", "1.5", "0x1", "4294967296"}) {
    EXPECT_EQ(LineOf([&] { ReadNumber("--speed", wrong); }),
              std::string("--speed ") + wrong + ": a whole number is needed");
  }
}

}  // namespace
}  // namespace zarnctl
