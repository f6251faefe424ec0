/// COM and the management service's objects, as far as we call them.
///
/// Ownership: every interface pointer handed out carries one reference, which the receiver gives back with Release.
/// Threads: CoInitializeEx and CoUninitialize belong to the calling thread; any threads may use an object at once.
#pragma once

#include "platform/standin/variant.h"

using CIMTYPE = std::int32_t;
using RPC_AUTH_IDENTITY_HANDLE = void*;

inline constexpr DWORD COINIT_MULTITHREADED = 0;
inline constexpr DWORD COINIT_APARTMENTTHREADED = 2;
inline constexpr DWORD CLSCTX_INPROC_SERVER = 1;
inline constexpr DWORD RPC_C_AUTHN_WINNT = 10;
inline constexpr DWORD RPC_C_AUTHZ_NONE = 0;
inline constexpr DWORD RPC_C_AUTHN_LEVEL_CALL = 3;
inline constexpr DWORD RPC_C_IMP_LEVEL_IMPERSONATE = 3;
inline constexpr DWORD EOAC_NONE = 0;

inline constexpr HRESULT RPC_E_CHANGED_MODE = MakeHResult(0x80010106);
inline constexpr HRESULT CO_E_NOTINITIALIZED = MakeHResult(0x800401F0);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = MakeHResult(0x80040154);

inline constexpr LONG WBEM_FLAG_RETURN_IMMEDIATELY = 0x10;
inline constexpr LONG WBEM_FLAG_FORWARD_ONLY = 0x20;
inline constexpr LONG WBEM_INFINITE = -1;

inline constexpr HRESULT WBEM_S_NO_ERROR = 0;
inline constexpr HRESULT WBEM_S_FALSE = 1;
inline constexpr HRESULT WBEM_E_FAILED = MakeHResult(0x80041001);
inline constexpr HRESULT WBEM_E_NOT_FOUND = MakeHResult(0x80041002);
inline constexpr HRESULT WBEM_E_ACCESS_DENIED = MakeHResult(0x80041003);
inline constexpr HRESULT WBEM_E_OUT_OF_MEMORY = MakeHResult(0x80041006);
inline constexpr HRESULT WBEM_E_INVALID_PARAMETER = MakeHResult(0x80041008);
inline constexpr HRESULT WBEM_E_INVALID_NAMESPACE = MakeHResult(0x8004100E);
inline constexpr HRESULT WBEM_E_PROVIDER_LOAD_FAILURE = MakeHResult(0x80041013);
inline constexpr HRESULT WBEM_E_INVALID_QUERY = MakeHResult(0x80041017);
inline constexpr HRESULT WBEM_E_INVALID_METHOD = MakeHResult(0x8004102E);
inline constexpr HRESULT WBEM_E_INVALID_OBJECT_PATH = MakeHResult(0x8004103A);
inline constexpr HRESULT WBEM_E_SERVER_TOO_BUSY = MakeHResult(0x80041045);

inline constexpr CLSID CLSID_WbemLocator = {
    0x4590F811, 0x1D3A, 0x11D0, {0x89, 0x1F, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};
inline constexpr IID IID_IWbemLocator = {0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

/// The interfaces offer no destructor, as on the platform: the last Release deletes an object.
struct IUnknown {
  virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG AddRef() = 0;
  /// Gives one reference back; the object is gone when the result is 0.
  virtual ULONG Release() = 0;

 protected:
  ~IUnknown() = default;
};

struct IWbemContext;
struct IWbemCallResult;

/// An instance, a class definition, or the in- or out-parameters of a method: named values.
struct IWbemClassObject : IUnknown {
  /// Copies the value called `name` into `value`, which must hold nothing. WBEM_E_NOT_FOUND when there is none.
  virtual HRESULT Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) = 0;
  /// Stores a copy of `value` under `name`.
  virtual HRESULT Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) = 0;
  /// On a class definition: an empty object for the in-parameters of the method called `name`; null for a method
  /// without any. WBEM_E_NOT_FOUND for an unknown method. The out-signature is never asked for.
  virtual HRESULT GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** in_signature,
                            IWbemClassObject** out_signature) = 0;
};

struct IEnumWbemClassObject : IUnknown {
  /// Hands out up to `count` next objects and their number; WBEM_S_FALSE when fewer are left. The pointers behind the
  /// last object handed out stay as they were.
  virtual HRESULT Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) = 0;
};

struct IWbemServices : IUnknown {
  /// The class definition called `path`; WBEM_E_NOT_FOUND for an unknown class.
  virtual HRESULT GetObject(BSTR path, LONG flags, IWbemContext* context, IWbemClassObject** object,
                            IWbemCallResult** call_result) = 0;
  /// All instances of a class. Succeeds for an unknown class, with nothing to enumerate.
  virtual HRESULT CreateInstanceEnum(BSTR class_name, LONG flags, IWbemContext* context,
                                     IEnumWbemClassObject** enumerator) = 0;
  /// The instances that a query of the form "SELECT * FROM Class" selects. Succeeds for an unknown class, with
  /// nothing to enumerate.
  virtual HRESULT ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* context,
                            IEnumWbemClassObject** enumerator) = 0;
  /// Runs a method of the instance at `path` (Class.InstanceName="escaped name") and hands back its out-parameters. May
  /// block for as long as the firmware takes. WBEM_E_INVALID_QUERY for an empty path, WBEM_E_INVALID_OBJECT_PATH for
  /// one of another form, WBEM_E_NOT_FOUND for an unknown instance, WBEM_E_INVALID_METHOD for an unknown method; else
  /// the firmware's own result.
  virtual HRESULT ExecMethod(BSTR path, BSTR method, LONG flags, IWbemContext* context, IWbemClassObject* in_params,
                             IWbemClassObject** out_params, IWbemCallResult** call_result) = 0;
};

struct IWbemLocator : IUnknown {
  /// Connects to the namespace "ROOT\WMI" with the caller's own identity; WBEM_E_INVALID_NAMESPACE for another.
  virtual HRESULT ConnectServer(BSTR network_resource, BSTR user, BSTR password, BSTR locale, LONG security_flags,
                                BSTR authority, IWbemContext* context, IWbemServices** services) = 0;
};

extern "C" {

/// Joins the calling thread to the multithreaded (0) or a single-threaded (2) apartment: S_OK the first time, S_FALSE
/// when the thread was there already, RPC_E_CHANGED_MODE when it is in the other kind.
HRESULT CoInitializeEx(LPVOID reserved, DWORD apartment);
/// Takes back one CoInitializeEx of the calling thread, even one that failed, but none that answered
/// RPC_E_CHANGED_MODE. One too many is a complaint (see instruments.h).
void CoUninitialize();
/// Creates the locator; REGDB_E_CLASSNOTREG for any other class, CO_E_NOTINITIALIZED on a thread without a successful
/// CoInitializeEx.
HRESULT CoCreateInstance(REFCLSID class_id, IUnknown* outer, DWORD context, REFIID iid, LPVOID* object);
/// Sets how calls through `proxy` authenticate. Nothing leaves the process here, so nothing is done with it.
HRESULT CoSetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service, OLECHAR* principal,
                          DWORD authn_level, DWORD imp_level, RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities);
}
