#include "platform/standin/device_handles.h"

#include "platform/standin/live_counters.h"
#include "platform/standin/no_destructor.h"
#include "platform/standin/open_things.h"

namespace platform {
namespace {

using Handles = OpenThings<std::shared_ptr<const HidInterface>>;

Handles& OpenHandles() {
  static NoDestructor<Handles> handles(g_live.device_handles);
  return *handles;
}

HANDLE Open(LPCWSTR path, DWORD access, DWORD disposition) {
  if (path == nullptr || disposition != OPEN_EXISTING) {
    SetThreadError(ERROR_INVALID_PARAMETER);
    return INVALID_HANDLE_VALUE;
  }
  auto opened = access == 0 ? OpenHidInterfaceToLook(path) : OpenHidInterface(path);
  return opened != nullptr ? OpenHandles().Add(std::move(opened)) : INVALID_HANDLE_VALUE;
}

BOOL Close(HANDLE handle) {
  if (OpenHandles().Remove(handle)) {
    SetThreadError(ERROR_SUCCESS);  // so that a code read too late is seen
    return TRUE;
  }
  Complain("CloseHandle of a handle that is not open");
  SetThreadError(ERROR_INVALID_HANDLE);
  return FALSE;
}

}  // namespace

std::shared_ptr<const HidInterface> InterfaceOf(HANDLE handle) { return OpenHandles().Find(handle).value_or(nullptr); }

std::string DescribedHandle(HANDLE handle) {
  const auto interface = InterfaceOf(handle);
  return interface != nullptr ? Described(interface->path.c_str()) : "not open";
}

extern "C" {

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share_mode, LPSECURITY_ATTRIBUTES /*security*/, DWORD disposition,
                   DWORD /*flags*/, HANDLE /*template_file*/) {
  Call<HANDLE> call = HandleCall("CreateFileW", ERROR_ACCESS_DENIED);
  call.hands_back_object = true;
  return Pass(call, Asked(path, access, share_mode, disposition), [&] { return Open(path, access, disposition); });
}

BOOL CloseHandle(HANDLE handle) {
  static constexpr Call<BOOL> kCloseHandle = Sure(ZeroCall<BOOL>("CloseHandle", ERROR_INVALID_HANDLE));
  return Pass(kCloseHandle, AskedOf(handle), [&] { return Close(handle); });
}

}  // extern "C"

}  // namespace platform
