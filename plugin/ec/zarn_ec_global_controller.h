/// The device controller of the whole-device light: one effect for everything that the embedded controller lights, the
/// light bar included where there is one.
///
/// Owned by the generic controller built around it. Constant after construction and without a lock: any thread may
/// call, several at once. A call returns when the firmware has answered. Every packet is logged byte by byte.
#pragma once

#include <cstdint>

class ZarnECGlobalController final {
 public:
  /// Asks the machine's SMBIOS table whether there is a light bar; without such a record there is none.
  ZarnECGlobalController();

  /// Lets the firmware run an effect; settings are cut to 8 bits. What came of it is not told.
  void SetMode(std::uint8_t effect, std::uint16_t speed, std::uint16_t direction, std::uint16_t brightness,
               std::uint8_t red, std::uint8_t green, std::uint8_t blue) const;

 private:
  std::int32_t has_lightbar = 0;  // 1 or 0
};
