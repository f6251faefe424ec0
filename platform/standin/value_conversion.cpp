#include <algorithm>
#include <limits>
#include <variant>

#include "platform/standin/variant_value.h"

namespace platform {
namespace {

struct Decimal {
  std::uint64_t magnitude = 0;
  bool negative = false;
};

HRESULT ReadNumber(std::wstring_view text, Decimal& number) {
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
  HRESULT operator()(const std::wstring& text) const { return ReadNumber(text, number); }
  HRESULT operator()(std::int32_t value) const {
    const std::int64_t wide = value;
    number = {static_cast<std::uint64_t>(wide < 0 ? -wide : wide), wide < 0};
    return S_OK;
  }
  HRESULT operator()(std::unsigned_integral auto value) const {
    number.magnitude = value;
    return S_OK;
  }
};

template <typename Target>
HRESULT ToNumber(const Value& source, Value& result) {
  Decimal number;
  if (const HRESULT read = std::visit(NumberReader{number}, source); FAILED(read)) return read;
  constexpr auto kHighest = static_cast<std::uint64_t>(std::numeric_limits<Target>::max());
  constexpr std::uint64_t kLowest = std::is_signed_v<Target> ? kHighest + 1 : 0;
  if (number.magnitude > (number.negative ? kLowest : kHighest)) return DISP_E_OVERFLOW;
  result = static_cast<Target>(number.negative ? 0 - number.magnitude : number.magnitude);
  return S_OK;
}

HRESULT ToUnsigned32(const Value& source, Value& result) {
  // Between the two types of 32 bits the platform keeps the bits, sign or not.
  if (const auto* bits = std::get_if<std::int32_t>(&source)) {
    result = static_cast<std::uint32_t>(*bits);
    return S_OK;
  }
  return ToNumber<std::uint32_t>(source, result);
}

HRESULT ToText(const Value& source, Value& result) {
  if (std::holds_alternative<std::wstring>(source)) {
    result = source;
    return S_OK;
  }
  Decimal number;
  if (const HRESULT read = std::visit(NumberReader{number}, source); FAILED(read)) return read;
  const bool empty = std::holds_alternative<std::monostate>(source);
  result = empty ? std::wstring() : (number.negative ? L"-" : L"") + std::to_wstring(number.magnitude);
  return S_OK;
}

HRESULT ToBytes(const Value& source, Value& result) {
  if (!std::holds_alternative<Bytes>(source)) return DISP_E_TYPEMISMATCH;
  result = source;
  return S_OK;
}

}  // namespace

HRESULT ConvertValue(const Value& source, VARTYPE type, Value& result) {
  switch (type) {
    case VT_I4:
      return ToNumber<std::int32_t>(source, result);
    case VT_UI1:
      return ToNumber<std::uint8_t>(source, result);
    case VT_UI4:
      return ToUnsigned32(source, result);
    case VT_UI8:
      return ToNumber<std::uint64_t>(source, result);
    case VT_BSTR:
      return ToText(source, result);
    case VT_ARRAY | VT_UI1:
      return ToBytes(source, result);
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

}  // namespace platform
