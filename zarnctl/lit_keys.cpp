#include "zarnctl/lit_keys.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <span>

namespace zarnctl {
namespace {

using simulator::Color;
using simulator::Effect;

/// A key's place on the keyboard, from 0 to 1 each way, and its number.
struct Place {
  double x;
  double y;
  std::uint32_t number;
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

/// A number from 0 to 1 that looks random. The same seeds give the same number.
double Chance(std::uint32_t a, std::uint32_t b) {
  std::uint32_t hash = a * 0x9E3779B1U ^ b * 0x85EBCA77U;
  hash = (hash ^ hash >> 15) * 0x2C1B3C6DU;
  hash = (hash ^ hash >> 12) * 0x297A2D39U;
  return (hash ^ hash >> 15) / 4294967295.0;
}

/// How far the effect has to run to reach the place, from 0 to 1.
double Travelled(const Effect& effect, const Place& place) {
  switch (effect.direction) {
    case 2:
      return 1 - place.x;
    case 3:
      return 1 - place.y;
    case 4:
      return place.y;
    case 5:
      return std::abs(2 * place.x - 1);
    case 6:
      return std::abs(2 * place.y - 1);
    default:
      return place.x;
  }
}

// The animations. A cycle is one breath, one turn of the colours, or one run across the keyboard.

Light Static(const Effect& effect, const Place& /*place*/, double /*cycles*/) { return LightOf(effect.color); }

Light Breathing(const Effect& effect, const Place& /*place*/, double cycles) {
  return LightOf(effect.color) * (0.5 + 0.5 * std::cos(2 * std::numbers::pi * cycles));
}

Light Neon(const Effect& /*effect*/, const Place& /*place*/, double cycles) { return Rainbow(cycles / 2); }

Light Wave(const Effect& effect, const Place& place, double cycles) {
  return Rainbow(Travelled(effect, place) - cycles);
}

Light Shifting(const Effect& effect, const Place& place, double cycles) {
  return Fraction(Travelled(effect, place) - cycles) < 0.5 ? LightOf(effect.color) : kDark;
}

Light Zoom(const Effect& effect, const Place& place, double cycles) {
  const double distance = std::hypot(2 * place.x - 1, (2 * place.y - 1) / 2);
  return LightOf(effect.color) * std::max(0.0, 1 - 4 * std::abs(distance - 1.2 * Fraction(cycles)));
}

Light Meteor(const Effect& effect, const Place& place, double cycles) {
  const double row_offset = Chance(static_cast<std::uint32_t>(5 * place.y), 1);
  const double behind = Fraction(cycles + row_offset - Travelled(effect, place) / 1.5);
  return LightOf(effect.color) * std::exp(-9 * behind);
}

Light Twinkling(const Effect& effect, const Place& place, double cycles) {
  const double own_time = cycles + Chance(place.number, 2);
  const bool lit = Chance(place.number, 3 + static_cast<std::uint32_t>(own_time)) < 0.35;
  return lit ? LightOf(effect.color) * std::sin(std::numbers::pi * Fraction(own_time)) : kDark;
}

Light Ripple(const Effect& /*effect*/, const Place& place, double cycles) {
  const double distance = std::hypot(2 * place.x - 1, (2 * place.y - 1) / 2);
  return Rainbow(distance) * (0.5 + 0.5 * std::cos(2 * std::numbers::pi * (2 * distance - cycles)));
}

Light Snake(const Effect& /*effect*/, const Place& place, double cycles) {
  // Along the rows, there and back.
  const auto row = std::floor(5 * place.y);
  const double along = (row + (static_cast<int>(row) % 2 == 0 ? place.x : 1 - place.x)) / 5;
  const double behind = Fraction(cycles / 2 - along);
  return behind < 0.2 ? Rainbow(cycles / 4) * (1 - 5 * behind) : kDark;
}

Light Disco(const Effect& /*effect*/, const Place& place, double cycles) {
  return Rainbow(Chance(place.number, 4 + static_cast<std::uint32_t>(2 * cycles)));
}

Light Combo(const Effect& effect, const Place& place, double cycles) {
  const auto turn = static_cast<std::uint32_t>(cycles) % 3;
  return turn == 0   ? Wave(effect, place, cycles)
         : turn == 1 ? Ripple(effect, place, cycles)
                     : Disco(effect, place, cycles);
}

/// A mode without speed and brightness, so we give it a speed.
constexpr std::uint8_t kOpMode = 34;
constexpr std::uint8_t kOpModeSpeed = 4;

using Animation = Light (*)(const Effect&, const Place&, double cycles);
constexpr std::array<Animation, 12> kAnimations{Static, Breathing, Neon,   Wave,  Shifting, Zoom,
                                                Meteor, Twinkling, Ripple, Snake, Disco,    Combo};

/// Cycles per second for each step of speed.
constexpr double kCyclesPerSpeed = 0.15;

Light Shining(const Panel& panel, const Place& place, double seconds) {
  if (panel.zones.empty()) return kDark;
  const Panel::Zone& zone = panel.zones[static_cast<std::size_t>(place.x * static_cast<double>(panel.zones.size()))];
  const double brightness = std::min(1.0, zone.brightness / 100.0);
  if (!zone.effect) return zone.on ? LightOf(zone.color) * brightness : kDark;
  const Effect& effect = *zone.effect;
  const double cycles = seconds * kCyclesPerSpeed;
  if (effect.code == kOpMode) return Breathing(effect, place, cycles * kOpModeSpeed);
  const Animation animation = effect.code < kAnimations.size() ? kAnimations.at(effect.code) : Static;
  return animation(effect, place, cycles * effect.speed) * brightness;
}

/// The widths of the keys, row by row. With a blank between two keys each row is kKeyColumns wide.
using Row = std::array<int, 15>;
constexpr std::array<Row, 5> kKeyboardRows{{{3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3},
                                            {5, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 5},
                                            {6, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 8},
                                            {8, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 10},
                                            {5, 4, 4, 27, 4, 4, 5}}};
constexpr std::array<Row, 1> kBarRows{{{5, 5, 5, 5, 5, 5, 5, 5, 5, 5}}};

}  // namespace

std::vector<LitKey> LitKeys(const Panel& panel, double seconds) {
  const bool is_bar = panel.shape == Panel::Shape::Bar;
  const std::span<const Row> rows = is_bar ? std::span<const Row>(kBarRows) : std::span<const Row>(kKeyboardRows);
  std::vector<LitKey> keys;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    int left = 0;
    for (const int width : rows[row]) {
      if (width == 0) break;
      const double y = (static_cast<double>(row) + 0.5) / static_cast<double>(rows.size());
      const Place place{(left + width / 2.0) / kKeyColumns, y, static_cast<std::uint32_t>(keys.size() + 1)};
      keys.push_back({static_cast<int>(row), left, width, Shining(panel, place, seconds)});
      left += width + 1;
    }
  }
  return keys;
}

std::array<std::uint8_t, 3> ShownColor(const Light& light) {
  const auto shade = [](double channel) { return static_cast<std::uint8_t>(std::lround(32 + 223 * channel)); };
  return {shade(light.red), shade(light.green), shade(light.blue)};
}

}  // namespace zarnctl
