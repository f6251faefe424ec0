#include "platform/standin/wmi_class_object.h"

#include <utility>

#include "platform/standin/management_class.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

constexpr Call<HRESULT> kGet = ComCall("IWbemClassObject::Get", Status(WBEM_E_NOT_FOUND), Status(WBEM_E_OUT_OF_MEMORY));
constexpr Call<HRESULT> kPut = ComCall("IWbemClassObject::Put", Status(WBEM_E_FAILED), Status(WBEM_E_OUT_OF_MEMORY));
constexpr Call<HRESULT> kGetMethod =
    ObjectCall("IWbemClassObject::GetMethod", Status(WBEM_E_NOT_FOUND), Status(WBEM_E_OUT_OF_MEMORY));

}  // namespace

WmiClassObject::WmiClassObject(NamedValues values, std::vector<FirmwareClass::Method> methods)
    : methods_(std::move(methods)), values_(std::move(values)) {}

NamedValues WmiClassObject::Values() const {
  const std::lock_guard lock(mutex_);
  return values_;
}

HRESULT WmiClassObject::Read(LPCWSTR name, VARIANT& value) const {
  const std::lock_guard lock(mutex_);
  const auto found = values_.find(std::wstring_view(name));
  if (found == values_.end()) return Status(WBEM_E_NOT_FOUND);
  value = VariantOf(found->second);
  return S_OK;
}

HRESULT WmiClassObject::Store(LPCWSTR name, const VARIANT& value) {
  auto known = ValueOf(value);
  if (!known) return Status(WBEM_E_INVALID_PARAMETER);
  const std::lock_guard lock(mutex_);
  values_.insert_or_assign(name, *std::move(known));
  return S_OK;
}

HRESULT WmiClassObject::Get(LPCWSTR name, LONG /*flags*/, VARIANT* value, CIMTYPE* type, LONG* flavor) {
  return Pass(
      kGet, Asked(name),
      [&] {
        if (name == nullptr || value == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
        const HRESULT result = Read(name, *value);
        // The service's own type numbers are those of VARIANTs.
        if (SUCCEEDED(result) && type != nullptr) *type = value->vt;
        if (SUCCEEDED(result) && flavor != nullptr) *flavor = 0;
        return result;
      },
      [&](HRESULT result) { return SUCCEEDED(result) ? Described(value) : ""; });
}

HRESULT WmiClassObject::Put(LPCWSTR name, LONG /*flags*/, VARIANT* value, CIMTYPE /*type*/) {
  return Pass(kPut, Asked(name, value), [&] {
    return name != nullptr && value != nullptr ? Store(name, *value) : Status(WBEM_E_INVALID_PARAMETER);
  });
}

HRESULT WmiClassObject::GetMethod(LPCWSTR name, LONG /*flags*/, IWbemClassObject** in_signature,
                                  IWbemClassObject** out_signature) {
  Empty(in_signature);
  Empty(out_signature);
  return Pass(kGetMethod, Asked(name), [&] {
    if (name == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
    const auto* method = FindMethod(methods_, name);
    if (method == nullptr) return Status(WBEM_E_NOT_FOUND);
    if (in_signature != nullptr && method->has_input) *in_signature = new WmiClassObject({});
    return Status(WBEM_S_NO_ERROR);
  });
}

}  // namespace platform
