/// How calls and values read in the journal.
#pragma once

#include <concepts>
#include <span>
#include <string>
#include <vector>

#include "platform/standin/machine.h"
#include "platform/standin/wmi_api.h"

namespace platform {

/// Numbers in decimal, text as it is, bytes as "01 07 1e".
std::string Described(const Value& value);
/// "gmOutput=0, gmReturn=16"
std::string Described(const NamedValues& values);
std::string Described(std::span<const std::uint8_t> bytes);
std::string Described(const VARIANT* value);
std::string Described(const wchar_t* text);
std::string Described(const char* text);
std::string Described(std::integral auto number) { return std::to_string(number); }

/// The parts that are not empty, with ", " between them.
std::string Listed(const std::vector<std::string>& parts);

/// A result code in hexadecimal.
std::string CodeText(HRESULT code);

}  // namespace platform
