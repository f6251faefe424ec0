#include "platform/standin/variant.h"

#include "platform/standin/platform_call.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

constexpr Call<Nothing> kVariantInit = SureCall("VariantInit");
constexpr Call<HRESULT> kVariantClear = Sure(ComCall("VariantClear", E_FAIL, E_OUTOFMEMORY));
constexpr Call<HRESULT> kVariantCopy = ComCall("VariantCopy", E_OUTOFMEMORY, E_OUTOFMEMORY);
constexpr Call<HRESULT> kVariantChangeType = ComCall("VariantChangeType", E_OUTOFMEMORY, E_OUTOFMEMORY);

HRESULT Copy(VARIANT& destination, const VARIANT& source) {
  const auto value = ValueOf(source);
  if (!value) return DISP_E_BADVARTYPE;
  destination = VariantOf(*value);
  return S_OK;
}

HRESULT Convert(VARIANT& destination, const VARIANT& source, VARTYPE type) {
  const auto value = ValueOf(source);
  if (!value) return DISP_E_BADVARTYPE;
  Value converted;
  if (const HRESULT result = ConvertValue(*value, type, converted); FAILED(result)) return result;
  VARIANT fresh = VariantOf(converted);
  if (const HRESULT cleared = ClearVariant(destination); FAILED(cleared)) {
    ClearVariant(fresh);
    return cleared;
  }
  destination = fresh;
  return S_OK;
}

}  // namespace

extern "C" {

void VariantInit(VARIANTARG* variant) {
  Pass(kVariantInit, Asked(), [&] { variant->vt = VT_EMPTY; });
}

HRESULT VariantClear(VARIANTARG* variant) {
  return Pass(kVariantClear, Asked(variant),
              [&] { return variant != nullptr ? ClearVariant(*variant) : E_INVALIDARG; });
}

HRESULT VariantCopy(VARIANTARG* destination, VARIANTARG* source) {
  const bool usable = destination != nullptr && source != nullptr;
  const bool itself = destination == source;
  // Cleared ahead, so that a failure of any kind leaves nothing behind.
  const HRESULT cleared = usable && !itself ? ClearVariant(*destination) : S_OK;
  return Pass(kVariantCopy, Asked(source), [&] {
    if (!usable) return E_INVALIDARG;
    return itself || FAILED(cleared) ? cleared : Copy(*destination, *source);
  });
}

HRESULT VariantChangeType(VARIANTARG* destination, VARIANTARG* source, USHORT flags, VARTYPE type) {
  return Pass(
      kVariantChangeType, Asked(source, flags, type),
      [&] { return destination != nullptr && source != nullptr ? Convert(*destination, *source, type) : E_INVALIDARG; },
      [&](HRESULT result) { return SUCCEEDED(result) ? Described(destination) : ""; });
}

}  // extern "C"

}  // namespace platform
