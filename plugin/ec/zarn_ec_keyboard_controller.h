/// The device controller of the EC keyboard: turns lighting requests into the packets of the firmware's methods.
///
/// Owned by the generic controller built around it. Constant after construction and without a lock: any thread may
/// call, several at once. A call returns when the firmware has answered. Every packet is logged byte by byte.
#pragma once

#include <cstdint>
#include <span>

#include "zarn_lighting/records.h"

class ZarnECKeyboardController final {
 public:
  /// Takes zone count and firmware version from the machine's SMBIOS table; all stay 0 when it has no such record.
  ZarnECKeyboardController();

  // Two virtual operations, called by position, and no virtual destructor: the class is final and its owner knows it.

  /// Slot 0. Sends which zones are lit, their brightness, and the colour of each.
  virtual void SendColors(const PackedColor* colors, std::uint32_t count, std::uint8_t brightness);
  /// Slot 1. Has the firmware run an effect; settings are cut to 8 bits. 1 when the firmware took it, else 0.
  virtual std::int32_t SetMode(std::uint8_t effect, std::uint16_t speed, std::uint16_t direction,
                               std::uint16_t brightness, std::uint8_t red, std::uint8_t green, std::uint8_t blue);

  /// Independently coloured zones: 0, 1, 3 or 4.
  std::int32_t ZoneCount() const { return zone_count; }

 private:
  /// Switches zones: those with a colour other than black on, the others off. `length` is the packet's, in bytes.
  static void SetKeyboardOnOff(std::span<const PackedColor> colors, std::int32_t length);
  static void SetKeyboardBrightness(std::uint8_t brightness);
  static void SetKeyboardColor(std::span<const PackedColor> colors);

  std::int32_t zone_count = 0;
  std::int32_t bios_major = 0;
  std::int32_t bios_minor = 0;
};
