#include "platform/standin/hid_interfaces.h"
#include "platform/standin/open_things.h"
#include "platform/standin/platform_call.h"

namespace platform {
namespace {

using Handles = OpenThings<std::shared_ptr<const HidInterface>>;

Handles& OpenHandles() {
  static NoDestructor<Handles> handles(g_live.device_handles);
  return *handles;
}

HANDLE Open(LPCWSTR path, DWORD access, DWORD disposition) {
  std::shared_ptr<const HidInterface> opened;
  if (path == nullptr || disposition != OPEN_EXISTING) {
    SetThreadError(ERROR_INVALID_PARAMETER);
  } else {
    opened = access == 0 ? OpenHidInterfaceToLook(path) : OpenHidInterface(path);
  }
  return opened != nullptr ? OpenHandles().Add(std::move(opened)) : INVALID_HANDLE_VALUE;
}

BOOL Close(HANDLE handle) {
  const bool closed = OpenHandles().Remove(handle);
  if (!closed) Complain("CloseHandle of a handle that is not open");
  SetThreadError(closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);  // on success too, to show code that reads it too late
  return closed ? TRUE : FALSE;
}

}  // namespace

std::shared_ptr<const HidInterface> InterfaceOf(HANDLE handle) { return OpenHandles().Find(handle).value_or(nullptr); }

std::string Described(Opened opened) {
  const auto interface = InterfaceOf(opened.handle);
  return interface != nullptr ? Described(interface->path.c_str()) : "not open";
}

extern "C" {

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share_mode, LPSECURITY_ATTRIBUTES /*security*/, DWORD disposition,
                   DWORD /*flags*/, HANDLE /*template_file*/) {
  return Pass(WithObject(ZeroCall<HANDLE>("CreateFileW", ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE)),
              Asked(path, access, share_mode, disposition), [&] { return Open(path, access, disposition); });
}

BOOL CloseHandle(HANDLE handle) {
  return Pass(Sure(ZeroCall<BOOL>("CloseHandle", ERROR_INVALID_HANDLE)), Asked(Opened{handle}),
              [&] { return Close(handle); });
}

}  // extern "C"

}  // namespace platform
