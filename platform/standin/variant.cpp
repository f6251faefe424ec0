#include "platform/standin/variant.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>
#include <variant>

#include "platform/standin/platform_call.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

// A BSTR's block is the length in bytes, the characters, and a terminator; the BSTR points at the characters.
using LengthPrefix = std::uint32_t;

void FreeText(BSTR text) noexcept {
  if (text == nullptr) return;
  --g_live.texts;
  ::operator delete(reinterpret_cast<char*>(text) - sizeof(LengthPrefix));
}

HRESULT FreeArray(SAFEARRAY* array) noexcept {
  if (array == nullptr) return S_OK;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  --g_live.arrays;
  delete[] static_cast<std::uint8_t*>(array->pvData);
  delete array;
  return S_OK;
}

HRESULT Lock(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  ++array->cLocks;
  *data = array->pvData;
  return S_OK;
}

HRESULT Unlock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks == 0) {
    Complain("SafeArrayUnaccessData of an array that is not accessed");
    return E_FAIL;
  }
  --array->cLocks;
  return S_OK;
}

HRESULT Clear(VARIANT& variant) noexcept {
  if (variant.vt == VT_BSTR) FreeText(variant.bstrVal);
  if (variant.vt == kByteArray) {
    if (const HRESULT freed = FreeArray(variant.parray); FAILED(freed)) return freed;
  }
  variant.vt = VT_EMPTY;
  return S_OK;
}

HRESULT Copy(VARIANT& destination, const VARIANT& source) {
  const auto value = ValueOf(source);
  if (!value) return DISP_E_BADVARTYPE;
  destination = VariantOf(*value);
  return S_OK;
}

struct Decimal {
  std::uint64_t magnitude = 0;
  bool negative = false;
};

HRESULT ReadDigits(std::wstring_view text, Decimal& number) {
  number.negative = text.starts_with(L'-');
  if (number.negative) text.remove_prefix(1);
  if (text.empty() || !std::ranges::all_of(text, [](wchar_t c) { return c >= L'0' && c <= L'9'; })) {
    return DISP_E_TYPEMISMATCH;
  }
  constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();
  for (const wchar_t character : text) {
    const auto digit = static_cast<std::uint64_t>(character - L'0');
    if (number.magnitude > (kMax - digit) / 10) return DISP_E_OVERFLOW;
    number.magnitude = number.magnitude * 10 + digit;
  }
  return S_OK;
}

struct NumberReader {
  Decimal& number;

  HRESULT operator()(std::monostate /*empty*/) const { return S_OK; }
  HRESULT operator()(const Null& /*null*/) const { return DISP_E_TYPEMISMATCH; }
  HRESULT operator()(const Bytes& /*bytes*/) const { return DISP_E_TYPEMISMATCH; }
  HRESULT operator()(const std::wstring& text) const { return ReadDigits(text, number); }
  HRESULT operator()(std::integral auto value) const {
    number.negative = std::cmp_less(value, 0);
    number.magnitude = number.negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    return S_OK;
  }
};

template <typename Target>
HRESULT ToNumber(const Value& source, Value& result) {
  Decimal number;
  if (const HRESULT read = std::visit(NumberReader{number}, source); FAILED(read)) return read;
  // Between the two types of 32 bits the platform keeps the bits, sign or not.
  const bool keeps_bits = std::is_same_v<Target, std::uint32_t> && std::holds_alternative<std::int32_t>(source);
  const bool fits =
      number.magnitude <= std::numeric_limits<Target>::max() && (!number.negative || number.magnitude == 0);
  if (!keeps_bits && !fits) return DISP_E_OVERFLOW;
  result = static_cast<Target>(number.negative ? 0 - number.magnitude : number.magnitude);
  return S_OK;
}

HRESULT ToText(const Value& source, Value& result) {
  Decimal number;
  if (std::holds_alternative<std::wstring>(source)) {
    result = source;
  } else if (std::holds_alternative<std::monostate>(source)) {
    result = std::wstring();
  } else if (const HRESULT read = std::visit(NumberReader{number}, source); FAILED(read)) {
    return read;
  } else {
    result = (number.negative ? L"-" : L"") + std::to_wstring(number.magnitude);
  }
  return S_OK;
}

HRESULT ConvertValue(const Value& source, VARTYPE type, Value& result) {
  if (type == VT_UI4) return ToNumber<std::uint32_t>(source, result);
  if (type == VT_UI8) return ToNumber<std::uint64_t>(source, result);
  if (type == VT_BSTR) return ToText(source, result);
  if (type != kByteArray || !std::holds_alternative<Bytes>(source)) return DISP_E_TYPEMISMATCH;
  result = source;
  return S_OK;
}

HRESULT Convert(VARIANT& destination, const VARIANT& source, VARTYPE type) {
  const auto value = ValueOf(source);
  if (!value) return DISP_E_BADVARTYPE;
  Value converted;
  if (const HRESULT result = ConvertValue(*value, type, converted); FAILED(result)) return result;
  VARIANT fresh = VariantOf(converted);
  if (const HRESULT cleared = Clear(destination); FAILED(cleared)) {
    Clear(fresh);
    return cleared;
  }
  destination = fresh;
  return S_OK;
}

}  // namespace

BSTR AllocateText(std::wstring_view text) {
  if (text.size() >= std::numeric_limits<LengthPrefix>::max() / sizeof(OLECHAR)) throw std::bad_alloc();
  const std::size_t bytes = text.size() * sizeof(OLECHAR);
  auto* const block = static_cast<char*>(::operator new(sizeof(LengthPrefix) + bytes + sizeof(OLECHAR)));
  const auto prefix = static_cast<LengthPrefix>(bytes);
  std::memcpy(block, &prefix, sizeof(prefix));
  if (bytes != 0) std::memcpy(block + sizeof(prefix), text.data(), bytes);
  std::memset(block + sizeof(prefix) + bytes, 0, sizeof(OLECHAR));
  ++g_live.texts;
  return reinterpret_cast<BSTR>(block + sizeof(prefix));
}

UINT TextLength(BSTR text) noexcept {
  if (text == nullptr) return 0;
  LengthPrefix bytes = 0;
  std::memcpy(&bytes, reinterpret_cast<const char*>(text) - sizeof(bytes), sizeof(bytes));
  return bytes / static_cast<UINT>(sizeof(OLECHAR));
}

SAFEARRAY* AllocateArray(ULONG size) {
  auto data = std::make_unique<std::uint8_t[]>(size);
  auto* const array = new SAFEARRAY{.cDims = 1,
                                    .fFeatures = 0,
                                    .cbElements = 1,
                                    .cLocks = 0,
                                    .pvData = nullptr,
                                    .rgsabound = {{.cElements = size, .lLbound = 0}}};
  array->pvData = data.release();
  ++g_live.arrays;
  return array;
}

extern "C" {

BSTR SysAllocString(const OLECHAR* text) {
  return Pass(ZeroCall<BSTR>("SysAllocString"), Asked(text),
              [&] { return text != nullptr ? AllocateText(text) : nullptr; });
}

void SysFreeString(BSTR text) {
  Pass(SureCall("SysFreeString"), Asked(text), [&] { FreeText(text); });
}

UINT SysStringLen(BSTR text) {
  return Pass(SureCall<UINT>("SysStringLen"), Asked(text), [&] { return TextLength(text); });
}

void VariantInit(VARIANTARG* variant) {
  Pass(SureCall("VariantInit"), Asked(), [&] { variant->vt = VT_EMPTY; });
}

HRESULT VariantClear(VARIANTARG* variant) {
  return Pass(Sure(ComCall("VariantClear")), Asked(variant),
              [&] { return variant != nullptr ? Clear(*variant) : E_INVALIDARG; });
}

HRESULT VariantCopy(VARIANTARG* destination, VARIANTARG* source) {
  const bool usable = destination != nullptr && source != nullptr;
  const bool itself = destination == source;
  // Cleared ahead, so that a failure of any kind leaves nothing behind.
  const HRESULT cleared = usable && !itself ? Clear(*destination) : S_OK;
  return Pass(ComCall("VariantCopy", E_OUTOFMEMORY), Asked(source), [&] {
    if (!usable) return E_INVALIDARG;
    return itself || FAILED(cleared) ? cleared : Copy(*destination, *source);
  });
}

HRESULT VariantChangeType(VARIANTARG* destination, VARIANTARG* source, USHORT flags, VARTYPE type) {
  return Pass(
      ComCall("VariantChangeType", E_OUTOFMEMORY), Asked(source, flags, type),
      [&] { return destination != nullptr && source != nullptr ? Convert(*destination, *source, type) : E_INVALIDARG; },
      [&](HRESULT result) { return SUCCEEDED(result) ? Described(destination) : ""; });
}

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  const ULONG size = bounds != nullptr ? bounds->cElements : 0;
  return Pass(ZeroCall<SAFEARRAY*>("SafeArrayCreate"), Asked(type, dimensions, size), [&] {
    const bool known = type == VT_UI1 && dimensions == 1 && bounds != nullptr && bounds->lLbound == 0;
    return known ? AllocateArray(size) : nullptr;
  });
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  return Pass(ComCall("SafeArrayAccessData"), Asked(), [&] { return Lock(array, data); });
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
  return Pass(Sure(ComCall("SafeArrayUnaccessData")), Asked(), [&] { return Unlock(array); });
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  return Pass(Sure(ComCall("SafeArrayDestroy")), Asked(), [&] { return FreeArray(array); });
}

}  // extern "C"

}  // namespace platform
