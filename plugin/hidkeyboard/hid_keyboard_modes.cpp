#include "hidkeyboard/hid_keyboard_modes.h"

#include <algorithm>
#include <iterator>

#include "controller/mode_rows.h"

namespace {

namespace Can = ModeCapability;
using ModeRows::kColoredEffect;
using ModeRows::kEffect;

struct Row {
  ModeRow mode;
  std::uint8_t device_code;  // less 1, also the number of its bit among the keyboard's effects
  bool has_color;            // one colour in the record, also where the mode does not show it
};

constexpr Row kRows[] = {
    {{"Direct", kPerLedModeCode, Can::BrightnessAdjustable | Can::PerLedColors}, 255, false},
    {{"STATIC", 0, Can::BrightnessAdjustable | Can::ModeColors}, kStaticDeviceMode, true},
    {{"BREATHING", 1, kColoredEffect}, 4, true},
    {{"NEON", 2, kEffect}, 5, true},
    {{"OPMODE", 34, Can::ModeColors}, 6, true},
    {{"WAVE", 3, kEffect | Can::DirectionSetA}, 7, true},
    {{"SHIFTING", 4, kColoredEffect | Can::DirectionSetA}, 8, true},
    {{"ZOOM", 5, kColoredEffect}, 9, true},
    {{"METEOR", 6, kColoredEffect}, 10, true},
    {{"TWINKLING", 7, kColoredEffect}, 11, true},
    {{"RIPPLE", 8, kEffect}, 13, false},
    {{"SNAKE", 9, kEffect}, 14, false},
    {{"DISCO", 10, kEffect}, 15, false},
    {{"COMBO", 11, kEffect}, 12, false},
};

bool IsSupported(const Row& row, std::uint32_t effect_mask) {
  const bool always = row.mode.hw_code == kPerLedModeCode || row.device_code == kStaticDeviceMode;
  return always || (effect_mask >> (row.device_code - 1) & 1) != 0;
}

}  // namespace

std::vector<ModeRecord> MakeHidKeyboardModes(std::uint32_t effect_mask) {
  std::vector<ModeRecord> modes;
  modes.reserve(std::size(kRows));
  for (const Row& row : kRows) {
    if (IsSupported(row, effect_mask)) modes.push_back(MakeMode(row.mode, row.has_color));
  }
  return modes;
}

std::uint8_t DeviceCodeOf(std::uint32_t hw_code) {
  if (hw_code == 15) return 1;  // no mode of ours has it, but a host may send it
  const auto* const row = std::ranges::find_if(
      kRows, [hw_code](const Row& each) { return static_cast<std::uint32_t>(each.mode.hw_code) == hw_code; });
  return row != std::end(kRows) ? row->device_code : static_cast<std::uint8_t>(hw_code);
}
