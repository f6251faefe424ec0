#include "zarn_lighting/check_device_status.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "firmware/firmware_methods.h"
#include "firmware/smbios.h"
#include "hid/lighting_hid.h"
#include "log/format.h"
#include "log/info_log.h"
#include "log/logger.h"
#include "log/service_switch.h"
#include "log/ts_log.h"

using zarn::WRV520::Lighting::LightingHID;

namespace {

constexpr std::uint32_t kHidInterface = 1;
constexpr std::uint32_t kEcInterface = 3;

constexpr wchar_t kHidKeyboard[] = L"ZarnHIDKeyboard";

constexpr InfoLog kLog(L"CheckDeviceStatus");

/// What the host is told.
struct Status {
  std::wstring names;  // when empty, the host's text stays as it is
  std::uint32_t interface_type = 0;
  std::wstring hardware_id;
  std::wstring usage_page;
  std::int32_t count = 0;
};

/// Closes the handles of all lighting devices when its scope ends, also by an exception.
class PresenceTest {
 public:
  PresenceTest() = default;
  PresenceTest(const PresenceTest&) = delete;
  PresenceTest& operator=(const PresenceTest&) = delete;
  ~PresenceTest() { LightingHID::CloseLightingDevices(); }
};

/// The HID keyboard, if there is one.
std::optional<_HIDInfo> FindHidKeyboard() {
  const PresenceTest test;
  _HIDInfo keyboard;
  return LightingHID::FindLightingDevice(keyboard) ? std::optional(std::move(keyboard)) : std::nullopt;
}

Status HidKeyboardAlone(const _HIDInfo& keyboard) {
  return {.names = kHidKeyboard,
          .interface_type = kHidInterface,
          .hardware_id = Formatted(L"USB\\VID_%04X&PID_%04X", keyboard.vendorId, keyboard.productId),
          .usage_page = Formatted(L"%04X", keyboard.usagePage),
          .count = 1};
}

/// Whether the firmware confirms the light bar that its record announces. Older firmware does so in byte 6 of its
/// answer, if byte 0 says that the call went well. Newer firmware does so in any of four pairs of bytes.
bool FirmwareHasLightBar(const FirmwareVersion& version) {
  kLog(L"BIOS major version:%d - BIOS minor version::%d", version.major, version.minor);
  std::array<std::uint8_t, 16> answer{};
  const auto is_set = [&answer](std::size_t i) { return answer.at(i) != 0 && answer.at(i) != 0xFF; };
  if (version < FirmwareVersion{2, 91}) {
    GetGamingLED(answer.data(), 11);
    return answer[0] == 0 && is_set(6);
  }
  GetGamingLED(answer.data(), 16);
  constexpr std::size_t kPairs[] = {6, 8, 10, 12};
  return std::ranges::any_of(kPairs, [&](std::size_t first) { return is_set(first) && is_set(first + 1); });
}

/// Number and names of the embedded controller's devices: none, the keyboard, or the whole-device light as well.
std::pair<std::int32_t, const wchar_t*> FindEcDevices() {
  stSMBiosType172 record;  // all zero when there is none
  if (!ReadSMBiosType172(record)) kLog(L"Get SMBIOS 172 fail!");
  const AnnouncedLights announced = FindAnnouncedLights(record);
  kLog(L"Is EC Keyboard: %d", announced.keyboard ? 1 : 0);
  kLog(L"Is RGB Keyboard: %d", announced.rgb_keyboard ? 1 : 0);
  if (!announced.keyboard || !announced.rgb_keyboard) return {0, L""};
  kLog(L"Is EC Lightbar: %d", announced.light_bar ? 1 : 0);
  const bool both = announced.light_bar && FirmwareHasLightBar({record.biosMajor, record.biosMinor});
  if (both) return {2, L"ZarnECGlobal,ZarnECKeyboard"};
  return {1, L"ZarnECKeyboard"};
}

/// The embedded controller's devices, then the HID keyboard of hybrid mode. Without the former a HID keyboard is named,
/// but not counted.
Status EcDevicesAnd(bool hid_keyboard) {
  const auto [count, names] = FindEcDevices();
  kLog(L"Number of Device:%d, DeviceName:%ls", count, names);
  Status status;
  status.interface_type = kEcInterface;
  status.names = names;
  if (hid_keyboard) status.names.append(count == 0 ? L"" : L",").append(kHidKeyboard);
  status.count = count + (hid_keyboard && count > 0 ? 1 : 0);
  return status;
}

Status Discover() {
  TsLog* const log = TsLog::GetInstance();
  kLog(L"Enter!!");
  const bool hybrid = IsOn(kHybridSwitch);
  zarn::WRV520::ReplaceLogger(std::make_shared<zarn::WRV520::TsLogAdapter>(log));
  const std::optional<_HIDInfo> keyboard = FindHidKeyboard();
  if (!keyboard || hybrid) return EcDevicesAnd(keyboard.has_value());
  kLog(L"Number of Device: 1, DeviceName: ZarnHIDKeyboard");
  return HidKeyboardAlone(*keyboard);
}

}  // namespace

std::int32_t CheckDeviceStatus(std::wstring& deviceNames, std::uint32_t& interfaceType, std::wstring& hardwareId,
                               std::wstring& usagePageHex) noexcept {
  try {
    Status status = Discover();
    if (!status.names.empty()) deviceNames = std::move(status.names);
    interfaceType = status.interface_type;
    hardwareId = std::move(status.hardware_id);
    usagePageHex = std::move(status.usage_page);
    return status.count;
  } catch (const std::exception&) {
    return 0;
  }
}
