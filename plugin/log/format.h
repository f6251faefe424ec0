/// printf-style formatting into a fixed wide buffer, alike on every runtime.
///
/// Texts are `%ls`; 32- and 64-bit hexadecimal numbers take the standard's macros (PRIX32, PRIX64): the platform's own
/// spellings mean something else elsewhere.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>

/// Formats into `buffer` of `size` characters, which is always terminated; what does not fit is cut.
void FormatWide(wchar_t* buffer, std::size_t size, const wchar_t* format, std::va_list arguments) noexcept;

/// The same as a text of less than 64 characters.
std::wstring Formatted(const wchar_t* format, ...);
