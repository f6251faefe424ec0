#include "hid/ts_hid.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "hid/hid_log.h"
#include "hid/hid_resources.h"
#include "platform/system.h"

namespace zarn::WRV520 {
namespace {

constexpr wchar_t kFindTag[] = L"zarn::WRV520::TsHID::GetHIDDeviceHandle";
constexpr wchar_t kCapabilityTag[] = L"zarn::WRV520::TsHID::GetHIDCapability";
constexpr wchar_t kGetTag[] = L"zarn::WRV520::TsHID::GetHIDFeature";
constexpr wchar_t kSetTag[] = L"zarn::WRV520::TsHID::SetHIDFeature";

/// Reads the capabilities. Null, or what went wrong in the words of the log.
const wchar_t* ReadCapability(HANDLE handle, HIDP_CAPS& caps) {
  const PreparsedData preparsed(handle);
  if (!preparsed) return L"Error getting device preparsed data";
  HIDP_CAPS read{};
  if (HidP_GetCaps(preparsed.Get(), &read) != HIDP_STATUS_SUCCESS) return L"Error getting device capabilities";
  caps = read;
  return nullptr;
}

/// An interface that the predicates are asked about. Closes its handle unless somebody takes that out.
struct Candidate {
  PresentInterfaces::Interface interface;
  DeviceHandle handle;
  HIDD_ATTRIBUTES attributes{};
  HIDP_CAPS caps{};
};

/// Opens an interface and asks both predicates. An interface that cannot be opened is not wanted.
bool IsWanted(Candidate& candidate, const TsHID::IdentityPredicate& identity,
              const TsHID::CapabilityPredicate& capability) {
  auto& [interface, handle, attributes, caps] = candidate;
  if (interface.failure != nullptr) return false;
  *handle.Put() = CreateFileW(interface.path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                              nullptr, OPEN_EXISTING, 0, nullptr);
  if (!handle) return false;
  attributes.Size = sizeof(attributes);
  if (HidD_GetAttributes(handle.Get(), &attributes) == FALSE) {
    interface.failure = L"Error getting device attributes";
    return false;
  }
  if (!identity(attributes.VendorID, attributes.ProductID)) return false;
  interface.failure = ReadCapability(handle.Get(), caps);
  return interface.failure == nullptr && capability(caps);
}

/// Calls `take(candidate)` for each present interface that both predicates accept, until `take` answers false. False
/// when the platform cannot tell what is present.
template <typename Take>
bool ForEachMatch(const TsHID::IdentityPredicate& identity, const TsHID::CapabilityPredicate& capability, Take take) {
  PresentInterfaces present;
  if (!present) {
    HidLog(kFindTag).Error(L"Error getting device information set");
    return false;
  }
  while (auto interface = present.Next()) {
    Candidate candidate{*std::move(interface), {}, {}, {}};
    const bool wanted = IsWanted(candidate, identity, capability);
    if (candidate.interface.failure != nullptr) {
      candidate.handle.Reset();  // a log that hangs must not keep the device open
      HidLog(kFindTag).Error(L"%ls", candidate.interface.failure);
    }
    if (wanted && !take(candidate)) break;
  }
  return true;
}

/// The length of the device's feature reports; 0, with a line in the caller's log, when none can be exchanged.
std::size_t FeatureReportLength(HANDLE handle, const HidLog& log) {
  HIDP_CAPS caps{};
  if (!TsHID::GetHIDCapability(handle, caps)) {
    log.Error(L"Error getting device capabilities");
    return 0;
  }
  if (caps.FeatureReportByteLength == 0) log.Error(L"Error Feature Report Byte Length: %d", 0);
  return caps.FeatureReportByteLength;
}

bool Complain(const char* text) {
  std::cerr << text << std::endl;
  return false;
}

}  // namespace

HANDLE TsHID::GetHIDDeviceHandle(const IdentityPredicate& identity, const CapabilityPredicate& capability) {
  HANDLE found = INVALID_HANDLE_VALUE;
  ForEachMatch(identity, capability, [&](Candidate& match) {
    HidLog(kFindTag).Info(L"HID device UsagePage find: %04X, %04X", match.caps.UsagePage, match.caps.Usage);
    found = match.handle.Release();
    return false;
  });
  return found;
}

HANDLE TsHID::GetHIDDeviceHandle(std::uint16_t vendor_id, std::uint16_t product_id, std::uint16_t usage_page,
                                 std::uint16_t usage) {
  return GetHIDDeviceHandle(
      [=](std::uint16_t vendor, std::uint16_t product) { return vendor == vendor_id && product == product_id; },
      [=](const HIDP_CAPS& caps) { return caps.UsagePage == usage_page && caps.Usage == usage; });
}

bool TsHID::GetHIDDeviceHandle(const IdentityPredicate& identity, const CapabilityPredicate& capability,
                               std::vector<_HIDDevice>& devices) {
  const bool told = ForEachMatch(identity, capability, [&](Candidate& match) {
    const auto& [interface, handle, attributes, caps] = match;
    HidLog(kFindTag).Info(L"HID device(%04X, %04X) UsagePage find: %04X:%04X", attributes.VendorID,
                          attributes.ProductID, caps.UsagePage, caps.Usage);
    devices.push_back({interface.path, attributes.VendorID, attributes.ProductID, caps.UsagePage, caps.Usage});
    devices.back().handle = match.handle.Release();  // now that nothing can fail any more
    return true;
  });
  return told && !devices.empty();
}

bool TsHID::SetHIDFeature(HANDLE handle, std::uint8_t report_id, const std::uint8_t* data, std::uint16_t length) {
  const HidLog log(kSetTag);
  const std::size_t report_length = FeatureReportLength(handle, log);
  if (report_length == 0) return false;
  std::vector<std::uint8_t> report(report_length);
  report[0] = report_id;
  std::copy_n(data, std::min<std::size_t>(length, report_length - 1), report.begin() + 1);
  if (HidD_SetFeature(handle, report.data(), static_cast<ULONG>(report_length)) != FALSE) return true;
  log.Error(L"Error setting feature on HID device: %u", GetLastError());
  return false;
}

bool TsHID::GetHIDFeature(HANDLE handle, std::uint8_t report_id, std::uint8_t* buffer, std::size_t* received) {
  const HidLog log(kGetTag);
  std::vector<std::uint8_t> report(FeatureReportLength(handle, log));
  if (report.empty()) return false;
  report[0] = report_id;
  if (HidD_GetFeature(handle, report.data(), static_cast<ULONG>(report.size())) == FALSE) {
    log.Error(L"Error getting feature from HID device");
    return false;
  }
  const std::size_t count = std::min(report.size() - 1, kFeatureBufferSize);
  std::copy_n(report.begin() + 1, count, buffer);
  if (received != nullptr) *received = count;
  return true;
}

bool TsHID::GetHIDCapability(HANDLE handle, HIDP_CAPS& caps) {
  const wchar_t* const failure = ReadCapability(handle, caps);
  if (failure != nullptr) HidLog(kCapabilityTag).Error(L"%ls", failure);
  return failure == nullptr;
}

bool TsHID::GetHIDValueCapability(HANDLE handle, std::vector<HIDP_VALUE_CAPS>& caps) {
  const PreparsedData preparsed(handle);
  if (!preparsed) return Complain("Failed to get preparsed data.");
  HIDP_CAPS device{};
  if (HidP_GetCaps(preparsed.Get(), &device) != HIDP_STATUS_SUCCESS) return Complain("Failed to get HID caps.");
  caps.resize(device.NumberFeatureValueCaps);
  USHORT count = device.NumberFeatureValueCaps;
  if (HidP_GetValueCaps(HidP_Feature, caps.data(), &count, preparsed.Get()) == HIDP_STATUS_SUCCESS) return true;
  return Complain("Failed to get value caps.");
}

}  // namespace zarn::WRV520
