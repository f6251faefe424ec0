/// Small texts that several commands share. Pure functions; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "zarn_lighting/records.h"

namespace zarnctl {

/// "#ff8000"
std::string ColorText(PackedColor color);
/// Reads "ff8000" or "#ff8000". Throws Complaint, whose line begins with `what`.
PackedColor ReadColor(std::string_view what, std::string_view text);
/// "00FF" for 0xFF and 4 digits
std::string Hexadecimal(std::uint32_t number, int digits);
/// "/dev/hidraw0 (1209:0001)"
std::string HidDeviceName(const std::wstring& path, std::uint16_t vendor, std::uint16_t product);
/// Reads a whole number from 0 on; a greater one counts as 4294967295. Throws Complaint, whose line begins with `what`.
std::uint32_t ReadNumber(std::string_view what, std::string_view text);

/// "1 LED", "4 LEDs"
std::string Counted(std::size_t count, std::string_view noun);
/// "a, b or c"
std::string Alternatives(const std::vector<std::string>& names);

/// A path and its text in UTF-8, also where the system's own text is not UTF-8.
std::filesystem::path PathFromUtf8(std::string_view text);
std::string Utf8FromPath(const std::filesystem::path& path);

/// The text with '?' for control characters and for bytes that are no UTF-8. Otherwise files, devices and profiles
/// could give the terminal orders, or print lines that look like ours.
std::string Harmless(std::string_view text);

bool EqualWithoutCase(std::string_view a, std::string_view b);

}  // namespace zarnctl
