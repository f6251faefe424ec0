#include "zarnctl/drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <span>

#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using simulator::Color;
using simulator::Effect;

/// A place on the keyboard, from 0 to 1 each way, and a number of its own.
struct Key {
  double x;
  double y;
  std::uint32_t number;
};

/// A colour as light: 0 is dark, 1 is full.
struct Light {
  double red;
  double green;
  double blue;
};

constexpr Light kDark{0, 0, 0};

Light operator*(const Light& light, double factor) {
  return {light.red * factor, light.green * factor, light.blue * factor};
}

Light LightOf(const Color& color) { return {color.red / 255.0, color.green / 255.0, color.blue / 255.0}; }

double Fraction(double value) { return value - std::floor(value); }

/// The colour circle: red at 0, green at 1/3, blue at 2/3.
Light Rainbow(double hue) {
  const auto channel = [hue](double centre) {
    const double distance = std::abs(Fraction(hue - centre + 0.5) - 0.5);
    return std::clamp(2.0 - 6.0 * distance, 0.0, 1.0);
  };
  return {channel(0.0), channel(1.0 / 3), channel(2.0 / 3)};
}

/// A number from 0 to 1 that looks like chance and is the same for the same seeds.
double Chance(std::uint32_t a, std::uint32_t b) {
  std::uint32_t hash = a * 0x9E3779B1U ^ b * 0x85EBCA77U;
  hash = (hash ^ hash >> 15) * 0x2C1B3C6DU;
  hash = (hash ^ hash >> 12) * 0x297A2D39U;
  return (hash ^ hash >> 15) / 4294967295.0;
}

/// How far the effect has come when it reaches the key, from 0 to 1.
double Travelled(const Effect& effect, const Key& key) {
  switch (effect.direction) {
    case 2:
      return 1 - key.x;
    case 3:
      return 1 - key.y;
    case 4:
      return key.y;
    case 5:
      return std::abs(2 * key.x - 1);
    case 6:
      return std::abs(2 * key.y - 1);
    default:
      return key.x;
  }
}

// The animations, by effect code. A cycle is one breath, one turn of the colours, one run across the keyboard.

Light Static(const Effect& effect, const Key& /*key*/, double /*cycles*/) { return LightOf(effect.color); }

Light Breathing(const Effect& effect, const Key& /*key*/, double cycles) {
  return LightOf(effect.color) * (0.5 + 0.5 * std::cos(2 * std::numbers::pi * cycles));
}

Light Neon(const Effect& /*effect*/, const Key& /*key*/, double cycles) { return Rainbow(cycles / 2); }

Light Wave(const Effect& effect, const Key& key, double cycles) { return Rainbow(Travelled(effect, key) - cycles); }

Light Shifting(const Effect& effect, const Key& key, double cycles) {
  return Fraction(Travelled(effect, key) - cycles) < 0.5 ? LightOf(effect.color) : kDark;
}

Light Zoom(const Effect& effect, const Key& key, double cycles) {
  const double distance = std::hypot(2 * key.x - 1, (2 * key.y - 1) / 2);
  return LightOf(effect.color) * std::max(0.0, 1 - 4 * std::abs(distance - 1.2 * Fraction(cycles)));
}

Light Meteor(const Effect& effect, const Key& key, double cycles) {
  const double row_offset = Chance(static_cast<std::uint32_t>(5 * key.y), 1);
  const double behind = Fraction(cycles + row_offset - Travelled(effect, key) / 1.5);
  return LightOf(effect.color) * std::exp(-9 * behind);
}

Light Twinkling(const Effect& effect, const Key& key, double cycles) {
  const double own_time = cycles + Chance(key.number, 2);
  const bool lit = Chance(key.number, 3 + static_cast<std::uint32_t>(own_time)) < 0.35;
  return lit ? LightOf(effect.color) * std::sin(std::numbers::pi * Fraction(own_time)) : kDark;
}

Light Ripple(const Effect& /*effect*/, const Key& key, double cycles) {
  const double distance = std::hypot(2 * key.x - 1, (2 * key.y - 1) / 2);
  return Rainbow(distance) * (0.5 + 0.5 * std::cos(2 * std::numbers::pi * (2 * distance - cycles)));
}

Light Snake(const Effect& /*effect*/, const Key& key, double cycles) {
  // Along the rows, there and back.
  const auto row = std::floor(5 * key.y);
  const double along = (row + (static_cast<int>(row) % 2 == 0 ? key.x : 1 - key.x)) / 5;
  const double behind = Fraction(cycles / 2 - along);
  return behind < 0.2 ? Rainbow(cycles / 4) * (1 - 5 * behind) : kDark;
}

Light Disco(const Effect& /*effect*/, const Key& key, double cycles) {
  return Rainbow(Chance(key.number, 4 + static_cast<std::uint32_t>(2 * cycles)));
}

Light Combo(const Effect& effect, const Key& key, double cycles) {
  const auto turn = static_cast<std::uint32_t>(cycles) % 3;
  return turn == 0 ? Wave(effect, key, cycles) : turn == 1 ? Ripple(effect, key, cycles) : Disco(effect, key, cycles);
}

/// Sets its own pace: the mode has neither speed nor brightness.
constexpr std::uint8_t kOpMode = 34;
constexpr std::uint8_t kOpModeSpeed = 4;

using Animation = Light (*)(const Effect&, const Key&, double cycles);
constexpr std::array<Animation, 12> kAnimations{Static, Breathing, Neon,   Wave,  Shifting, Zoom,
                                                Meteor, Twinkling, Ripple, Snake, Disco,    Combo};

/// How many cycles a second each step of speed brings.
constexpr double kCyclesPerSpeed = 0.15;

Light Animated(const Effect& effect, const Key& key, double seconds) {
  const Animation animation = effect.code < kAnimations.size() ? kAnimations.at(effect.code) : Static;
  return animation(effect, key, seconds * kCyclesPerSpeed * effect.speed);
}

Light Shining(const Panel& panel, const Key& key, double seconds) {
  if (panel.zones.empty()) return kDark;
  const Panel::Zone& zone = panel.zones[static_cast<std::size_t>(key.x * static_cast<double>(panel.zones.size()))];
  if (zone.effect && zone.effect->code == kOpMode) {
    return Breathing(*zone.effect, key, seconds * kCyclesPerSpeed * kOpModeSpeed);
  }
  const double brightness = std::min(1.0, zone.brightness / 100.0);
  if (zone.effect) return Animated(*zone.effect, key, seconds) * brightness;
  return zone.on ? LightOf(zone.color) * brightness : kDark;
}

constexpr int kWidth = 59;
/// The widths of the keys, row by row; with a blank between keys every row is as wide as the keyboard.
using Row = std::array<int, 15>;
constexpr std::array<Row, 5> kKeyboardRows{{{3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3},
                                            {5, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 5},
                                            {6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 8},
                                            {8, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 10},
                                            {5, 4, 4, 27, 4, 4, 5}}};
constexpr std::array<Row, 1> kBarRows{{{7, 7, 7, 7, 7, 7, 7, 3}}};

std::string DrawnKey(int width, const Light& light) {
  // A dark key is still to be seen.
  const auto shade = [](double channel) { return static_cast<int>(std::lround(32 + 223 * channel)); };
  std::array<char, 32> color{};
  std::snprintf(color.data(), color.size(), "\033[38;2;%d;%d;%dm", shade(light.red), shade(light.green),
                shade(light.blue));
  std::string text = color.data();
  for (int i = 0; i < width; ++i) text += "▇";
  return text;
}

std::string LabelOf(std::uint8_t code, const std::vector<ModeRecord>& modes) {
  const auto mode = std::find_if(modes.begin(), modes.end(), [&](const ModeRecord& m) { return m.hw_code == code; });
  return mode != modes.end() ? mode->label : "effect " + std::to_string(code);
}

/// An effect whose mode has no colour of its own is sent with black, which says nothing.
bool ShowsOwnColor(std::uint8_t code, const std::vector<ModeRecord>& modes) {
  return std::none_of(modes.begin(), modes.end(), [&](const ModeRecord& mode) {
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

/// Whether its zones differ in their colours at most.
bool IsUniform(const Panel& panel) {
  return std::all_of(panel.zones.begin(), panel.zones.end(), [&](const Panel::Zone& zone) {
    return zone.brightness == panel.zones.front().brightness && zone.effect == panel.zones.front().effect;
  });
}

/// Neighbours that are alike share a line only where there are more zones than these.
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
  const bool is_bar = panel.shape == Panel::Shape::Bar;
  const std::span<const Row> rows = is_bar ? std::span<const Row>(kBarRows) : std::span<const Row>(kKeyboardRows);
  std::string text;
  std::uint32_t number = 0;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    int left = 0;
    for (const int width : rows[row]) {
      if (width == 0) break;
      const double y = (static_cast<double>(row) + 0.5) / static_cast<double>(rows.size());
      const Key key{(left + width / 2.0) / kWidth, y, ++number};
      text += (left > 0 ? " " : "") + DrawnKey(width, Shining(panel, key, seconds));
      left += width + 1;
    }
    text += "\033[0m\n";
  }
  return text;
}

}  // namespace zarnctl
