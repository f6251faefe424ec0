#include "simulator/ec_firmware.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <stdexcept>

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kSwitchZones = 8;
constexpr std::uint8_t kLastEffect = 7;
constexpr std::uint8_t kKeyboardOnly = 1;
constexpr std::uint8_t kKeyboardAndLightBar = 3;
constexpr std::uint64_t kAllLights = 16;
constexpr FirmwareVersion kMiddleFirmware{2, 86};
constexpr FirmwareVersion kNewFirmware{2, 91};

/// Thrown by a check, before anything has changed; becomes the answer's refusal.
class Refused : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

std::string ByteIs(std::size_t index, unsigned value) {
  return "byte " + std::to_string(index) + " is " + std::to_string(value);
}

const Bytes& Packet(const EcFirmware::Input& input, std::size_t length) {
  const auto* const packet = std::get_if<Bytes>(&input);
  if (packet == nullptr) throw Refused("the input is text, must be bytes");
  if (packet->size() == length) return *packet;
  throw Refused("the packet has " + std::to_string(packet->size()) + " bytes, must have " + std::to_string(length));
}

void RequireByte(const Bytes& packet, std::size_t index, std::uint8_t expected) {
  if (packet[index] == expected) return;
  throw Refused(ByteIs(index, packet[index]) + ", must be " + std::to_string(expected));
}

std::uint64_t Number(const EcFirmware::Input& input) {
  const auto* const text = std::get_if<std::wstring>(&input);
  if (text == nullptr) throw Refused("the input is bytes, must be a number as text");
  std::string digits;
  for (const wchar_t digit : *text) digits += digit >= L'0' && digit <= L'9' ? static_cast<char>(digit) : '?';
  std::uint64_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc{} || stop != end) throw Refused("the input is no decimal number of 64 bits");
  return number;
}

}  // namespace

const EcFirmware::Method EcFirmware::kMethods[] = {
    {"SetGamingLED", &EcFirmware::SwitchZones},
    {"GetGamingLED", &EcFirmware::ReportLights},
    {"SetGamingKBBacklight", &EcFirmware::SetEffect},
    {"SetGamingRgbKb", &EcFirmware::ColorZone},
};

EcFirmware::EcFirmware(const Settings& settings) : settings_(settings) {
  lights_.zones.resize(static_cast<std::size_t>(settings.keyboard_zones));
}

EcFirmware::Answer EcFirmware::Call(std::string_view method, const Input& input) {
  const auto* const known = std::ranges::find(kMethods, method, &Method::name);
  if (known == std::end(kMethods)) return {.refusal = "there is no method \"" + std::string(method) + "\""};
  const std::lock_guard guard(lock_);
  try {
    return (this->*known->run)(input);
  } catch (const Refused& refused) {
    return {.refusal = refused.what()};
  }
}

KeyboardLights EcFirmware::Lights() const {
  const std::lock_guard guard(lock_);
  return lights_;
}

std::optional<LightBarLights> EcFirmware::LightBar() const {
  const std::lock_guard guard(lock_);
  return settings_.light_bar ? std::optional(light_bar_) : std::nullopt;
}

EcFirmware::Answer EcFirmware::SwitchZones(const Input& input) {
  const std::size_t length = settings_.version < kMiddleFirmware ? 8 : settings_.version < kNewFirmware ? 12 : 16;
  const Bytes& packet = Packet(input, length);
  for (std::size_t i = 0; i < packet.size(); ++i) {
    if (i != 5) RequireByte(packet, i, i == 0 ? kSwitchZones : 0);
  }
  const unsigned bits = packet[5];
  if (bits >> lights_.zones.size() != 0) throw Refused(ByteIs(5, bits) + ", a switch bit for a zone that is not there");
  for (std::size_t i = 0; i < lights_.zones.size(); ++i) lights_.zones[i].on = (bits >> i & 1) != 0;
  return {};
}

EcFirmware::Answer EcFirmware::ReportLights(const Input& input) {
  const std::uint64_t asked = Number(input);
  if (asked != kAllLights) throw Refused("the input is " + std::to_string(asked) + ", must be 16");
  const std::uint64_t gm_return = settings_.lights_return;
  if (!settings_.lights_report.empty()) return {.output = settings_.lights_report, .gm_return = gm_return};
  Bytes report(15);
  const bool old = settings_.version < kNewFirmware;
  if (settings_.light_bar && old) report[5] = 1;
  if (settings_.light_bar && !old) report[7] = report[8] = 1;
  return {.output = std::move(report), .gm_return = gm_return};
}

EcFirmware::Answer EcFirmware::SetEffect(const Input& input) {
  const Bytes& packet = Packet(input, 16);
  if (packet[0] > kLastEffect)
    throw Refused(ByteIs(0, packet[0]) + ", effects are 0 to " + std::to_string(kLastEffect));
  RequireByte(packet, 3, 0);
  RequireByte(packet, 8, 3);
  const bool with_light_bar = packet[9] == kKeyboardAndLightBar;
  if (with_light_bar && !settings_.light_bar) throw Refused(ByteIs(9, packet[9]) + ", but there is no light bar");
  if (!with_light_bar) RequireByte(packet, 9, kKeyboardOnly);
  for (std::size_t i = 10; i < packet.size(); ++i) RequireByte(packet, i, 0);

  const Effect effect{packet[0], packet[1], packet[4], {packet[5], packet[6], packet[7]}};
  if (with_light_bar) light_bar_ = {packet[2], effect};
  lights_.brightness = packet[2];
  lights_.effect.reset();
  if (effect.code != 0) {
    lights_.effect = effect;
  } else if (effect != Effect{}) {
    std::ranges::fill(lights_.zones, KeyboardLights::Zone{true, effect.color});
  }
  return {};
}

EcFirmware::Answer EcFirmware::ColorZone(const Input& input) {
  const std::uint64_t value = Number(input);
  const auto byte = [value](unsigned index) { return static_cast<std::uint8_t>(value >> (8 * index)); };
  if (value >> 32 != 0) throw Refused("bits 32 to 63 are not 0");
  if (!std::has_single_bit(byte(0))) throw Refused(ByteIs(0, byte(0)) + ", must be exactly one zone bit");
  const auto zone = static_cast<std::size_t>(std::countr_zero(byte(0)));
  if (zone >= lights_.zones.size()) throw Refused(ByteIs(0, byte(0)) + ", a zone that is not there");
  lights_.zones[zone].color = {byte(1), byte(2), byte(3)};
  return {};
}

}  // namespace simulator
