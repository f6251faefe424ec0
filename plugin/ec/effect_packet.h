/// The 16-byte packet of SetGamingKBBacklight: it has the EC run an effect or take a brightness.
#pragma once

#include <array>
#include <cstdint>

using EffectPacket = std::array<std::uint8_t, 16>;

/// Byte 9: what the packet is for.
inline constexpr std::uint8_t kTargetKeyboard = 1;
inline constexpr std::uint8_t kTargetKeyboardAndLightBar = 3;

struct EffectSettings {
  std::uint8_t effect = 0;
  std::uint16_t speed = 0;
  std::uint16_t direction = 0;
  std::uint16_t brightness = 0;
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
};

/// The packet; of speed, brightness and direction the low 8 bits.
constexpr EffectPacket MakeEffectPacket(const EffectSettings& settings, std::uint8_t target) {
  return {settings.effect,
          static_cast<std::uint8_t>(settings.speed),
          static_cast<std::uint8_t>(settings.brightness),
          0,
          static_cast<std::uint8_t>(settings.direction),
          settings.red,
          settings.green,
          settings.blue,
          3,
          target};
}

/// Has the firmware run an effect. Logs the request and then every byte under `function_tag`. 1 when the firmware took
/// the packet, else 0.
std::int32_t SendEffect(const wchar_t* function_tag, const EffectSettings& settings, std::uint8_t target);
