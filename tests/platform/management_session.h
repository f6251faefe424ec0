/// The management service as a client has it: apartment entered, locator made, namespace connected.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/standin/variant_value.h"
#include "platform/wmi.h"

namespace test {

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
  void operator()(OLECHAR* text) const { SysFreeString(text); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, Releaser>;
using Text = Owned<OLECHAR>;

inline Text MakeText(const std::wstring& text) { return Text(SysAllocString(text.c_str())); }

/// Clears what it holds at its end.
struct OwnedVariant : VARIANT {
  explicit OwnedVariant(const platform::Value& value = {}) : VARIANT(platform::VariantOf(value)) {}
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { EXPECT_EQ(VariantClear(this), S_OK); }

  platform::Value Read() const { return platform::ValueOf(*this).value(); }
};

class Session {
 public:
  explicit Session(const wchar_t* space = L"ROOT\\WMI") {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    void* place = nullptr;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator, &place), S_OK);
    const Owned<IWbemLocator> locator(static_cast<IWbemLocator*>(place));
    IWbemServices* found = nullptr;
    status = locator->ConnectServer(MakeText(space).get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &found);
    services.reset(found);
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
  EXPECT_EQ(status, object != nullptr ? WBEM_S_NO_ERROR : WBEM_S_FALSE);
  EXPECT_EQ(returned, object != nullptr ? 1U : 0U);
  return Owned<IWbemClassObject>(object);
}

}  // namespace test
