#include "zarnctl/drawing.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "zarnctl/lit_keys.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using simulator::Color;
using simulator::Effect;

std::string LabelOf(std::uint8_t code, const std::vector<ModeRecord>& modes) {
  const auto mode = std::ranges::find(modes, code, &ModeRecord::hw_code);
  return mode != modes.end() ? mode->label : "effect " + std::to_string(code);
}

/// False for an effect whose mode has no colour: it is sent with a meaningless black.
bool ShowsOwnColor(std::uint8_t code, const std::vector<ModeRecord>& modes) {
  return std::ranges::none_of(modes, [code](const ModeRecord& mode) {
    return mode.hw_code == code && mode.color_source != ColorSource::ModeColors;
  });
}

std::string TextOf(const Color& color) {
  return ColorText(PackedColor{color.red} | PackedColor{color.green} << 8 | PackedColor{color.blue} << 16);
}

std::string EffectText(const Effect& effect, const std::vector<ModeRecord>& modes) {
  std::string text = LabelOf(effect.code, modes) + " speed " + std::to_string(effect.speed) + " direction " +
                     std::to_string(effect.direction);
  if (ShowsOwnColor(effect.code, modes)) text += " colour " + TextOf(effect.color);
  return text;
}

std::string ZoneText(const Panel::Zone& zone, const std::vector<ModeRecord>& modes) {
  if (zone.effect) return EffectText(*zone.effect, modes);
  return zone.on ? TextOf(zone.color) : "off";
}

/// Whether all zones have the same brightness and effect.
bool IsUniform(const Panel& panel) {
  return std::ranges::all_of(panel.zones, [&](const Panel::Zone& zone) {
    return zone.brightness == panel.zones.front().brightness && zone.effect == panel.zones.front().effect;
  });
}

/// With more zones than these, equal neighbours share a line.
constexpr std::size_t kZonesOneByOne = 4;

std::string ZoneLines(const Panel& panel, const std::vector<ModeRecord>& modes) {
  const bool uniform = IsUniform(panel);
  const std::size_t shared = panel.zones.size() > kZonesOneByOne ? panel.zones.size() : 1;
  std::string text;
  for (std::size_t first = 0, end = 0; first < panel.zones.size(); first = end) {
    const Panel::Zone& zone = panel.zones[first];
    while (end < panel.zones.size() && end - first < shared && panel.zones[end] == zone) ++end;
    text += end - first == 1 ? "zone " + std::to_string(end)
                             : "zones " + std::to_string(first + 1) + " to " + std::to_string(end);
    if (!uniform) text += ": brightness " + std::to_string(zone.brightness);
    text += (uniform ? ": " : ", ") + ZoneText(zone, modes) + "\n";
  }
  return text;
}

}  // namespace

std::string Headline(const Panel& panel, const std::vector<ModeRecord>& modes) {
  if (panel.zones.empty()) return panel.name + ": no zones";
  if (!IsUniform(panel)) return panel.name;
  const Panel::Zone& zone = panel.zones.front();
  const std::string text = panel.name + ": brightness " + std::to_string(zone.brightness);
  return zone.effect ? text + ", " + EffectText(*zone.effect, modes) : text;
}

std::string PlainLights(const std::vector<Panel>& panels, const std::vector<ModeRecord>& modes) {
  std::string text;
  for (const Panel& panel : panels) {
    text += Headline(panel, modes) + "\n";
    const bool one_effect = !panel.zones.empty() && IsUniform(panel) && panel.zones.front().effect;
    if (!one_effect) text += ZoneLines(panel, modes);
  }
  return text;
}

std::string DrawnLights(const std::vector<Panel>& panels, const std::vector<ModeRecord>& modes, double seconds) {
  std::string text;
  for (const Panel& panel : panels) {
    text += (text.empty() ? "" : "\n") + Headline(panel, modes) + "\n\n" + DrawnPanel(panel, seconds);
  }
  return text;
}

std::string DrawnPanel(const Panel& panel, double seconds) {
  std::string text;
  for (const LitKey& key : LitKeys(panel, seconds)) {
    const auto [red, green, blue] = ShownColor(key.light);
    std::array<char, 32> color{};
    std::snprintf(color.data(), color.size(), "\033[38;2;%d;%d;%dm", red, green, blue);
    text.append(key.left > 0 ? " " : text.empty() ? "" : "\033[0m\n").append(color.data());
    for (int i = 0; i < key.width; ++i) text += "▇";
  }
  return text + "\033[0m\n";
}

}  // namespace zarnctl
