#include "firmware/wmi_connection.h"

#include <cwchar>
#include <string_view>
#include <utility>

namespace {

constexpr wchar_t kNamespace[] = L"ROOT\\WMI";
constexpr wchar_t kQueryLanguage[] = L"WQL";
constexpr wchar_t kKeyProperty[] = L"InstanceName";

constexpr auto kFailed = static_cast<HRESULT>(WBEM_E_FAILED);

/// Keeps a step's result; true when it succeeded.
bool Step(WmiConnection& connection, HRESULT result) {
  connection.status = result;
  return SUCCEEDED(result);
}

/// The same for a step that hands out an object: success without an object is a failure.
template <typename Interface>
bool Step(WmiConnection& connection, HRESULT result, const ComPtr<Interface>& object) {
  return Step(connection, SUCCEEDED(result) && !object ? kFailed : result);
}

/// The same for the making of a text.
bool Step(WmiConnection& connection, const Bstr& text) { return Step(connection, text ? S_OK : E_OUTOFMEMORY); }

bool Connect(WmiConnection& connection) {
  const Bstr name_space(kNamespace);
  return Step(connection, name_space) &&
         Step(connection,
              CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(connection.locator.Put())),
              connection.locator) &&
         Step(connection,
              connection.locator->ConnectServer(name_space.Get(), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                                                connection.services.Put()),
              connection.services) &&
         Step(connection, CoSetProxyBlanket(connection.services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                            RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE));
}

/// Takes the next object of an enumeration; false at its end or on a failure.
bool TakeNext(WmiConnection& connection, const ComPtr<IEnumWbemClassObject>& enumerator,
              ComPtr<IWbemClassObject>& object) {
  ULONG returned = 0;
  return Step(connection, enumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, object.Put(), &returned)) &&
         returned == 1 && object;
}

bool SendValues(WmiConnection& connection, const ComPtr<IWbemClassObject>& parameters,
                std::span<const NamedVariant> values) {
  for (const NamedVariant& value : values) {
    Variant copy;
    if (!Step(connection, VariantCopy(copy.Get(), value.value.Get())) ||
        !Step(connection, parameters->Put(value.name, 0, copy.Get(), 0))) {
      return false;
    }
  }
  return true;
}

bool ReceiveValues(WmiConnection& connection, const ComPtr<IWbemClassObject>& object,
                   std::span<const NamedVariant> values) {
  for (const NamedVariant& value : values) {
    Variant received;
    if (!Step(connection, object->Get(value.name, 0, received.Get(), nullptr, nullptr)) ||
        !Step(connection, VariantCopy(value.value.Get(), received.Get()))) {
      return false;
    }
  }
  return !values.empty();
}

/// Doubles every backslash, as object paths want their texts; false when the text then does not fit.
bool EscapeBackslashes(std::wstring_view text, InstancePath& escaped) {
  std::size_t length = 0;
  for (const wchar_t character : text) {
    const std::size_t copies = character == L'\\' ? 2 : 1;
    if (length + copies >= escaped.size()) return false;
    for (std::size_t i = 0; i < copies; ++i) escaped.at(length++) = character;
  }
  return true;
}

/// Writes an instance's object path; false, with an empty path, when it does not fit.
bool WritePath(const wchar_t* class_name, std::wstring_view instance_name, InstancePath& path) {
  InstancePath escaped{};
  if (!EscapeBackslashes(instance_name, escaped)) return false;
  std::size_t length = 0;
  const std::wstring_view pieces[] = {class_name, L".", kKeyProperty, L"=\"", escaped.data(), L"\""};
  for (const std::wstring_view piece : pieces) {
    if (length + piece.size() >= path.size()) {
      path = {};
      return false;
    }
    length += piece.copy(&path.at(length), piece.size());
  }
  return true;
}

}  // namespace

WmiConnection::~WmiConnection() { CloseWmiConnection(*this); }

std::int32_t OpenWmiConnection(WmiConnection& connection) {
  CloseWmiConnection(connection);
  // Other failures show in the next step. With this one, the thread's COM belongs to somebody else.
  connection.status = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  connection.com_initialized = 1;
  connection.may_uninitialize = connection.status != RPC_E_CHANGED_MODE ? 1 : 0;
  if (Connect(connection)) return 1;
  CloseWmiConnection(connection);
  return 0;
}

void CloseWmiConnection(WmiConnection& connection) {
  connection.services.Reset();
  connection.locator.Reset();
  if (std::exchange(connection.com_initialized, 0) != 0 && connection.may_uninitialize != 0) CoUninitialize();
}

HRESULT FindInstancePath(WmiConnection& connection, const wchar_t* class_name, const wchar_t* query,
                         InstancePath& path) {
  path = {};
  const Bstr language(kQueryLanguage);
  const Bstr query_text(query);
  if (!Step(connection, language) || !Step(connection, query_text)) return connection.status;

  ComPtr<IEnumWbemClassObject> enumerator;
  if (!Step(connection,
            connection.services->ExecQuery(language.Get(), query_text.Get(),
                                           WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                           enumerator.Put()),
            enumerator)) {
    return connection.status;
  }
  const HRESULT query_result = connection.status;

  ComPtr<IWbemClassObject> instance;
  while (TakeNext(connection, enumerator, instance)) {
    Variant name;
    if (!Step(connection, instance->Get(kKeyProperty, 0, name.Get(), nullptr, nullptr))) continue;
    if (V_VT(name.Get()) <= VT_NULL) continue;
    if (!name.ChangeTo(VT_BSTR)) return kFailed;
    const std::wstring_view text(V_BSTR(name.Get()), SysStringLen(V_BSTR(name.Get())));
    return WritePath(class_name, text, path) ? query_result : kFailed;
  }
  return query_result;
}

std::int32_t ExecFirmwareMethod(WmiConnection& connection, const wchar_t* class_name, const wchar_t* method,
                                const wchar_t* query, std::span<const NamedVariant> in,
                                std::span<const NamedVariant> out) {
  InstancePath path;
  if (!Step(connection, FindInstancePath(connection, class_name, query, path))) return 0;

  const Bstr class_text(class_name);
  const Bstr method_text(method);
  const Bstr path_text(path.data());
  ComPtr<IWbemClassObject> definition;
  ComPtr<IWbemClassObject> in_params;
  ComPtr<IWbemClassObject> out_params;
  const bool prepared =
      Step(connection, class_text) && Step(connection, method_text) && Step(connection, path_text) &&
      Step(connection, connection.services->GetObject(class_text.Get(), 0, nullptr, definition.Put(), nullptr),
           definition) &&
      Step(connection, definition->GetMethod(method, 0, in_params.Put(), nullptr)) &&
      (in.empty() || Step(connection, S_OK, in_params)) &&  // only a method without parameters has none
      SendValues(connection, in_params, in);
  if (!prepared) return 0;
  const HRESULT ran =
      connection.services->ExecMethod(path_text.Get(), method_text.Get(), 0, nullptr,
                                      in.empty() ? nullptr : in_params.Get(), out_params.Put(), nullptr);
  return Step(connection, ran, out_params) && ReceiveValues(connection, out_params, out) ? 1 : 0;
}

std::int32_t ReadInstanceProperties(WmiConnection& connection, const wchar_t* class_name,
                                    std::span<const NamedVariant> properties) {
  const Bstr class_text(class_name);
  ComPtr<IEnumWbemClassObject> enumerator;
  ComPtr<IWbemClassObject> instance;
  const bool found =
      Step(connection, class_text) &&
      Step(connection, connection.services->CreateInstanceEnum(class_text.Get(), 0, nullptr, enumerator.Put()),
           enumerator) &&
      TakeNext(connection, enumerator, instance);
  return found && ReceiveValues(connection, instance, properties) ? 1 : 0;
}
