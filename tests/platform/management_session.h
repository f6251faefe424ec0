/// The management service as a client has it: apartment entered, locator made, namespace connected.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/wmi.h"

namespace test {

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, Releaser>;

struct TextDeleter {
  void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using Text = std::unique_ptr<OLECHAR, TextDeleter>;

inline Text MakeText(const std::wstring& text) { return Text(SysAllocString(text.c_str())); }

/// Clears what it holds at its end.
struct OwnedVariant : VARIANT {
  OwnedVariant() : VARIANT{} { VariantInit(this); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { EXPECT_EQ(VariantClear(this), S_OK); }
};

inline void PutText(VARIANT& variant, const wchar_t* text) {
  V_BSTR(&variant) = SysAllocString(text);
  V_VT(&variant) = VT_BSTR;
}

inline void PutBytes(VARIANT& variant, const std::string& bytes) {
  SAFEARRAYBOUND bound = {static_cast<ULONG>(bytes.size()), 0};
  V_ARRAY(&variant) = SafeArrayCreate(VT_UI1, 1, &bound);
  V_VT(&variant) = VT_ARRAY | VT_UI1;
  void* data = nullptr;
  ASSERT_EQ(SafeArrayAccessData(V_ARRAY(&variant), &data), S_OK);
  bytes.copy(static_cast<char*>(data), bytes.size());
  ASSERT_EQ(SafeArrayUnaccessData(V_ARRAY(&variant)), S_OK);
}

class Session {
 public:
  Session() {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    void* locator = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &locator), S_OK);
    const Owned<IWbemLocator> owned(static_cast<IWbemLocator*>(locator));
    IWbemServices* connected = nullptr;
    EXPECT_EQ(
        owned->ConnectServer(MakeText(L"ROOT\\WMI").get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &connected),
        S_OK);
    services.reset(connected);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    services.reset();
    CoUninitialize();
  }

  Owned<IEnumWbemClassObject> Query(const std::wstring& query) const {
    IEnumWbemClassObject* found = nullptr;
    status = services->ExecQuery(MakeText(L"WQL").get(), MakeText(query).get(), 48, nullptr, &found);
    return Owned<IEnumWbemClassObject>(found);
  }

  Owned<IWbemClassObject> InParameters(const wchar_t* method) const {
    IWbemClassObject* definition = nullptr;
    status = services->GetObject(MakeText(L"ZarnGamingFunction").get(), 0, nullptr, &definition, nullptr);
    if (FAILED(status)) return nullptr;
    const Owned<IWbemClassObject> owned(definition);
    IWbemClassObject* parameters = nullptr;
    status = definition->GetMethod(method, 0, &parameters, nullptr);
    return Owned<IWbemClassObject>(parameters);
  }

  Owned<IWbemClassObject> Run(const std::wstring& path, const wchar_t* method, IWbemClassObject* in = nullptr) const {
    IWbemClassObject* out = nullptr;
    status = services->ExecMethod(MakeText(path).get(), MakeText(method).get(), 0, nullptr, in, &out, nullptr);
    return Owned<IWbemClassObject>(out);
  }

  Owned<IWbemServices> services;
  /// What the last step answered.
  mutable HRESULT status = S_OK;
};

inline Owned<IWbemClassObject> TakeNext(IEnumWbemClassObject& enumerator) {
  IWbemClassObject* object = nullptr;
  ULONG returned = 0;
  const HRESULT status = enumerator.Next(WBEM_INFINITE, 1, &object, &returned);
  EXPECT_EQ(status, returned == 1 ? WBEM_S_NO_ERROR : WBEM_S_FALSE);
  return Owned<IWbemClassObject>(object);
}

}  // namespace test
