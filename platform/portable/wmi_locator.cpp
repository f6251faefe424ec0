#include "platform/portable/com_apartment.h"
#include "platform/portable/com_object.h"
#include "platform/portable/text.h"
#include "platform/portable/wmi_services.h"

namespace platform {
namespace {

constexpr Call<HRESULT> kConnectServer =
    ObjectCall("IWbemLocator::ConnectServer", WBEM_E_ACCESS_DENIED, WBEM_E_OUT_OF_MEMORY);
constexpr Call<HRESULT> kCoCreateInstance = ObjectCall("CoCreateInstance", REGDB_E_CLASSNOTREG, E_OUTOFMEMORY);
constexpr Call<HRESULT> kCoSetProxyBlanket = ComCall("CoSetProxyBlanket", E_NOINTERFACE, E_OUTOFMEMORY);

class WmiLocator final : public ComObject<WmiLocator, IWbemLocator> {
 public:
  static constexpr IID kIid = IID_IWbemLocator;

  HRESULT ConnectServer(BSTR network_resource, BSTR user, BSTR /*password*/, BSTR /*locale*/, LONG security_flags,
                        BSTR /*authority*/, IWbemContext* /*context*/, IWbemServices** services) override {
    Empty(services);
    return Pass(kConnectServer, Asked(network_resource, user, security_flags), [&] {
      if (network_resource == nullptr || services == nullptr) return WBEM_E_INVALID_PARAMETER;
      if (!EqualsWithoutCase(network_resource, L"ROOT\\WMI")) return WBEM_E_INVALID_NAMESPACE;
      *services = new WmiServices;
      return WBEM_S_NO_ERROR;
    });
  }
};

}  // namespace

extern "C" {

HRESULT CoCreateInstance(REFCLSID class_id, IUnknown* /*outer*/, DWORD context, REFIID iid, LPVOID* object) {
  Empty(object);
  return Pass(kCoCreateInstance, Asked(context), [&] {
    if (object == nullptr) return E_POINTER;
    if (!ComInitializedHere()) return CO_E_NOTINITIALIZED;
    if (class_id != CLSID_WbemLocator) return REGDB_E_CLASSNOTREG;
    if (iid != IID_IWbemLocator) return E_NOINTERFACE;
    *object = static_cast<IWbemLocator*>(new WmiLocator);
    return S_OK;
  });
}

HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service, OLECHAR* principal,
                          DWORD authn_level, DWORD imp_level, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
  const wchar_t* const other_identity = identity != nullptr ? L"identity" : nullptr;
  return Pass(kCoSetProxyBlanket,
              Asked(authn_service, authz_service, principal, authn_level, imp_level, other_identity, capabilities),
              [&] { return proxy != nullptr ? S_OK : E_INVALIDARG; });
}

}  // extern "C"

}  // namespace platform
