#include "platform/standin/variant_value.h"

#include <algorithm>
#include <variant>

namespace platform {
namespace {

Bytes BytesOf(const SAFEARRAY* array) {
  if (array == nullptr) return {};
  const auto* first = static_cast<const std::uint8_t*>(array->pvData);
  return {first, first + array->rgsabound[0].cElements};
}

SAFEARRAY* ArrayOf(const Bytes& bytes) {
  SAFEARRAY* array = AllocateArray(static_cast<ULONG>(bytes.size()));
  std::ranges::copy(bytes, static_cast<std::uint8_t*>(array->pvData));
  return array;
}

struct VariantWriter {
  VARIANT& variant;

  void operator()(std::monostate /*empty*/) const { variant.vt = VT_EMPTY; }
  void operator()(const Null& /*null*/) const { variant.vt = VT_NULL; }
  void operator()(std::int32_t number) const { Set(VT_I4, variant.lVal, number); }
  void operator()(std::uint8_t number) const { Set(VT_UI1, variant.bVal, number); }
  void operator()(std::uint32_t number) const { Set(VT_UI4, variant.ulVal, number); }
  void operator()(std::uint64_t number) const { Set(VT_UI8, variant.ullVal, number); }
  void operator()(const std::wstring& text) const { Set(VT_BSTR, variant.bstrVal, AllocateText(text)); }
  void operator()(const Bytes& bytes) const { Set(kByteArray, variant.parray, ArrayOf(bytes)); }

  template <typename Place, typename Content>
  void Set(VARTYPE type, Place& place, Content content) const {
    variant.vt = type;
    place = content;
  }
};

}  // namespace

std::optional<Value> ValueOf(const VARIANT& variant) {
  switch (variant.vt) {
    case VT_EMPTY:
      return Value();
    case VT_NULL:
      return Null();
    case VT_I4:
      return std::int32_t{variant.lVal};
    case VT_UI1:
      return variant.bVal;
    case VT_UI4:
      return std::uint32_t{variant.ulVal};
    case VT_UI8:
      return std::uint64_t{variant.ullVal};
    case VT_BSTR:
      return variant.bstrVal != nullptr ? std::wstring(variant.bstrVal, TextLength(variant.bstrVal)) : std::wstring();
    case kByteArray:
      return BytesOf(variant.parray);
    default:
      return std::nullopt;
  }
}

VARIANT VariantOf(const Value& value) {
  VARIANT variant = {};
  std::visit(VariantWriter{variant}, value);
  return variant;
}

}  // namespace platform
