#include "ec/zarn_ec_keyboard_controller.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstddef>

#include "ec/effect_packet.h"
#include "firmware/firmware_methods.h"
#include "firmware/smbios.h"
#include "log/info_log.h"

namespace {

constexpr std::uint8_t kZoneSwitch = 8;    // byte 0 of the zone switch packet
constexpr std::size_t kZoneBitsByte = 5;   // its byte with a bit per zone
constexpr std::size_t kSwitchedZones = 4;  // more zones have no bit there
constexpr std::size_t kLoggedBrightnessBytes = 10;
constexpr std::size_t kLongestOnOffPacket = 16;

/// A zone's bit in byte 0, then red, green, blue.
std::uint64_t ZoneColorValue(std::uint64_t zone_bit, PackedColor color) {
  return (zone_bit & 0xFF) | std::uint64_t{color & 0xFFFFFF} << 8;
}

/// The length of the zone switch packet that the firmware of this version expects.
std::int32_t OnOffPacketLength(const FirmwareVersion& version) {
  if (version < FirmwareVersion{2, 86}) return 8;
  return version < FirmwareVersion{2, 91} ? 12 : kLongestOnOffPacket;
}

}  // namespace

ZarnECKeyboardController::ZarnECKeyboardController() {
  stSMBiosType172 record;
  if (!ReadSMBiosType172(record)) return;
  bios_major = record.biosMajor;
  bios_minor = record.biosMinor;
  const std::uint16_t zones = FirstItem(record, kItemKeyboardZones).value_or(0);
  if (IsZoneCount(zones)) zone_count = zones;
}

void ZarnECKeyboardController::SendColors(const PackedColor* colors, std::uint32_t count, std::uint8_t brightness) {
  const InfoLog log(L"ZarnECKeyboardController::SendColors");
  log(L"WMI stSMBiosType172: %d.%d", bios_major, bios_minor);
  SetKeyboardOnOff({colors, count}, OnOffPacketLength({bios_major, bios_minor}));
  SetKeyboardBrightness(brightness);
  SetKeyboardColor({colors, count});
}

std::int32_t ZarnECKeyboardController::SetMode(std::uint8_t effect, std::uint16_t speed, std::uint16_t direction,
                                               std::uint16_t brightness, std::uint8_t red, std::uint8_t green,
                                               std::uint8_t blue) {
  return SendEffect(L"ZarnECKeyboardController::SetMode", {effect, speed, direction, brightness, red, green, blue},
                    kTargetKeyboard);
}

void ZarnECKeyboardController::SetKeyboardOnOff(std::span<const PackedColor> colors, std::int32_t length) {
  const InfoLog log(L"ZarnECKeyboardController::SetKeyboardOnOff");
  std::array<std::uint8_t, kLongestOnOffPacket> packet{};
  packet[0] = kZoneSwitch;
  for (std::size_t zone = 0; zone < std::min(colors.size(), kSwitchedZones); ++zone) {
    if (colors[zone] != 0) packet[kZoneBitsByte] = static_cast<std::uint8_t>(packet[kZoneBitsByte] | 1U << zone);
  }
  for (std::int32_t i = 0; i < length; ++i) {
    log(L"WMI SetGamingLEDBehaviorFunction input[%d]: 0x%02X", i, packet[static_cast<std::size_t>(i)]);
  }
  std::uint32_t output = 0;
  if (SetGamingLED(packet.data(), &output, length) != 0) {
    log(L"WMI SetGamingLEDBehaviorFunction output : 0x%" PRIX32, output);
  } else {
    log(L"SetGamingLEDBehaviorFunction is fail!!");
  }
}

void ZarnECKeyboardController::SetKeyboardBrightness(std::uint8_t brightness) {
  const InfoLog log(L"ZarnECKeyboardController::SetKeyboardBrightness");
  const EffectPacket packet = MakeEffectPacket({.brightness = brightness}, kTargetKeyboard);
  for (std::size_t i = 0; i < kLoggedBrightnessBytes; ++i) {
    log(L"ECKeyboard::SetGamingKbbacklightFunction() input[%d]:0x%X", static_cast<int>(i), packet[i]);
  }
  std::uint64_t output = 0;
  if (SetGamingKBBacklight(packet.data(), &output) != 0) {
    log(L"WMI SetGamingKbbacklightFunction output : 0x%" PRIX64, output);
  } else {
    log(L"SetGamingKbbacklightFunction is fail!!");
  }
}

void ZarnECKeyboardController::SetKeyboardColor(std::span<const PackedColor> colors) {
  const InfoLog log(L"ZarnECKeyboardController::SetKeyboardColor");
  for (std::size_t zone = 0; zone < colors.size(); ++zone) {
    const std::uint64_t value = ZoneColorValue(std::uint64_t{1} << (zone % 64), colors[zone]);
    log(L"ECKeyboard::SetGamingRgbKbSettingFunction() Zone%d, input: 0x%" PRIX64, static_cast<int>(zone + 1), value);
    SetGamingRgbKb(value);
  }
}
