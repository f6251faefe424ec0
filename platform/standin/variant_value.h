/// Contents of VARIANTs for the layer's own use: what the public functions do, without being platform calls, and the
/// way between a VARIANT and a Value. Ownership as in variant.h. What allocates throws when memory runs out.
#pragma once

#include <optional>
#include <string_view>

#include "platform/standin/machine.h"
#include "platform/standin/wmi_api.h"

namespace platform {

/// Counted.
BSTR AllocateText(std::wstring_view text);
void FreeText(BSTR text) noexcept;
UINT TextLength(BSTR text) noexcept;

/// Counted and zeroed.
SAFEARRAY* AllocateArray(ULONG size);
HRESULT FreeArray(SAFEARRAY* array) noexcept;

HRESULT ClearVariant(VARIANT& variant) noexcept;

/// A copy of what `variant` holds; none for a type unknown here.
std::optional<Value> ValueOf(const VARIANT& variant);
/// A VARIANT that holds a copy of `value` and belongs to the caller.
VARIANT VariantOf(const Value& value);

/// The conversions of VariantChangeType. `result` is untouched on failure.
HRESULT ConvertValue(const Value& source, VARTYPE type, Value& result);

}  // namespace platform
