/// Owners for what the management service hands out, so that every path out of a call gives it back exactly once.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <utility>

#include "platform/wmi.h"

/// One reference to an interface.
template <typename Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;
  ~ComPtr() { Reset(); }

  void Reset() {
    if (Interface* const object = std::exchange(object_, nullptr)) object->Release();
  }
  /// Where a platform call puts the reference it hands out; gives back the one held before.
  Interface** Put() {
    Reset();
    return &object_;
  }
  Interface* Get() const { return object_; }
  Interface* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  Interface* object_ = nullptr;
};

/// A text as the management service takes it; null when memory ran out.
class Bstr {
 public:
  explicit Bstr(const wchar_t* text) : text_(SysAllocString(text)) {}
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  ~Bstr() { SysFreeString(text_); }

  BSTR Get() const { return text_; }
  explicit operator bool() const { return text_ != nullptr; }

 private:
  BSTR text_;
};

/// A VARIANT and what it holds.
class Variant {
 public:
  Variant() { VariantInit(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&value_); }

  VARIANT* Get() { return &value_; }
  VARTYPE Type() const { return value_.vt; }
  bool IsByteArray() const { return value_.vt == (VT_ARRAY | VT_UI1); }

  /// Converts in place; false, with the value as it was, when that cannot be done.
  bool ChangeTo(VARTYPE type) { return SUCCEEDED(VariantChangeType(&value_, &value_, 0, type)); }

  /// Makes an empty VARIANT a byte array with a copy of `bytes`; false when the platform cannot.
  bool SetBytes(std::span<const BYTE> bytes);

 private:
  VARIANT value_{};
};

/// The bytes of a VARIANT's array, which is locked meanwhile. Empty when they cannot be had.
class ArrayBytes {
 public:
  explicit ArrayBytes(Variant& variant) : array_(V_ARRAY(variant.Get())) {
    if (!variant.IsByteArray() || array_ == nullptr || FAILED(SafeArrayAccessData(array_, &data_))) array_ = nullptr;
  }
  ArrayBytes(const ArrayBytes&) = delete;
  ArrayBytes& operator=(const ArrayBytes&) = delete;
  ~ArrayBytes() {
    if (array_ != nullptr) SafeArrayUnaccessData(array_);
  }

  explicit operator bool() const { return array_ != nullptr; }
  std::span<BYTE> Get() const { return {static_cast<BYTE*>(data_), array_->rgsabound[0].cElements}; }

 private:
  SAFEARRAY* array_;
  void* data_ = nullptr;
};

inline bool Variant::SetBytes(std::span<const BYTE> bytes) {
  SAFEARRAYBOUND bound = {static_cast<ULONG>(bytes.size()), 0};
  V_ARRAY(&value_) = SafeArrayCreate(VT_UI1, 1, &bound);
  if (V_ARRAY(&value_) == nullptr) return false;
  V_VT(&value_) = VT_ARRAY | VT_UI1;
  const ArrayBytes target(*this);
  if (!target) return false;
  if (!bytes.empty()) std::memcpy(target.Get().data(), bytes.data(), bytes.size());
  return true;
}
