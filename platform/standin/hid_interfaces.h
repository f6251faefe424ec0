/// The machine's HID devices as the platform shows them: an interface for each top-level collection, up to a number
/// that no keyboard has. A descriptor has room for hundreds: asking each would keep the lighting service busy for
/// minutes.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/standin/hid_api.h"
#include "platform/standin/machine.h"
#include "platform/standin/report_descriptor.h"

namespace platform {

inline constexpr std::size_t kMostInterfaces = 16;  // of one device

/// An opened interface, shared by its handle and the calls that use it. Without a connection it exchanges nothing.
struct HidInterface {
  std::wstring path;
  std::uint16_t vendor = 0;
  std::uint16_t product = 0;
  std::uint16_t version = 0;
  HidCollection collection;
  std::shared_ptr<HidConnection> connection;
};

/// The interface that an open handle stands for; null for one that is not open.
std::shared_ptr<const HidInterface> InterfaceOf(HANDLE handle);
/// A handle, to be shown in the journal as the path that it opened.
struct Opened {
  HANDLE handle;
};
std::string Described(Opened opened);

/// The paths of the interfaces that are there now.
std::vector<std::wstring> HidInterfacePaths();

/// Opens one; null, with the calling thread's last error set, when it cannot be opened.
std::shared_ptr<const HidInterface> OpenHidInterface(const std::wstring& path);
/// The same without a connection. Nobody is denied that.
std::shared_ptr<const HidInterface> OpenHidInterfaceToLook(const std::wstring& path);

}  // namespace platform
