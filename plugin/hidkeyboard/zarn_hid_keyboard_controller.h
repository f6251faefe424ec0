/// The device controller of the HID keyboard: turns lighting requests into update reports for its lighting device id.
///
/// Owned by the generic controller built around it; works on its own, too. Constant after construction and without a
/// lock: any thread may call. Reports go out one at a time. A call returns when the keyboard has taken its reports or
/// all attempts have failed. Only the log tells which.
#pragma once

#include <cstdint>

class ZarnHIDKeyboardController final {
 public:
  /// Asks the keyboard for its zones and effects, which needs the list of devices that discovery builds. Both stay 0
  /// when there is no keyboard or it does not answer.
  ZarnHIDKeyboardController();
  ZarnHIDKeyboardController(const ZarnHIDKeyboardController&) = delete;
  ZarnHIDKeyboardController& operator=(const ZarnHIDKeyboardController&) = delete;
  /// Closes the handles of all lighting devices; the next report opens what it needs again.
  ~ZarnHIDKeyboardController();

  // Four virtual operations, called by position, and no virtual destructor: the class is final and its owner knows it.

  /// Slot 0. The keyboard's effect code for a mode's code.
  virtual std::uint8_t ToDeviceMode(std::uint32_t mode_code);
  /// Slot 1. The keyboard's direction code for a mode's direction setting.
  virtual std::uint16_t ToDeviceDirection(std::uint32_t direction_code);
  /// Slot 2. Gives each of the first 16 zones a static colour, 20 ms apart. `colors` holds 4 bytes per zone: red,
  /// green, blue, and one that is ignored.
  virtual void SendColors(const std::uint8_t* colors, std::uint32_t count, std::uint16_t brightness);
  /// Slot 3. Sends one update for the zones in `zone_mask`; speed, direction and brightness are cut to 8 bits. `mode`
  /// is the keyboard's own code.
  virtual void SetMode(std::uint8_t mode, std::uint16_t speed, std::uint16_t direction, std::uint16_t brightness,
                       std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint16_t zone_mask);

  std::uint32_t ZoneCount() const { return zone_count; }
  std::uint32_t EffectMask() const { return effect_mask; }

 private:
  std::uint8_t lighting_id;
  std::uint32_t zone_count = 0;
  std::uint32_t effect_mask = 0;                      // bit n for the effect with the keyboard's code n + 1
  [[maybe_unused]] std::uint32_t reserved_value = 9;  // part of the object's layout; nothing here reads it
};

/// As many zones as the mask of an update has bits.
inline constexpr std::uint32_t kAddressableZones = 16;

/// The bit of a zone in the mask of an update; 0 for a zone beyond the mask.
constexpr std::uint16_t ZoneBit(std::uint32_t zone) {
  return zone < kAddressableZones ? static_cast<std::uint16_t>(1U << zone) : std::uint16_t{0};
}

/// The bits of the first `count` zones, or all that the mask has.
constexpr std::uint16_t AllZones(std::uint32_t count) {
  return static_cast<std::uint16_t>(count > kAddressableZones ? 0xFFFFU : (1U << count) - 1);
}
