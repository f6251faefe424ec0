#include <array>
#include <cinttypes>
#include <optional>
#include <span>

#include "controller/millisecond_sleep.h"
#include "hid/hid_log.h"
#include "hid/hid_resources.h"
#include "hid/lighting_hid.h"
#include "platform/system.h"

namespace zarn::WRV520::Lighting {
namespace {

constexpr int kAttempts = 5;
constexpr int kPauseMilliseconds = 20;
constexpr std::uint8_t kWidestValue = 4;  // in bytes; what comes behind a wider field cannot be placed

constexpr wchar_t kBaseInfoTag[] = L"zarn::WRV520::Lighting::LightingHID::GetLightingDeviceBaseInfo";
constexpr wchar_t kUpdateTag[] = L"zarn::WRV520::Lighting::LightingHID::SetLightingDeviceUpdateReport";

/// The data of a report, without its id.
constexpr std::size_t kPayloadSize = TsHID::kFeatureBufferSize;
using Payload = std::array<std::uint8_t, kPayloadSize>;

/// Walks a payload in the order of its fields, by the widths that the device declares. Widths are asked for to the end,
/// also when the place of the rest is not known any more.
template <typename Byte>
class FieldCursor {
 public:
  FieldCursor(std::uint8_t report_id, std::span<Byte, kPayloadSize> payload)
      : report_id_(report_id), payload_(payload) {}

  /// The bytes of the field; none when it takes no room, or has no place.
  std::span<Byte> Next(std::uint8_t usage) {
    std::uint8_t width = 0;
    const std::uint8_t device_id = payload_.front();
    if (!LightingHID::GetFieldSize(device_id, report_id_, usage, width)) return {};
    lost_ = lost_ || width > kWidestValue;
    if (lost_) return {};
    const std::span<Byte> field = payload_.subspan(position_, width);
    position_ += width;
    return field;
  }

 private:
  const std::uint8_t report_id_;
  const std::span<Byte, kPayloadSize> payload_;  // begins with the lighting device id
  std::size_t position_ = 1;
  bool lost_ = false;
};

/// The beginning of every attempt.
bool Open(_HIDInfo& device, const HidLog& log) {
  device.handle = LightingHID::OpenLightingDevice(device);
  if (IsOpen(device.handle)) return true;
  log.Error(L"GetHIDDeviceHandle fail");
  return false;
}

/// The end of an attempt whose exchange failed. The next one opens the device anew.
template <typename... Arguments>
void CloseAndPause(_HIDInfo& device, const HidLog& log, const wchar_t* why, Arguments... arguments) {
  CloseHandle(device.handle);
  device.handle = INVALID_HANDLE_VALUE;
  log.Error(why, arguments...);
  SleepMilliseconds(kPauseMilliseconds);
}

std::uint32_t Decoded(std::span<const std::uint8_t> field) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < field.size(); ++i) value |= std::uint32_t{field[i]} << (8 * i);
  return value;
}

void Encode(std::uint32_t value, std::span<std::uint8_t> field) {
  for (std::size_t i = 0; i < field.size(); ++i) field[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

LightingDeviceBaseInfo DecodedBaseInfo(const Payload& reply) {
  FieldCursor cursor(kBaseInfoReply, std::span(reply));
  const auto next = [&cursor](std::uint8_t usage) { return Decoded(cursor.Next(usage)); };
  LightingDeviceBaseInfo info;
  info.deviceId = reply[0];
  info.info34 = static_cast<std::uint8_t>(next(FieldUsage::Info34));
  info.info32 = static_cast<std::uint8_t>(next(FieldUsage::Info32));
  info.zoneCount = static_cast<std::uint16_t>(next(FieldUsage::ZoneCount));
  info.info33 = static_cast<std::uint16_t>(next(FieldUsage::Info33));
  info.effectMask = next(FieldUsage::EffectMask);
  return info;
}

/// A value of the update report, in the order of the report.
struct UpdateValue {
  std::uint8_t usage;
  std::uint32_t value;
};

Payload UpdatePayload(std::uint8_t device_id, std::span<const UpdateValue> values) {
  Payload payload{device_id};
  FieldCursor cursor(kUpdateReport, std::span(payload));
  for (const auto& [usage, value] : values) Encode(value, cursor.Next(usage));
  return payload;
}

/// One attempt; nothing when another one may be made.
std::optional<Payload> AskForBaseInfo(_HIDInfo& device, std::uint8_t device_id, const HidLog& log) {
  if (!Open(device, log)) return std::nullopt;
  log.Info(L"vid: %04X pid: %04X usage: %04X:%04X", device.vendorId, device.productId, device.usagePage, device.usage);
  const Payload request{device_id};
  if (!TsHID::SetHIDFeature(device.handle, kBaseInfoRequest, request.data(), request.size())) {
    CloseAndPause(device, log, L"Error setting feature on HID device");
    return std::nullopt;
  }
  Sleep(kPauseMilliseconds);
  Payload reply{};
  if (!TsHID::GetHIDFeature(device.handle, kBaseInfoReply, reply.data())) {
    CloseAndPause(device, log, L"Error %" PRIX32 L": getting feature from HID device",
                  static_cast<std::uint32_t>(GetLastError()));
    return std::nullopt;
  }
  return reply;
}

/// One attempt; whether the device took it.
bool SendUpdate(_HIDInfo& device, std::uint8_t device_id, std::span<const UpdateValue> values, const HidLog& log) {
  if (!Open(device, log)) return false;
  const Payload payload = UpdatePayload(device_id, values);
  log.Info(L"%02X,%02X,%02X,%02X,%02X,%02X,%02X,%02X,%02X,%02X", payload[0], payload[1], payload[2], payload[3],
           payload[4], payload[5], payload[6], payload[7], payload[8], payload[9]);
  if (TsHID::SetHIDFeature(device.handle, kUpdateReport, payload.data(), payload.size())) return true;
  CloseAndPause(device, log, L"Error setting feature on HID device");
  return false;
}

}  // namespace

bool LightingHID::GetLightingDeviceBaseInfo(std::uint8_t device_id, LightingDeviceBaseInfo& info) {
  const HidLog log(kBaseInfoTag);
  const std::lock_guard lock(g_lightingDevicesLock);
  for (_HIDInfo& device : g_lightingDevices) {
    if (!device.deviceIds.contains(device_id)) continue;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      const std::optional<Payload> reply = AskForBaseInfo(device, device_id, log);
      if (!reply) continue;
      info = {};
      if (reply->front() == device_id) {
        info = DecodedBaseInfo(*reply);
        return true;
      }
      log.Error(L"Error Device Id input: %d output: %d not match", device_id, reply->front());
      return false;
    }
  }
  return false;
}

void LightingHID::SetLightingDeviceUpdateReport(std::uint8_t device_id, std::uint8_t mode, std::uint8_t speed,
                                                std::uint8_t direction, std::uint8_t brightness, std::uint8_t red,
                                                std::uint8_t green, std::uint8_t blue, std::uint16_t zone_mask) {
  // Brightness comes before speed.
  const UpdateValue values[] = {{FieldUsage::Mode, mode},   {FieldUsage::Brightness, brightness},
                                {FieldUsage::Speed, speed}, {FieldUsage::Direction, direction},
                                {FieldUsage::Red, red},     {FieldUsage::Green, green},
                                {FieldUsage::Blue, blue},   {FieldUsage::ZoneMask, zone_mask}};
  const HidLog log(kUpdateTag);
  const std::lock_guard lock(g_lightingDevicesLock);
  for (_HIDInfo& device : g_lightingDevices) {
    if (!device.deviceIds.contains(device_id)) continue;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      if (SendUpdate(device, device_id, values, log)) break;
    }
  }
}

}  // namespace zarn::WRV520::Lighting
