/// Reads binary MOF: what the firmware of a notebook tells of its management classes.
///
/// Firmware carries it compressed, as the compiler of class definitions (MOF) packed it. The kernel shows it in sysfs.
/// The bytes are foreign, so everything is checked, and a blob that is wrong anywhere is refused whole. Pure functions;
/// any thread.
///
/// All numbers have 32 bits, lowest byte first. All text is UTF-16 with a terminating 0. A SIZE counts itself.
///
///   blob        "FOMB" 1 PACKED UNPACKED, then PACKED bytes: a DS stream of UNPACKED bytes
///   unpacked    "FOMB" SIZE 1 1 COUNT class*, and behind SIZE bytes what nobody needs
///   class       SIZE 0 n SIZE_OF_LISTS KIND (0 a class, 1 an instance), qualifiers, members, system member*, methods
///   list        SIZE COUNT entry*
///   qualifier   SIZE TYPE 0 NAME_SIZE name value
///   member      SIZE TYPE 0 -1 NAME_SIZE name qualifiers; with a default value: NAME_SIZE SIZE_OF_BOTH name value
///   system      SIZE TYPE 0 NAME_SIZE -1 name value
///   method      SIZE TYPE 0 NAME_SIZE SIZE_OF_BOTH name parameters, qualifiers; without parameters NAME_SIZE is -1
///   parameters  1 1 COUNT SIZE, then COUNT times: SIZE -1 0 n 1 members
///
/// A DS stream is "DS", two bytes, and bits from the lowest of each byte on:
///
///   1 0 bbbbbbb                     a byte below 0x80
///   0 1 bbbbbbb                     a byte from 0x80 on (the two bits as a number: 2 and 1)
///   00 d*6  |  11 0 d*8  |  11 1 d*12   a copy from d, d + 64 or d + 320 bytes before, followed by its length:
///                                   n zeros, a 1, and n bits l: 2^n + l + 1 bytes
///   a distance of 4415              no copy but a mark, after each 512 bytes and at the end
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace platform {

inline constexpr std::uint32_t kMofUint8 = 17;

/// The type of a parameter.
struct MofType {
  std::uint32_t number;  // in the blob
  const char* name;      // "uint8"
  std::size_t size;      // of one value in bytes; 0 for what is no whole number
};

struct MofParameter {
  std::wstring name;
  const MofType* type = nullptr;  // never null in what was read
  bool is_array = false;
  std::optional<std::uint32_t> length = {};  // of an array, where it is fixed
  bool is_input = false;                     // else it is output; one that is both appears twice
};

struct MofMethod {
  std::wstring name;
  std::optional<std::uint32_t> id = {};
  std::vector<MofParameter> parameters = {};  // in the order of their places
};

struct MofClass {
  std::wstring name;
  std::wstring guid;  // as the blob spells it, "{...}" or without braces; empty for classes without one
  std::vector<MofMethod> methods;
};

struct BinaryMof {
  std::vector<MofClass> classes;
  std::string refusal;  // why nothing was read, in one line; empty when all was
};

BinaryMof ReadBinaryMof(std::span<const std::uint8_t> blob);

/// "2 SetGamingLED(in uint8 gmInput[], out uint32 gmOutput)"
std::string Described(const MofMethod& method);

}  // namespace platform
