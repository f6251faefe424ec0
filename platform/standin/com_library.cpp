#include "platform/standin/management_service.h"
#include "platform/standin/platform_call.h"

namespace platform {
namespace {

/// Without a destructor: a thread that ends in an apartment stays in the counts, as it should.
struct Apartment {
  int attempts = 0;
  bool entered = false;
  DWORD kind = COINIT_MULTITHREADED;
};

constinit thread_local Apartment t_apartment;

HRESULT Enter(DWORD kind) {
  if (t_apartment.entered) return t_apartment.kind == kind ? S_FALSE : RPC_E_CHANGED_MODE;
  t_apartment.entered = true;
  t_apartment.kind = kind;
  return S_OK;
}

void Leave() {
  if (t_apartment.attempts == 0) return Complain("CoUninitialize on a thread without a CoInitializeEx to take back");
  --g_live.com_initializations;
  if (--t_apartment.attempts == 0) t_apartment = {};
}

}  // namespace

extern "C" {

HRESULT CoInitializeEx(LPVOID /*reserved*/, DWORD apartment) {
  // Other bits are hints that do not tell apartments apart.
  const DWORD kind = apartment & COINIT_APARTMENTTHREADED;
  const HRESULT result = Pass(ComCall("CoInitializeEx", E_OUTOFMEMORY), Asked(apartment), [&] { return Enter(kind); });
  if (result != RPC_E_CHANGED_MODE) {
    ++t_apartment.attempts;
    ++g_live.com_initializations;
  }
  return result;
}

void CoUninitialize() { Pass(SureCall("CoUninitialize"), Asked(), Leave); }

HRESULT CoCreateInstance(REFCLSID class_id, IUnknown* /*outer*/, DWORD context, REFIID iid, LPVOID* object) {
  Empty(object);
  return Pass(WithObject(ComCall("CoCreateInstance", REGDB_E_CLASSNOTREG)), Asked(context), [&] {
    if (object == nullptr) return E_POINTER;
    if (!t_apartment.entered) return CO_E_NOTINITIALIZED;
    if (class_id != CLSID_WbemLocator) return REGDB_E_CLASSNOTREG;
    if (iid != IID_IWbemLocator) return E_NOINTERFACE;
    *object = NewLocator();
    return S_OK;
  });
}

HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service, OLECHAR* principal,
                          DWORD authn_level, DWORD imp_level, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
  const wchar_t* const other_identity = identity != nullptr ? L"identity" : nullptr;
  return Pass(ComCall("CoSetProxyBlanket", E_NOINTERFACE),
              Asked(authn_service, authz_service, principal, authn_level, imp_level, other_identity, capabilities),
              [&] { return proxy != nullptr ? S_OK : E_INVALIDARG; });
}

}  // extern "C"

}  // namespace platform
