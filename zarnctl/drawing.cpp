#include "zarnctl/drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <numbers>

#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using simulator::Color;
using simulator::Effect;
using simulator::KeyboardLights;

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

using Animation = Light (*)(const Effect&, const Key&, double cycles);
constexpr std::array<Animation, 8> kAnimations{Static, Breathing, Neon, Wave, Shifting, Zoom, Meteor, Twinkling};

Light Animated(const Effect& effect, const Key& key, double seconds) {
  const Animation animation = effect.code < kAnimations.size() ? kAnimations.at(effect.code) : Static;
  return animation(effect, key, seconds * 0.15 * effect.speed);
}

Light OfZone(const KeyboardLights& lights, const Key& key) {
  if (lights.zones.empty()) return kDark;
  const auto zone = static_cast<std::size_t>(key.x * static_cast<double>(lights.zones.size()));
  return lights.zones[zone].on ? LightOf(lights.zones[zone].color) : kDark;
}

constexpr int kKeyboardWidth = 59;
/// The widths of the keys, row by row; with a blank between keys every row is as wide as the keyboard.
constexpr std::array<std::array<int, 15>, 5> kRows{{{3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3},
                                                    {5, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 5},
                                                    {6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 8},
                                                    {8, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 10},
                                                    {5, 4, 4, 27, 4, 4, 5}}};

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

}  // namespace

std::string Headline(const KeyboardLights& lights, const std::vector<ModeRecord>& modes) {
  std::string text = "keyboard: brightness " + std::to_string(lights.brightness);
  if (!lights.effect) return text;
  const Effect& effect = *lights.effect;
  text += ", " + LabelOf(effect.code, modes) + " speed " + std::to_string(effect.speed) + " direction " +
          std::to_string(effect.direction);
  if (ShowsOwnColor(effect.code, modes)) text += " colour " + TextOf(effect.color);
  return text;
}

std::string PlainLights(const KeyboardLights& lights, const std::vector<ModeRecord>& modes) {
  std::string text = Headline(lights, modes) + "\n";
  if (lights.effect) return text;
  for (std::size_t i = 0; i < lights.zones.size(); ++i) {
    const KeyboardLights::Zone& zone = lights.zones[i];
    text += "zone " + std::to_string(i + 1) + ": " + (zone.on ? TextOf(zone.color) : "off") + "\n";
  }
  return text;
}

std::string DrawnKeyboard(const KeyboardLights& lights, double seconds) {
  std::string text;
  const double brightness = std::min(1.0, lights.brightness / 100.0);
  std::uint32_t number = 0;
  for (std::size_t row = 0; row < kRows.size(); ++row) {
    int left = 0;
    for (const int width : kRows.at(row)) {
      if (width == 0) break;
      const Key key{(left + width / 2.0) / kKeyboardWidth, (static_cast<double>(row) + 0.5) / kRows.size(), ++number};
      const Light light = lights.effect ? Animated(*lights.effect, key, seconds) : OfZone(lights, key);
      text += (left > 0 ? " " : "") + DrawnKey(width, light * brightness);
      left += width + 1;
    }
    text += "\033[0m\n";
  }
  return text;
}

}  // namespace zarnctl
