/// Owners for what the management service hands out.
#pragma once

#include <algorithm>
#include <span>

#include "base/owner.h"
#include "platform/wmi.h"

template <typename Interface>
void ReleaseReference(Interface* object) {
  object->Release();
}
/// One reference to an interface.
template <typename Interface>
using ComPtr = Owner<Interface*, ReleaseReference<Interface>>;

/// A text as the management service takes it; nothing when memory ran out.
class Bstr : public Owner<BSTR, SysFreeString> {
 public:
  explicit Bstr(const wchar_t* text) : Owner(SysAllocString(text)) {}
};

/// The bytes of a VARIANT that holds a byte array, and a lock on that array. False when they cannot be had.
class ArrayBytes {
 public:
  explicit ArrayBytes(const VARIANT& variant) {
    SAFEARRAY* const array = V_VT(&variant) == (VT_ARRAY | VT_UI1) ? V_ARRAY(&variant) : nullptr;
    if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &data_))) *array_.Put() = array;
  }

  explicit operator bool() const { return static_cast<bool>(array_); }
  std::span<BYTE> Get() const { return {static_cast<BYTE*>(data_), array_->rgsabound[0].cElements}; }

 private:
  Owner<SAFEARRAY*, SafeArrayUnaccessData> array_;
  void* data_ = nullptr;
};

/// A VARIANT and what it holds.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&value_); }

  VARIANT* Get() { return &value_; }

  /// Converts in place; false, with the value as it was, when that cannot be done.
  bool ChangeTo(VARTYPE type) { return SUCCEEDED(VariantChangeType(&value_, &value_, 0, type)); }

  /// Makes an empty VARIANT a byte array with a copy of `bytes`; false when the platform cannot.
  bool SetBytes(std::span<const BYTE> bytes) {
    SAFEARRAYBOUND bound = {static_cast<ULONG>(bytes.size()), 0};
    V_ARRAY(&value_) = SafeArrayCreate(VT_UI1, 1, &bound);
    if (V_ARRAY(&value_) == nullptr) return false;
    V_VT(&value_) = VT_ARRAY | VT_UI1;
    const ArrayBytes target(value_);
    if (target) std::copy(bytes.begin(), bytes.end(), target.Get().begin());
    return static_cast<bool>(target);
  }

 private:
  VARIANT value_{};
};
