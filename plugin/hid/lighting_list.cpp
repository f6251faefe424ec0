#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "base/owner.h"
#include "hid/hid_log.h"
#include "hid/hid_resources.h"
#include "hid/lighting_hid.h"

std::vector<_HIDInfo> g_lightingDevices;
std::mutex g_lightingDevicesLock;

namespace zarn::WRV520::Lighting {
namespace {

constexpr wchar_t kListTag[] = L"zarn::WRV520::Lighting::LightingHID::GetLightingDeviceList";
constexpr wchar_t kAttributeTag[] = L"zarn::WRV520::Lighting::LightingHID::GetLightingDeviceAttributeReport";
constexpr wchar_t kFieldTag[] = L"zarn::WRV520::Lighting::LightingHID::GetFieldSize";

template <typename Device>
void CloseAll(std::vector<Device>* devices) {
  for (Device& device : *devices) CloseKept(device.handle);
}
/// Closes the handles that are in a list when the scope ends: memory ran out, or the device is no lighting device.
template <typename Device>
using ClosesRest = Owner<std::vector<Device>*, CloseAll<Device>>;

void ReadFields(_HIDInfo& device) {
  const HidLog log(kListTag);
  std::vector<HIDP_VALUE_CAPS> all;
  if (!TsHID::GetHIDValueCapability(device.handle, all)) return;
  for (const HIDP_VALUE_CAPS& caps : all) {
    device.fields[{caps.ReportID, caps.NotRange.Usage}] = caps;
    log.Info(L"ReportID: %02X Usage: %d BitSize: %d, DataIndex: %d", caps.ReportID, caps.NotRange.Usage, caps.BitSize,
             caps.NotRange.DataIndex);
  }
}

/// Call it under the lock.
void BuildList() {
  std::vector<_HIDDevice> found;
  const ClosesRest<_HIDDevice> closes_found(&found);
  TsHID::GetHIDDeviceHandle([](std::uint16_t, std::uint16_t) { return true; },
                            [](const HIDP_CAPS& caps) { return caps.UsagePage == kLightingUsagePage; }, found);
  std::vector<_HIDInfo> built;
  ClosesRest<_HIDInfo> closes_built(&built);
  built.reserve(found.size());
  for (_HIDDevice& interface : found) {
    _HIDInfo device{interface, {}, {}};
    if (!LightingHID::GetLightingDeviceAttributeReport(device)) continue;
    ReadFields(device);
    built.push_back(std::move(device));
    interface.handle = INVALID_HANDLE_VALUE;  // `built` owns it now
  }
  closes_built.Release();
  // The old list's handles stay open: they belong to whoever has a copy of it.
  g_lightingDevices = std::move(built);
}

}  // namespace

void LightingHID::GetLightingDeviceList(std::vector<_HIDInfo>& devices) {
  const std::lock_guard lock(g_lightingDevicesLock);
  BuildList();
  if (&devices != &g_lightingDevices) devices = g_lightingDevices;
}

bool LightingHID::GetLightingDeviceAttributeReport(_HIDInfo& device) {
  device.handle = OpenLightingDevice(device);
  if (!IsOpen(device.handle)) {
    HidLog(kAttributeTag).Error(L"GetHIDDeviceHandle fail");
    return false;
  }
  std::array<std::uint8_t, TsHID::kFeatureBufferSize> report{};
  std::size_t received = 0;
  if (!TsHID::GetHIDFeature(device.handle, kAttributeReport, report.data(), &received)) return false;
  // A count, then the ids. The count may claim more than came.
  for (std::size_t i = 1; i < received && i <= report[0]; ++i) device.deviceIds[report.at(i)] = {report.at(i)};
  return true;
}

bool LightingHID::GetFieldSize(std::uint8_t device_id, std::uint8_t report_id, std::uint8_t usage,
                               std::uint8_t& width) {
  for (const _HIDInfo& device : g_lightingDevices) {
    if (!device.deviceIds.contains(device_id)) continue;
    const auto field = device.fields.find({report_id, usage});
    if (field == device.fields.end()) continue;
    constexpr int kWidest = std::numeric_limits<std::uint8_t>::max();
    width = static_cast<std::uint8_t>(std::min(field->second.BitSize / 8, kWidest));
    return true;
  }
  // Devices may leave out base information, of which 0x33 is a part, so that is not logged.
  if (report_id != kBaseInfoReply && usage != 0x33) {
    HidLog(kFieldTag).Info(L"Field %02X,%02X not exist!", report_id, usage);
  }
  return false;
}

bool LightingHID::FindLightingDevice(_HIDInfo& device) {
  const std::lock_guard lock(g_lightingDevicesLock);
  if (g_lightingDevices.empty()) BuildList();
  const auto keyboard = std::ranges::find_if(g_lightingDevices,
                                             [](const _HIDInfo& each) { return each.deviceIds.contains(kKeyboardId); });
  if (keyboard == g_lightingDevices.end()) return false;
  device = *keyboard;
  return true;
}

HANDLE LightingHID::OpenLightingDevice(const _HIDDevice& device) {
  if (device.handle != INVALID_HANDLE_VALUE) return device.handle;
  return TsHID::GetHIDDeviceHandle(device.vendorId, device.productId, device.usagePage, device.usage);
}

void LightingHID::CloseLightingDevices() {
  const std::lock_guard lock(g_lightingDevicesLock);
  CloseAll(&g_lightingDevices);
}

}  // namespace zarn::WRV520::Lighting
