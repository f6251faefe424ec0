#include "hidkeyboard/hid_keyboard_modes.h"

#include "controller/mode_rows.h"

namespace {

namespace Can = ModeCapability;
using ModeRows::kColoredEffect;
using ModeRows::kEffect;

struct Row {
  ModeRow mode;
  std::uint32_t effect_bit;  // 0: on every keyboard
  /// One colour in the record, also where the mode does not show it.
  bool has_color;
};

constexpr Row kRows[] = {
    {{"Direct", kPerLedModeCode, Can::BrightnessAdjustable | Can::PerLedColors}, 0, false},
    {{"STATIC", 0, Can::BrightnessAdjustable | Can::ModeColors}, 0, true},
    {{"BREATHING", 1, kColoredEffect}, 0x0008, true},
    {{"NEON", 2, kEffect}, 0x0010, true},
    {{"OPMODE", 34, Can::ModeColors}, 0x0020, true},
    {{"WAVE", 3, kEffect | Can::DirectionSetA}, 0x0040, true},
    {{"SHIFTING", 4, kColoredEffect | Can::DirectionSetA}, 0x0080, true},
    {{"ZOOM", 5, kColoredEffect}, 0x0100, true},
    {{"METEOR", 6, kColoredEffect}, 0x0200, true},
    {{"TWINKLING", 7, kColoredEffect}, 0x0400, true},
    {{"RIPPLE", 8, kEffect}, 0x1000, false},
    {{"SNAKE", 9, kEffect}, 0x2000, false},
    {{"DISCO", 10, kEffect}, 0x4000, false},
    {{"COMBO", 11, kEffect}, 0x0800, false},
};

}  // namespace

std::vector<ModeRecord> MakeHidKeyboardModes(std::uint32_t effect_mask) {
  std::vector<ModeRecord> modes;
  modes.reserve(std::size(kRows));
  for (const Row& row : kRows) {
    if (row.effect_bit != 0 && (effect_mask & row.effect_bit) == 0) continue;
    modes.push_back(MakeMode(row.mode));
    if (row.has_color) GiveOneColor(modes.back());
  }
  return modes;
}
