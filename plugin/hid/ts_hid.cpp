#include "hid/ts_hid.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <new>

#include "hid/hid_log.h"
#include "hid/hid_resources.h"
#include "platform/system.h"

namespace zarn::WRV520 {
namespace {

constexpr wchar_t kFindTag[] = L"zarn::WRV520::TsHID::GetHIDDeviceHandle";
constexpr wchar_t kCapabilityTag[] = L"zarn::WRV520::TsHID::GetHIDCapability";
constexpr wchar_t kGetTag[] = L"zarn::WRV520::TsHID::GetHIDFeature";
constexpr wchar_t kSetTag[] = L"zarn::WRV520::TsHID::SetHIDFeature";

DeviceHandle OpenInterface(const std::wstring& path) {
  return DeviceHandle(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, 0, nullptr));
}

GUID HidInterfaceClass() {
  GUID guid{};
  HidD_GetHidGuid(&guid);
  return guid;
}

/// The path of one interface, empty with a line in the log when it cannot be read.
std::wstring InterfacePath(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& interface) {
  using Detail = SP_DEVICE_INTERFACE_DETAIL_DATA_W;  // goes on behind its end
  const HidLog log(kFindTag);
  DWORD size = 0;
  SetupDiGetDeviceInterfaceDetailW(set, &interface, nullptr, 0, &size, nullptr);
  const std::unique_ptr<std::byte[]> block(new (std::nothrow) std::byte[std::max<std::size_t>(size, sizeof(Detail))]);
  if (block == nullptr) {
    log.Error(L"Error allocating memory for device interface detail data");
    return {};
  }
  auto* const detail = new (block.get()) Detail{};
  detail->cbSize = sizeof(Detail);
  if (SetupDiGetDeviceInterfaceDetailW(set, &interface, detail, size, nullptr, nullptr) == FALSE) {
    log.Error(L"Error getting device interface detail data");
    return {};
  }
  return detail->DevicePath;
}

/// Reads the capabilities. Null, or what went wrong in the words of the log.
const wchar_t* ReadCapability(HANDLE handle, HIDP_CAPS& caps) {
  const PreparsedData preparsed(handle);
  if (!preparsed) return L"Error getting device preparsed data";
  HIDP_CAPS read{};
  if (HidP_GetCaps(preparsed.Get(), &read) != HIDP_STATUS_SUCCESS) return L"Error getting device capabilities";
  caps = read;
  return nullptr;
}

/// An interface on its way through the enumeration. What its handle still holds at the end is closed.
struct Candidate {
  const std::wstring& path;
  DeviceHandle handle;
  HIDD_ATTRIBUTES attributes{};
  HIDP_CAPS caps{};
};

struct Verdict {
  bool wanted = false;
  const wchar_t* failure = nullptr;  // in the words of the log
};

/// Asks an interface what it is, and the predicates whether it is wanted. One that could not be opened is not.
Verdict Examine(Candidate& candidate, const TsHID::IdentityPredicate& identity,
                const TsHID::CapabilityPredicate& capability) {
  if (!candidate.handle) return {};
  candidate.attributes.Size = sizeof(candidate.attributes);
  if (HidD_GetAttributes(candidate.handle.Get(), &candidate.attributes) == FALSE) {
    return {.failure = L"Error getting device attributes"};
  }
  if (!identity(candidate.attributes.VendorID, candidate.attributes.ProductID)) return {};
  if (const wchar_t* const failure = ReadCapability(candidate.handle.Get(), candidate.caps)) {
    return {.failure = failure};
  }
  return {.wanted = capability(candidate.caps)};
}

/// Calls `take(candidate)` for each present interface that both predicates accept, until it answers false. Whether the
/// platform could tell what is present.
template <typename Take>
bool ForEachMatch(const TsHID::IdentityPredicate& identity, const TsHID::CapabilityPredicate& capability, Take take) {
  const GUID interface_class = HidInterfaceClass();
  const PresentInterfaces present(interface_class);
  if (!present) {
    HidLog(kFindTag).Error(L"Error getting device information set");
    return false;
  }

  SP_DEVICE_INTERFACE_DATA interface {};
  interface.cbSize = sizeof(interface);
  for (DWORD i = 0; SetupDiEnumDeviceInterfaces(present.Get(), nullptr, &interface_class, i, &interface) != FALSE;
       ++i) {
    const std::wstring path = InterfacePath(present.Get(), interface);
    if (path.empty()) continue;
    Candidate candidate{path, OpenInterface(path)};
    const Verdict verdict = Examine(candidate, identity, capability);
    if (verdict.failure != nullptr) {
      candidate.handle.Close();  // a log that hangs must not keep the device open
      HidLog(kFindTag).Error(L"%ls", verdict.failure);
    }
    if (verdict.wanted && !take(candidate)) break;
  }
  return true;
}

/// The length of the device's feature reports; 0, with a line in the log under the caller's tag, when none can be
/// exchanged.
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
    const auto& [path, handle, attributes, caps] = match;
    HidLog(kFindTag).Info(L"HID device(%04X, %04X) UsagePage find: %04X:%04X", attributes.VendorID,
                          attributes.ProductID, caps.UsagePage, caps.Usage);
    devices.push_back({path, attributes.VendorID, attributes.ProductID, caps.UsagePage, caps.Usage});
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
