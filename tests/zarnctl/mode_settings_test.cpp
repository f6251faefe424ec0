#include "zarnctl/mode_settings.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "zarnctl/complaint.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

ModeRecord Mode(const char* label, std::uint32_t capabilities, std::uint32_t color_source) {
  ModeRecord mode;
  mode.label = label;
  mode.capabilities = capabilities;
  mode.speed_lowest = 1;
  mode.speed_highest = 9;
  mode.brightness_highest = 100;
  mode.color_source = color_source;
  return mode;
}

const ModeRecord kDirect = Mode("Direct", 0x30, ColorSource::PerLedColors);
const ModeRecord kWave = Mode("WAVE", 0x1F, ColorSource::NoColors);
const ModeRecord kShifting = Mode("SHIFTING", 0x53, ColorSource::ModeColors);

std::string LineOf(const std::function<void()>& action) {
  try {
    action();
    return "no complaint";
  } catch (const Complaint& complaint) {
    EXPECT_EQ(complaint.code(), ExitCode::WrongCommandLine);
    return complaint.what();
  }
}

TEST(Settings, WhatAModeDoesNotTakeIsRefusedWithWhatItTakes) {
  const struct {
    ModeRecord mode;
    const char* option;
    const char* word;
    std::string line;
  } cases[] = {
      {kWave, "--speed", "10", "--speed 10: WAVE takes 1 to 9"},
      {kWave, "--speed", "99999999999", "--speed 4294967295: WAVE takes 1 to 9"},
      {kWave, "--speed", "fast", "--speed fast: a whole number is needed"},
      {kWave, "--brightness", "101", "--brightness 101: WAVE takes 0 to 100"},
      {kWave, "--direction", "6", "--direction 6: WAVE takes 0, 1, 2, 3, 4 or 5"},
      {kShifting, "--direction", "2", "--direction 2: SHIFTING takes 0 or 1"},
      {Mode("Fixed", 0x20, ColorSource::PerLedColors), "--brightness", "50", "--brightness: Fixed has no brightness"},
      {kDirect, "--speed", "1", "--speed: Direct has no speed"},
      {kDirect, "--color", "ff0000", "--color: Direct shows a colour per LED; use 'zarnctl leds'"},
      {kWave, "--color", "ff0000", "--color: WAVE shows no colour of its own"},
  };
  for (const auto& [mode, option, word, line] : cases) {
    TypedValues typed;
    typed.Add(option, {word});
    EXPECT_EQ(LineOf([&, &mode = mode] { WithSettings(mode, typed); }), line);
  }
}

TEST(Settings, ModesAreFoundInAnyCaseAndListedOtherwise) {
  std::vector<ModeRecord> modes{kWave, kDirect, kShifting};
  modes[1].hw_code = kPerLedModeCode;
  EXPECT_EQ(FindMode(modes, "wAvE"), 0);
  EXPECT_EQ(FindPerLedMode(modes), 1);
  EXPECT_EQ(LineOf([&] { FindMode(modes, "WAV"); }), "--mode WAV: the modes are WAVE, Direct or SHIFTING");
}

TEST(Texts, ColoursAreSixDigitsAndRedFirst) {
  for (const char* const text : {"ff8001", "#FF8001"}) EXPECT_EQ(ReadColor("--color", text), 0x0180ffU);
  EXPECT_EQ(ColorText(0x0180ff), "#ff8001");
  for (const std::string wrong : {"#", "ff800", "ff80011", "-f8001", "ff800g"}) {
    EXPECT_EQ(LineOf([&] { ReadColor("--color", wrong); }),
              "--color " + wrong + ": a colour is six hexadecimal digits, RRGGBB");
  }
}

TEST(Texts, ForeignOnesKeepTheirLettersAndGiveTheTerminalNoOrders) {
  EXPECT_EQ(Harmless("a\u00E9\u20AC\U0001F600"), "a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(Harmless("\033[2J\r\n\x7F\u009B1m\u00A0"), "?[2J????1m\u00A0");
  // Bytes that are no UTF-8, among them longer ways to write U+009B and U+001B, a surrogate, and a cut character.
  EXPECT_EQ(Harmless("\x9B_\xE0\x82\x9B_\xC0\x9B_\xED\xA0\x80_\xF5\x80\x80\x80_\xE2\x82"),
            "?_???_??_???_????_"
            "??");
}

}  // namespace
}  // namespace zarnctl
