/// Owners for what the platform's HID calls hand out, and the HID interfaces that are present.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "base/owner.h"
#include "platform/hid.h"

/// An opened HID interface.
using DeviceHandle = Owner<HANDLE, CloseHandle>;

inline bool IsOpen(HANDLE handle) { return handle != INVALID_HANDLE_VALUE && handle != nullptr; }

/// Closes the handle that a record of a device keeps, if it is open.
inline void CloseKept(HANDLE& handle) { const DeviceHandle closes(std::exchange(handle, INVALID_HANDLE_VALUE)); }

/// What the platform understood of an interface's report descriptor; nothing when it cannot tell.
class PreparsedData : public Owner<PHIDP_PREPARSED_DATA, HidD_FreePreparsedData> {
 public:
  explicit PreparsedData(HANDLE device) : Owner(ReadFrom(device)) {}

 private:
  static PHIDP_PREPARSED_DATA ReadFrom(HANDLE device) {
    PHIDP_PREPARSED_DATA data = nullptr;
    return HidD_GetPreparsedData(device, &data) != FALSE ? data : nullptr;
  }
};

/// The HID interfaces that are present, one after the other. False, and without any, when the platform cannot tell.
class PresentInterfaces {
 public:
  struct Interface {
    std::wstring path;                 // empty when it cannot be had
    const wchar_t* failure = nullptr;  // why not, in the words of the log
  };

  PresentInterfaces()
      : class_(HidInterfaceClass()),
        set_(SetupDiGetClassDevsW(&class_, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {}

  explicit operator bool() const { return static_cast<bool>(set_); }

  std::optional<Interface> Next() {
    SP_DEVICE_INTERFACE_DATA interface {};
    interface.cbSize = sizeof(interface);
    if (!set_ || SetupDiEnumDeviceInterfaces(set_.Get(), nullptr, &class_, next_++, &interface) == FALSE) return {};

    using Detail = SP_DEVICE_INTERFACE_DETAIL_DATA_W;  // its path goes on behind the structure's end
    DWORD size = 0;
    SetupDiGetDeviceInterfaceDetailW(set_.Get(), &interface, nullptr, 0, &size, nullptr);
    const std::unique_ptr<std::byte[]> block(new (std::nothrow) std::byte[std::max<std::size_t>(size, sizeof(Detail))]);
    if (block == nullptr) return Interface{{}, L"Error allocating memory for device interface detail data"};
    auto* const detail = new (block.get()) Detail{};
    detail->cbSize = sizeof(Detail);
    if (SetupDiGetDeviceInterfaceDetailW(set_.Get(), &interface, detail, size, nullptr, nullptr) == FALSE) {
      return Interface{{}, L"Error getting device interface detail data"};
    }
    return Interface{detail->DevicePath};
  }

 private:
  static GUID HidInterfaceClass() {
    GUID guid{};
    HidD_GetHidGuid(&guid);
    return guid;
  }

  const GUID class_;
  const Owner<HDEVINFO, SetupDiDestroyDeviceInfoList> set_;
  DWORD next_ = 0;
};
