/// Owners for what the platform's HID calls hand out, so that every path gives it back exactly once.
#pragma once

#include <utility>

#include "platform/hid.h"

inline bool IsOpen(HANDLE handle) { return handle != INVALID_HANDLE_VALUE && handle != nullptr; }

/// An opened HID interface.
class DeviceHandle {
 public:
  explicit DeviceHandle(HANDLE handle) : handle_(handle) {}
  DeviceHandle(const DeviceHandle&) = delete;
  DeviceHandle& operator=(const DeviceHandle&) = delete;
  ~DeviceHandle() { Close(); }

  HANDLE Get() const { return handle_; }
  HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
  void Close() {
    if (*this) CloseHandle(Release());
  }
  explicit operator bool() const { return IsOpen(handle_); }

 private:
  HANDLE handle_;
};

/// The HID interfaces that are present.
class PresentInterfaces {
 public:
  explicit PresentInterfaces(const GUID& interface_class)
      : set_(SetupDiGetClassDevsW(&interface_class, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE)) {}
  PresentInterfaces(const PresentInterfaces&) = delete;
  PresentInterfaces& operator=(const PresentInterfaces&) = delete;
  ~PresentInterfaces() {
    if (*this) SetupDiDestroyDeviceInfoList(set_);
  }

  HDEVINFO Get() const { return set_; }
  explicit operator bool() const { return set_ != INVALID_HANDLE_VALUE; }

 private:
  HDEVINFO set_;
};

/// What an interface's descriptor says of it.
class PreparsedData {
 public:
  explicit PreparsedData(HANDLE device) {
    if (HidD_GetPreparsedData(device, &data_) == FALSE) data_ = nullptr;
  }
  PreparsedData(const PreparsedData&) = delete;
  PreparsedData& operator=(const PreparsedData&) = delete;
  ~PreparsedData() {
    if (*this) HidD_FreePreparsedData(data_);
  }

  PHIDP_PREPARSED_DATA Get() const { return data_; }
  explicit operator bool() const { return data_ != nullptr; }

 private:
  PHIDP_PREPARSED_DATA data_ = nullptr;
};
