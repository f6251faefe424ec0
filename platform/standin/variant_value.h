/// For the layer's own use: from a VARIANT to a Value and back, without platform calls. Ownership as in variant.h. What
/// allocates throws when memory runs out.
#pragma once

#include <optional>
#include <string_view>

#include "platform/standin/machine.h"
#include "platform/standin/wmi_api.h"

namespace platform {

inline constexpr VARTYPE kByteArray = VT_ARRAY | VT_UI1;

/// Counted.
BSTR AllocateText(std::wstring_view text);
UINT TextLength(BSTR text) noexcept;
/// Counted and zeroed.
SAFEARRAY* AllocateArray(ULONG size);

/// A copy of what `variant` holds; none for a type unknown here.
std::optional<Value> ValueOf(const VARIANT& variant);
/// A VARIANT that holds a copy of `value` and belongs to the caller.
VARIANT VariantOf(const Value& value);

}  // namespace platform
