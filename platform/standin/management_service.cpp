#include "platform/standin/management_service.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/standin/com_object.h"
#include "platform/standin/management_class.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

constexpr Call<HRESULT> ServiceCall(const char* name, auto failure) {
  return ComCall(name, Status(failure), Status(WBEM_E_OUT_OF_MEMORY));
}

std::wstring_view View(BSTR text) {
  return text != nullptr ? std::wstring_view(text, TextLength(text)) : std::wstring_view();
}

/// Instances, class definitions and the parameters of methods: named values.
class ClassObject final : public ComObject<ClassObject, IWbemClassObject> {
 public:
  static constexpr IID kIid = {0xDC12A681, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

  explicit ClassObject(NamedValues values, std::vector<FirmwareClass::Method> methods = {})
      : methods_(std::move(methods)), values_(std::move(values)) {}

  HRESULT Get(LPCWSTR name, LONG /*flags*/, VARIANT* value, CIMTYPE* type, LONG* flavor) override {
    return Pass(
        ServiceCall("IWbemClassObject::Get", WBEM_E_NOT_FOUND), Asked(name),
        [&] {
          if (name == nullptr || value == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
          const std::lock_guard lock(mutex_);
          const auto found = values_.find(std::wstring_view(name));
          if (found == values_.end()) return Status(WBEM_E_NOT_FOUND);
          *value = VariantOf(found->second);
          if (type != nullptr) *type = value->vt;  // the service's own type numbers are those of VARIANTs
          if (flavor != nullptr) *flavor = 0;
          return Status(WBEM_S_NO_ERROR);
        },
        [&](HRESULT result) { return SUCCEEDED(result) ? Described(value) : ""; });
  }

  HRESULT Put(LPCWSTR name, LONG /*flags*/, VARIANT* value, CIMTYPE /*type*/) override {
    return Pass(ServiceCall("IWbemClassObject::Put", WBEM_E_FAILED), Asked(name, value), [&] {
      auto known = value != nullptr ? ValueOf(*value) : std::nullopt;
      if (name == nullptr || !known) return Status(WBEM_E_INVALID_PARAMETER);
      const std::lock_guard lock(mutex_);
      values_.insert_or_assign(name, *std::move(known));
      return Status(WBEM_S_NO_ERROR);
    });
  }

  HRESULT GetMethod(LPCWSTR name, LONG /*flags*/, IWbemClassObject** in_signature,
                    IWbemClassObject** out_signature) override {
    Empty(in_signature);
    Empty(out_signature);
    return Pass(WithObject(ServiceCall("IWbemClassObject::GetMethod", WBEM_E_NOT_FOUND)), Asked(name), [&] {
      if (name == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
      const auto* method = FindMethod(methods_, name);
      if (method == nullptr) return Status(WBEM_E_NOT_FOUND);
      if (in_signature != nullptr && method->has_input) *in_signature = new ClassObject({});
      return Status(WBEM_S_NO_ERROR);
    });
  }

  /// A copy of all values of `object`, which the layer made itself; nothing for null.
  static NamedValues ValuesOf(const IWbemClassObject* object) {
    if (object == nullptr) return {};
    const auto* const own = static_cast<const ClassObject*>(object);
    const std::lock_guard lock(own->mutex_);
    return own->values_;
  }

 private:
  const std::vector<FirmwareClass::Method> methods_;
  mutable std::mutex mutex_;
  NamedValues values_;  // guarded by mutex_
};

/// The instances that were there when the enumeration began.
class Enumerator final : public ComObject<Enumerator, IEnumWbemClassObject> {
 public:
  static constexpr IID kIid = {0x027947E1, 0xD731, 0x11CE, {0xA3, 0x57, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};

  explicit Enumerator(std::vector<NamedValues> instances) : instances_(std::move(instances)) {}

  HRESULT Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) override {
    if (returned != nullptr) *returned = 0;
    return Pass(
        WithObject(ServiceCall("IEnumWbemClassObject::Next", WBEM_E_FAILED)), Asked(timeout, count),
        [&] {
          return objects != nullptr && returned != nullptr ? Take(count, objects, *returned)
                                                           : Status(WBEM_E_INVALID_PARAMETER);
        },
        [&](HRESULT) { return returned != nullptr ? Described(*returned) : ""; });
  }

 private:
  HRESULT Take(ULONG count, IWbemClassObject** objects, ULONG& returned) {
    const std::lock_guard lock(mutex_);
    const std::size_t taken = std::min<std::size_t>(count, instances_.size() - next_);
    // All are made before the first is handed out, so a call that fails hands out none.
    std::vector<std::unique_ptr<ClassObject>> made;
    for (std::size_t i = 0; i < taken; ++i) made.push_back(std::make_unique<ClassObject>(instances_[next_ + i]));
    for (std::size_t i = 0; i < taken; ++i) objects[i] = made[i].release();
    next_ += taken;
    returned = static_cast<ULONG>(taken);
    return taken == count ? Status(WBEM_S_NO_ERROR) : Status(WBEM_S_FALSE);
  }

  const std::vector<NamedValues> instances_;
  std::mutex mutex_;
  std::size_t next_ = 0;  // guarded by mutex_
};

/// A connection to the namespace.
class Services final : public ComObject<Services, IWbemServices> {
 public:
  static constexpr IID kIid = {0x9556DC99, 0x828C, 0x11CF, {0xA3, 0x7E, 0x00, 0xAA, 0x00, 0x32, 0x40, 0xC7}};

  HRESULT GetObject(BSTR path, LONG /*flags*/, IWbemContext* /*context*/, IWbemClassObject** object,
                    IWbemCallResult** /*call_result*/) override {
    Empty(object);
    return Pass(WithObject(ServiceCall("IWbemServices::GetObject", WBEM_E_FAILED)), Asked(path), [&] {
      if (object == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
      auto definition = FindManagementClass(View(path));
      if (!definition) return Status(WBEM_E_NOT_FOUND);
      *object = new ClassObject({}, std::move(definition->methods));
      return Status(WBEM_S_NO_ERROR);
    });
  }

  HRESULT CreateInstanceEnum(BSTR class_name, LONG flags, IWbemContext* /*context*/,
                             IEnumWbemClassObject** enumerator) override {
    Empty(enumerator);
    return Pass(WithObject(ServiceCall("IWbemServices::CreateInstanceEnum", WBEM_E_FAILED)), Asked(class_name, flags),
                [&] { return Enumerate(View(class_name), enumerator); });
  }

  HRESULT ExecQuery(BSTR language, BSTR query, LONG flags, IWbemContext* /*context*/,
                    IEnumWbemClassObject** enumerator) override {
    Empty(enumerator);
    return Pass(WithObject(ServiceCall("IWbemServices::ExecQuery", WBEM_E_FAILED)), Asked(language, query, flags), [&] {
      const auto class_name = ParseSelectAll(View(query));
      if (!class_name || !EqualsWithoutCase(View(language), L"WQL")) return Status(WBEM_E_INVALID_QUERY);
      return Enumerate(*class_name, enumerator);
    });
  }

  HRESULT ExecMethod(BSTR path, BSTR method, LONG /*flags*/, IWbemContext* /*context*/, IWbemClassObject* in_params,
                     IWbemClassObject** out_params, IWbemCallResult** /*call_result*/) override {
    Empty(out_params);
    return Pass(
        WithObject(ServiceCall("IWbemServices::ExecMethod", WBEM_E_FAILED)),
        [&] {
          return std::vector{Described(path), Described(method), Described(ClassObject::ValuesOf(in_params))};
        },
        [&] { return RunMethod(View(path), View(method), in_params, out_params); },
        [&](HRESULT) { return Described(ClassObject::ValuesOf(out_params != nullptr ? *out_params : nullptr)); });
  }

 private:
  static HRESULT Enumerate(std::wstring_view class_name, IEnumWbemClassObject** enumerator) {
    if (enumerator == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
    auto definition = FindManagementClass(class_name);
    *enumerator = new Enumerator(definition ? std::move(definition->instances) : std::vector<NamedValues>());
    return Status(WBEM_S_NO_ERROR);
  }

  /// No lock is held while the firmware runs.
  static HRESULT RunMethod(std::wstring_view path, std::wstring_view method_name, IWbemClassObject* in_params,
                           IWbemClassObject** out_params) {
    if (path.empty()) return Status(WBEM_E_INVALID_QUERY);
    const auto parsed = ParseObjectPath(path);
    if (!parsed) return Status(WBEM_E_INVALID_OBJECT_PATH);
    const auto definition = FindManagementClass(parsed->class_name);
    const std::wstring* instance = definition ? FindInstance(*definition, parsed->instance_name) : nullptr;
    if (instance == nullptr) return Status(WBEM_E_NOT_FOUND);
    const auto* method = FindMethod(definition->methods, method_name);
    if (method == nullptr) return Status(WBEM_E_INVALID_METHOD);

    FirmwareAnswer answer = CurrentMachine()->CallFirmware(*instance, method->name, ClassObject::ValuesOf(in_params));
    if (SUCCEEDED(answer.status) && out_params != nullptr) *out_params = new ClassObject(std::move(answer.out));
    return answer.status;
  }
};

class Locator final : public ComObject<Locator, IWbemLocator> {
 public:
  static constexpr IID kIid = {0xDC12A687, 0x737F, 0x11CF, {0x88, 0x4D, 0x00, 0xAA, 0x00, 0x4B, 0x2E, 0x24}};

  HRESULT ConnectServer(BSTR network_resource, BSTR user, BSTR /*password*/, BSTR /*locale*/, LONG security_flags,
                        BSTR /*authority*/, IWbemContext* /*context*/, IWbemServices** services) override {
    Empty(services);
    return Pass(WithObject(ServiceCall("IWbemLocator::ConnectServer", WBEM_E_ACCESS_DENIED)),
                Asked(network_resource, user, security_flags), [&] {
                  if (network_resource == nullptr || services == nullptr) return Status(WBEM_E_INVALID_PARAMETER);
                  if (!EqualsWithoutCase(network_resource, L"ROOT\\WMI")) return Status(WBEM_E_INVALID_NAMESPACE);
                  *services = new Services;
                  return Status(WBEM_S_NO_ERROR);
                });
  }
};

}  // namespace

IWbemLocator* NewLocator() { return new Locator; }

}  // namespace platform
