#include <array>
#include <cinttypes>
#include <optional>
#include <span>

#include "base/little_endian.h"
#include "base/millisecond_sleep.h"
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

/// Walks a payload in the order of its fields, by the widths that the device declares. It asks for every
/// width, even once the place of the rest is unknown, because each question may log a line. A value is cut to its
/// field's width, or filled up with zeros.
template <typename Byte>
class FieldCursor {
 public:
  FieldCursor(std::uint8_t report_id, std::span<Byte, kPayloadSize> payload)
      : report_id_(report_id), payload_(payload) {}

  template <typename Number>
  void Read(std::uint8_t usage, Number& value) {
    value = static_cast<Number>(FromLittleEndian(Next(usage)));
  }
  void Write(std::uint8_t usage, std::uint32_t value) { ToLittleEndian(value, Next(usage)); }

 private:
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
  CloseKept(device.handle);
  log.Error(why, arguments...);
  SleepMilliseconds(kPauseMilliseconds);
}

LightingDeviceBaseInfo DecodedBaseInfo(const Payload& reply) {
  LightingDeviceBaseInfo info;
  info.deviceId = reply[0];
  FieldCursor cursor(kBaseInfoReply, std::span(reply));
  cursor.Read(0x34, info.info34);
  cursor.Read(0x32, info.info32);
  cursor.Read(0x35, info.zoneCount);
  cursor.Read(0x33, info.info33);
  cursor.Read(0x31, info.effectMask);
  return info;
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
template <typename MakePayload>
bool SendUpdate(_HIDInfo& device, const HidLog& log, MakePayload make_payload) {
  if (!Open(device, log)) return false;
  const Payload payload = make_payload();
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
  const auto make_payload = [&] {
    Payload payload{device_id};
    FieldCursor cursor(kUpdateReport, std::span(payload));
    cursor.Write(0x41, mode);
    cursor.Write(0x43, brightness);
    cursor.Write(0x42, speed);
    cursor.Write(0x44, direction);
    cursor.Write(0x45, red);
    cursor.Write(0x46, green);
    cursor.Write(0x47, blue);
    cursor.Write(0x48, zone_mask);
    return payload;
  };
  const HidLog log(kUpdateTag);
  const std::lock_guard lock(g_lightingDevicesLock);
  for (_HIDInfo& device : g_lightingDevices) {
    if (!device.deviceIds.contains(device_id)) continue;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
      if (SendUpdate(device, log, make_payload)) break;
    }
  }
}

}  // namespace zarn::WRV520::Lighting
