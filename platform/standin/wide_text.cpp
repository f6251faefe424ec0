#include <algorithm>
#include <cwchar>
#include <limits>

#include "platform/standin/platform_call.h"
#include "platform/standin/system_api.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

constexpr Call<int> kWideCharToMultiByte = ZeroCall<int>("WideCharToMultiByte", ERROR_NO_UNICODE_TRANSLATION);

int Refuse(LONG error) {
  SetThreadError(error);
  return 0;
}

/// Writes as much as fits; a `size` of 0 only measures.
int ConvertToUtf8(std::wstring_view wide, LPSTR narrow, int size) {
  std::size_t length = 0;
  while (!wide.empty()) {
    const Utf8Character encoded = EncodeUtf8(TakeCharacter(wide));
    if (encoded.size == 0) return Refuse(ERROR_NO_UNICODE_TRANSLATION);
    if (size != 0) {
      if (length + encoded.size > static_cast<std::size_t>(size)) return Refuse(ERROR_INSUFFICIENT_BUFFER);
      std::copy_n(encoded.units, encoded.size, narrow + length);
    }
    length += encoded.size;
  }
  return length <= std::numeric_limits<int>::max() ? static_cast<int>(length) : Refuse(ERROR_INVALID_PARAMETER);
}

}  // namespace

extern "C" {

int WideCharToMultiByte(UINT code_page, DWORD /*flags*/, LPCWSTR wide, int wide_length, LPSTR narrow, int narrow_size,
                        LPCSTR /*default_char*/, LPBOOL used_default_char) {
  return Pass(kWideCharToMultiByte, Asked(code_page, wide_length, narrow_size), [&] {
    const bool usable = code_page == CP_ACP && wide != nullptr && wide_length != 0 && wide_length >= -1 &&
                        narrow_size >= 0 && (narrow != nullptr || narrow_size == 0);
    if (!usable) return Refuse(ERROR_INVALID_PARAMETER);
    if (used_default_char != nullptr) *used_default_char = FALSE;
    const std::size_t length = wide_length == -1 ? std::wcslen(wide) + 1 : static_cast<std::size_t>(wide_length);
    return ConvertToUtf8({wide, length}, narrow, narrow_size);
  });
}

}  // extern "C"

}  // namespace platform
