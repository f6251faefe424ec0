#include "platform/standin/hid_interfaces.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/standin/platform_call.h"

namespace platform {
namespace {

/// What tells the interfaces of one device apart, behind its path: "&col01", "&col02", ...
constexpr std::wstring_view kCollectionMark = L"&col";
constexpr std::size_t kCollectionDigits = 2;

std::wstring InterfacePath(const std::wstring& device, std::size_t number, std::size_t count) {
  if (count == 1) return device;
  const std::wstring digits = std::to_wstring(number);
  return device + std::wstring(kCollectionMark) + (digits.size() < kCollectionDigits ? L"0" : L"") + digits;
}

/// The path of the device that an interface's path belongs to.
std::wstring DevicePath(const std::wstring& path) {
  const std::size_t mark = path.rfind(kCollectionMark);
  const bool marked = mark != std::wstring::npos &&
                      path.find_first_not_of(L"0123456789", mark + kCollectionMark.size()) == std::wstring::npos;
  return marked ? path.substr(0, mark) : path;
}

/// The collections that become interfaces.
std::vector<HidCollection> CollectionsOf(const HidDevice& device) {
  std::vector<HidCollection> collections = ParseReportDescriptor(device.report_descriptor).collections;
  if (collections.size() > kMostInterfaces) collections.resize(kMostInterfaces);
  return collections;
}

std::shared_ptr<const HidInterface> NotOpened(LONG error) {
  SetThreadError(error);
  return nullptr;
}

/// The one of the device's interfaces that has this path.
std::shared_ptr<const HidInterface> InterfaceAt(const std::wstring& path, const HidDevice& device,
                                                std::shared_ptr<HidConnection> connection) {
  std::vector<HidCollection> collections = CollectionsOf(device);
  for (std::size_t i = 0; i < collections.size(); ++i) {
    if (InterfacePath(device.path, i + 1, collections.size()) != path) continue;
    return std::make_shared<const HidInterface>(HidInterface{path, device.vendor, device.product, device.version,
                                                             std::move(collections[i]), std::move(connection)});
  }
  return NotOpened(ERROR_FILE_NOT_FOUND);
}

}  // namespace

std::vector<std::wstring> HidInterfacePaths() {
  std::vector<std::wstring> paths;
  for (const HidDevice& device : CurrentMachine()->HidDevices()) {
    const std::size_t count = CollectionsOf(device).size();
    for (std::size_t i = 0; i < count; ++i) paths.push_back(InterfacePath(device.path, i + 1, count));
  }
  return paths;
}

std::shared_ptr<const HidInterface> OpenHidInterface(const std::wstring& path) {
  OpenedHidDevice opened = CurrentMachine()->OpenHidDevice(DevicePath(path));
  if (opened.error != ERROR_SUCCESS) return NotOpened(opened.error);
  return InterfaceAt(path, opened.device, std::move(opened.connection));
}

std::shared_ptr<const HidInterface> OpenHidInterfaceToLook(const std::wstring& path) {
  const std::vector<HidDevice> devices = CurrentMachine()->HidDevices();
  const auto device = std::ranges::find(devices, DevicePath(path), &HidDevice::path);
  return device != devices.end() ? InterfaceAt(path, *device, nullptr) : NotOpened(ERROR_FILE_NOT_FOUND);
}

}  // namespace platform
