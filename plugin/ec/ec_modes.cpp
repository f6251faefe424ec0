#include "ec/ec_modes.h"

namespace Can = ModeCapability;
using ModeRows::kColoredEffect;
using ModeRows::kEffect;

std::vector<ModeRecord> MakeEcModes(std::uint32_t direct_capabilities, std::uint32_t wave_capabilities) {
  const ModeRow rows[] = {
      {"Direct", kPerLedModeCode, direct_capabilities},
      {"STATIC", kStaticEffect, kColoredEffect},
      {"BREATHING", 1, kColoredEffect},
      {"NEON", 2, kEffect},
      {"WAVE", 3, wave_capabilities},
      {"SHIFTING", 4, kColoredEffect | Can::DirectionSetA},
      {"ZOOM", 5, kColoredEffect},
      {"METEOR", 6, kColoredEffect},
      {"TWINKLING", 7, kColoredEffect},
  };
  std::vector<ModeRecord> modes;
  modes.reserve(std::size(rows));
  for (const ModeRow& row : rows) modes.push_back(MakeMode(row));
  return modes;
}
