/// On Windows the layer's objects use the platform's own texts, arrays, last error, file handles and COM.

#include <climits>
#include <cstring>
#include <new>
#include <vector>

#include "platform/standin/com_object.h"
#include "platform/standin/hid_interfaces.h"
#include "platform/standin/machine.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

/// The system's CoSetProxyBlanket passes its arguments to this interface.
class ClientSecurity final : public ComObject<ClientSecurity, IClientSecurity> {
 public:
  static constexpr IID kIid = {0x0000013D, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

  HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* /*proxy*/, DWORD authn_service, DWORD authz_service,
                                       OLECHAR* principal, DWORD authn_level, DWORD imp_level, void* identity,
                                       DWORD capabilities) override {
    const wchar_t* const other_identity = identity != nullptr ? L"identity" : nullptr;
    return Pass(ComCall("CoSetProxyBlanket", E_NOINTERFACE),
                Asked(authn_service, authz_service, principal, authn_level, imp_level, other_identity, capabilities),
                [] { return S_OK; });
  }
};

/// The path of an open handle; empty when it is not open.
std::wstring PathOf(HANDLE handle) {
  std::vector<wchar_t> path(MAX_PATH);
  const DWORD length = GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), 0);
  constexpr std::wstring_view kPrefix = L"\\\\?\\";
  std::wstring found(path.data(), length < path.size() ? length : 0);
  return found.starts_with(kPrefix) ? found.substr(kPrefix.size()) : found;
}

}  // namespace

std::shared_ptr<Machine> MakeThisComputer() { return std::make_shared<Machine>(); }

LONG ThreadError() noexcept { return static_cast<LONG>(GetLastError()); }

void SetThreadError(LONG error) noexcept { SetLastError(static_cast<DWORD>(error)); }

BSTR AllocateText(std::wstring_view text) {
  const BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

UINT TextLength(BSTR text) noexcept { return SysStringLen(text); }

SAFEARRAY* AllocateArray(ULONG size) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, size);
  if (array == nullptr) throw std::bad_alloc();
  return array;
}

HRESULT QueryOther(REFIID iid, void** object) {
  if (iid != ClientSecurity::kIid) return E_NOINTERFACE;
  *object = static_cast<IClientSecurity*>(new ClientSecurity);
  return S_OK;
}

std::shared_ptr<const HidInterface> InterfaceOf(HANDLE handle) { return OpenHidInterface(PathOf(handle)); }

std::string Described(Opened opened) { return Described(PathOf(opened.handle).c_str()); }

std::optional<std::wstring> ProcessVariable(std::wstring_view /*name*/) { return std::nullopt; }

}  // namespace platform
