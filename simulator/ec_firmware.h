/// The embedded controller's lighting firmware: methods in, lights out.
///
/// Knows bytes and nothing else. It checks what it is sent (lengths, fixed bytes, zone bits) and refuses what no
/// firmware takes, with the reason. Threads: any, several at once.
#pragma once

#include <compare>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace simulator {

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend bool operator==(const Color&, const Color&) = default;
};

/// The simulator has its own, as it has its own limits: a model that shares the plug-in's would share its mistakes.
struct FirmwareVersion {
  std::uint8_t major = 0;
  std::uint8_t minor = 0;

  // NOLINTNEXTLINE(modernize-use-nullptr): the 0 that the compiler compares with is no pointer
  friend auto operator<=>(const FirmwareVersion&, const FirmwareVersion&) = default;
};

/// An effect that the firmware runs by itself on the whole keyboard.
struct Effect {
  std::uint8_t code = 0;
  std::uint8_t speed = 0;
  std::uint8_t direction = 0;
  Color color;

  friend bool operator==(const Effect&, const Effect&) = default;
};

/// What the keyboard shows. Speed and brightness stay as sent, even beyond what hardware can do.
struct KeyboardLights {
  struct Zone {
    /// The zone's switch; the colour is kept while it is off.
    bool on = false;
    Color color;

    friend bool operator==(const Zone&, const Zone&) = default;
  };
  std::vector<Zone> zones;
  std::uint8_t brightness = 0;
  /// The running effect; without one the zones show their own colours.
  std::optional<Effect> effect;

  friend bool operator==(const KeyboardLights&, const KeyboardLights&) = default;
};

/// What the light bar shows.
struct LightBarLights {
  std::uint8_t brightness = 0;
  /// The running effect, 0 being a static colour; none while the bar is dark.
  std::optional<Effect> effect;

  friend bool operator==(const LightBarLights&, const LightBarLights&) = default;
};

class EcFirmware {
 public:
  struct Settings {
    int keyboard_zones = 0;  // 0, 1, 3 or 4
    bool light_bar = false;
    FirmwareVersion version;
    /// What GetGamingLED answers instead of the truth; empty: the truth.
    std::vector<std::uint8_t> lights_report = {};
    std::uint8_t lights_return = 0;
  };
  /// A method's input: bytes, or a number as decimal text.
  using Input = std::variant<std::vector<std::uint8_t>, std::wstring>;
  struct Answer {
    /// Why the firmware refused and changed nothing. Empty when it did not refuse.
    std::string refusal = {};
    /// gmOutput: a number for the three setters, bytes for GetGamingLED.
    std::variant<std::uint32_t, std::vector<std::uint8_t>> output = std::uint32_t{0};
    /// gmReturn, which only GetGamingLED gives.
    std::optional<std::uint64_t> gm_return = std::nullopt;
  };

  explicit EcFirmware(const Settings& settings);

  /// Runs SetGamingLED, GetGamingLED, SetGamingKBBacklight or SetGamingRgbKb.
  Answer Call(std::string_view method, const Input& input);

  KeyboardLights Lights() const;
  /// Nothing where there is no light bar.
  std::optional<LightBarLights> LightBar() const;

 private:
  struct Method {
    std::string_view name;
    Answer (EcFirmware::*run)(const Input& input);
  };
  static const Method kMethods[];

  /// SetGamingLED: byte 0 is 8, byte 5 holds one switch bit per zone.
  Answer SwitchZones(const Input& input);
  /// GetGamingLED: a light bar shows as bytes of 1, where this firmware version has them. Or the settings' report.
  Answer ReportLights(const Input& input);
  /// SetGamingKBBacklight: effect, speed, brightness, 0, direction, red, green, blue, 3, target (1 the keyboard, 3 the
  /// light bar too), six times 0. Effect 0 with a brightness alone shows the zones' own colours again. With a speed,
  /// direction or colour it lights every zone in its colour. The light bar shows every effect, 0 as well.
  Answer SetEffect(const Input& input);
  /// SetGamingRgbKb: bits 0 to 7 one zone bit, then red, green and blue.
  Answer ColorZone(const Input& input);

  const Settings settings_;
  mutable std::mutex lock_;
  KeyboardLights lights_;     // guarded by lock_
  LightBarLights light_bar_;  // guarded by lock_
};

}  // namespace simulator
