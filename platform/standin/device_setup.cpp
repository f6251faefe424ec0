#include <cstring>

#include "platform/standin/hid_interfaces.h"
#include "platform/standin/open_things.h"
#include "platform/standin/platform_call.h"

namespace platform {
namespace {

constexpr GUID kHidInterfaceClass = {0x4D1E55B2, 0xF16F, 0x11CF, {0x88, 0xCB, 0x00, 0x11, 0x11, 0x00, 0x00, 0x30}};
constexpr std::size_t kPathOffset = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath);

/// The paths of the interfaces that were there when the set was made.
using DeviceSet = std::shared_ptr<const std::vector<std::wstring>>;

OpenThings<DeviceSet>& DeviceSets() {
  static NoDestructor<OpenThings<DeviceSet>> sets(g_live.device_sets);
  return *sets;
}

BOOL FailForHandle(const char* call) {
  Complain(std::string(call) + " of a device set that is not there");
  return FailWith(ERROR_INVALID_HANDLE);
}

HDEVINFO MakeSet(const GUID* class_guid, DWORD flags) {
  auto paths = std::make_shared<std::vector<std::wstring>>();
  const bool hid = class_guid != nullptr && *class_guid == kHidInterfaceClass;
  if (hid && (flags & DIGCF_DEVICEINTERFACE) != 0) *paths = HidInterfacePaths();
  return DeviceSets().Add(std::move(paths));
}

BOOL Enumerate(HDEVINFO set, const GUID* class_guid, DWORD index, PSP_DEVICE_INTERFACE_DATA data) {
  const auto paths = DeviceSets().Find(set);
  if (!paths) return FailForHandle("SetupDiEnumDeviceInterfaces");
  if (data == nullptr || class_guid == nullptr || data->cbSize != sizeof(*data))
    return FailWith(ERROR_INVALID_USER_BUFFER);
  if (*class_guid != kHidInterfaceClass || index >= (*paths)->size()) return FailWith(ERROR_NO_MORE_ITEMS);
  data->InterfaceClassGuid = kHidInterfaceClass;
  data->Flags = 1;  // active
  data->Reserved = index;
  return TRUE;
}

BOOL GetDetail(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data, PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD size,
               PDWORD required_size) {
  const auto paths = DeviceSets().Find(set);
  if (!paths) return FailForHandle("SetupDiGetDeviceInterfaceDetailW");
  if (data == nullptr || data->cbSize != sizeof(*data) || data->Reserved >= (*paths)->size()) {
    return FailWith(ERROR_INVALID_PARAMETER);
  }
  if (detail != nullptr && detail->cbSize != sizeof(*detail)) return FailWith(ERROR_INVALID_USER_BUFFER);
  const std::wstring& path = (**paths)[data->Reserved];
  const std::size_t text_bytes = (path.size() + 1) * sizeof(WCHAR);
  if (required_size != nullptr) *required_size = static_cast<DWORD>(kPathOffset + text_bytes);
  if (detail == nullptr || size < kPathOffset + text_bytes) return FailWith(ERROR_INSUFFICIENT_BUFFER);
  // The path goes on behind the record, in the caller's block.
  std::memcpy(reinterpret_cast<std::byte*>(detail) + kPathOffset, path.c_str(), text_bytes);
  return TRUE;
}

}  // namespace

extern "C" {

void HidD_GetHidGuid(LPGUID guid) {
  Pass(SureCall("HidD_GetHidGuid"), Asked(), [&] { *guid = kHidInterfaceClass; });
}

HDEVINFO SetupDiGetClassDevsW(const GUID* class_guid, PCWSTR /*enumerator*/, HWND /*parent*/, DWORD flags) {
  return Pass(ZeroCall<HDEVINFO>("SetupDiGetClassDevsW", ERROR_INVALID_DATA, INVALID_HANDLE_VALUE), Asked(flags),
              [&] { return MakeSet(class_guid, flags); });
}

BOOL SetupDiEnumDeviceInterfaces(HDEVINFO set, PSP_DEVINFO_DATA /*device*/, const GUID* class_guid, DWORD member_index,
                                 PSP_DEVICE_INTERFACE_DATA data) {
  return Pass(ZeroCall<BOOL>("SetupDiEnumDeviceInterfaces", ERROR_INVALID_DATA), Asked(member_index),
              [&] { return Enumerate(set, class_guid, member_index, data); });
}

BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data,
                                      PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD detail_size,
                                      PDWORD required_size, PSP_DEVINFO_DATA /*device*/) {
  return Pass(
      ZeroCall<BOOL>("SetupDiGetDeviceInterfaceDetailW", ERROR_INVALID_DATA), Asked(detail_size),
      [&] { return GetDetail(set, data, detail, detail_size, required_size); },
      [&](BOOL done) { return done != FALSE ? Described(detail->DevicePath) : std::string(); });
}

BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set) {
  return Pass(Sure(ZeroCall<BOOL>("SetupDiDestroyDeviceInfoList", ERROR_INVALID_HANDLE)), Asked(),
              [&] { return DeviceSets().Remove(set) ? TRUE : FailForHandle("SetupDiDestroyDeviceInfoList"); });
}

}  // extern "C"

}  // namespace platform
