#include "platform/standin/wmi_services.h"

#include <utility>

#include "platform/standin/management_class.h"
#include "platform/standin/management_text.h"
#include "platform/standin/text.h"
#include "platform/standin/variant_value.h"
#include "platform/standin/wmi_class_object.h"
#include "platform/standin/wmi_enumerator.h"

namespace platform {
namespace {

constexpr Call<HRESULT> ServiceCall(const char* name) {
  return ObjectCall(name, Status(WBEM_E_FAILED), Status(WBEM_E_OUT_OF_MEMORY));
}

constexpr Call<HRESULT> kGetObject = ServiceCall("IWbemServices::GetObject");
constexpr Call<HRESULT> kCreateInstanceEnum = ServiceCall("IWbemServices::CreateInstanceEnum");
constexpr Call<HRESULT> kExecQuery = ServiceCall("IWbemServices::ExecQuery");
constexpr Call<HRESULT> kExecMethod = ServiceCall("IWbemServices::ExecMethod");

std::wstring_view View(BSTR text) {
  return text != nullptr ? std::wstring_view(text, TextLength(text)) : std::wstring_view();
}

NamedValues ValuesOf(IWbemClassObject* object) {
  // Only the layer makes such objects.
  return object != nullptr ? static_cast<const WmiClassObject*>(object)->Values() : NamedValues();
}

HRESULT Enumerate(std::wstring_view class_name, IEnumWbemClassObject** enumerator) {
  if (enumerator == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
  auto definition = FindManagementClass(class_name);
  *enumerator = new WmiEnumerator(definition ? std::move(definition->instances) : std::vector<NamedValues>());
  return Status(WBEM_S_NO_ERROR);
}

/// No lock is held while the firmware runs.
HRESULT RunMethod(std::wstring_view path, std::wstring_view method_name, IWbemClassObject* in_params,
                  IWbemClassObject** out_params) {
  if (path.empty()) return Status(WBEM_E_INVALID_QUERY);
  const auto parsed = ParseObjectPath(path);
  if (!parsed) return Status(WBEM_E_INVALID_OBJECT_PATH);
  const auto definition = FindManagementClass(parsed->class_name);
  const std::wstring* instance = definition ? FindInstance(*definition, parsed->instance_name) : nullptr;
  if (instance == nullptr) return Status(WBEM_E_NOT_FOUND);
  const auto* method = FindMethod(definition->methods, method_name);
  if (method == nullptr) return Status(WBEM_E_INVALID_METHOD);

  FirmwareAnswer answer = CurrentMachine()->CallFirmware(*instance, method->name, ValuesOf(in_params));
  if (SUCCEEDED(answer.status) && out_params != nullptr) *out_params = new WmiClassObject(std::move(answer.out));
  return answer.status;
}

}  // namespace

HRESULT WmiServices::GetObject(BSTR path, LONG /*flags*/, IWbemContext* /*context*/, IWbemClassObject** object,
                               IWbemCallResult** /*call_result*/) {
  Empty(object);
  return Pass(kGetObject, Asked(path), [&] {
    if (object == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
    auto definition = FindManagementClass(View(path));
    if (!definition) return Status(WBEM_E_NOT_FOUND);
    *object = new WmiClassObject({}, std::move(definition->methods));
    return Status(WBEM_S_NO_ERROR);
  });
}

HRESULT WmiServices::CreateInstanceEnum(BSTR class_name, LONG flags, IWbemContext* /*context*/,
                                        IEnumWbemClassObject** enumerator) {
  Empty(enumerator);
  return Pass(kCreateInstanceEnum, Asked(class_name, flags), [&] { return Enumerate(View(class_name), enumerator); });
}

HRESULT WmiServices::ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* /*context*/,
                               IEnumWbemClassObject** enumerator) {
  Empty(enumerator);
  return Pass(kExecQuery, Asked(language, query, flags), [&] {
    const auto class_name = ParseSelectAll(View(query));
    if (!class_name || !EqualsWithoutCase(View(language), L"WQL")) return Status(WBEM_E_INVALID_QUERY);
    return Enumerate(*class_name, enumerator);
  });
}

HRESULT WmiServices::ExecMethod(BSTR path, BSTR method, LONG /*flags*/, IWbemContext* /*context*/,
                                IWbemClassObject* in_params, IWbemClassObject** out_params,
                                IWbemCallResult** /*call_result*/) {
  Empty(out_params);
  return Pass(
      kExecMethod,
      [&] {
        return std::vector{Described(path), Described(method), Described(ValuesOf(in_params))};
      },
      [&] { return RunMethod(View(path), View(method), in_params, out_params); },
      [&](HRESULT) { return Described(ValuesOf(out_params != nullptr ? *out_params : nullptr)); });
}

}  // namespace platform
