/// The device controller of the whole-device light: one effect for all that the embedded controller lights, with the
/// light bar if there is one.
///
/// Owned by the generic controller built around it. Constant after construction and without a lock: any thread may
/// call, several at once. A call returns when the firmware has answered. Every packet is logged byte by byte.
#pragma once

#include <cstdint>

class ZarnECGlobalController final {
 public:
  /// Asks the machine's SMBIOS table for a light bar; without the firmware's record there is none.
  ZarnECGlobalController();

  /// Has the firmware run an effect; settings are cut to 8 bits.
  void SetMode(std::uint8_t effect, std::uint16_t speed, std::uint16_t direction, std::uint16_t brightness,
               std::uint8_t red, std::uint8_t green, std::uint8_t blue) const;

 private:
  std::int32_t has_lightbar = 0;  // 1 or 0
};
