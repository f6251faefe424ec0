#include "platform/linux/binary_mof.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>
#include <variant>

#include "base/little_endian.h"
#include "platform/standin/machine.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

using ByteView = std::span<const std::uint8_t>;

constexpr std::size_t kLongestMof = std::size_t{1} << 20;  // in bytes; of 54 real ones the longest has 118,386
constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr std::uint32_t kArray = 0x2000;
constexpr std::uint32_t kTypeBits = 0xFF;
constexpr std::uint32_t kClassKind = 0;

// The types of values that count.
constexpr std::uint32_t kNumber = 3;
constexpr std::uint32_t kText = 8;

constexpr MofType kTypes[] = {{2, "sint16", 2},        {3, "sint32", 4},     {4, "real32", 0},      {5, "real64", 0},
                              {8, "string", 0},        {11, "boolean", 0},   {13, "object", 0},     {16, "sint8", 1},
                              {kMofUint8, "uint8", 1}, {18, "uint16", 2},    {19, "uint32", 4},     {20, "sint64", 8},
                              {21, "uint64", 8},       {101, "datetime", 0}, {102, "reference", 0}, {103, "char16", 0}};
constexpr MofType kUnknownType{0, "unknown", 0};

/// Thrown where something is wrong; becomes the refusal.
struct Refused {
  const char* why;
};

// ---------------------------------------------------------------- the DS stream

class Bits {
 public:
  explicit Bits(ByteView data) : data_(data) {}

  std::uint32_t Take(unsigned count) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < count; ++i, ++at_) {
      if (at_ / 8 >= data_.size()) throw Refused{"the packed bytes end early"};
      value |= static_cast<std::uint32_t>(data_[at_ / 8] >> at_ % 8 & 1) << i;
    }
    return value;
  }

 private:
  const ByteView data_;
  std::size_t at_ = 0;  // in bits
};

constexpr std::uint32_t kMark = 4095 + 320;

/// The distance of a copy, or kMark.
std::uint32_t TakeDistance(Bits& bits, bool is_near) {
  if (is_near) return bits.Take(6);
  return bits.Take(1) != 0 ? bits.Take(12) + 320 : bits.Take(8) + 64;
}

std::size_t TakeLength(Bits& bits) {
  constexpr unsigned kMostZeros = 8;
  unsigned zeros = 0;
  while (bits.Take(1) == 0) {
    if (++zeros > kMostZeros) throw Refused{"the packed bytes hold a copy without a length"};
  }
  return (std::size_t{1} << zeros) + bits.Take(zeros) + 1;
}

Bytes Unpack(ByteView packed, std::size_t size) {
  if (packed.size() < 4 || packed[0] != 'D' || packed[1] != 'S' || packed[3] < 1 || packed[3] > 3) {
    throw Refused{"the packed bytes do not begin with DS"};
  }
  Bits bits(packed.subspan(4));
  Bytes out;
  while (true) {
    const std::uint32_t kind = bits.Take(2);
    if (kind == 1 || kind == 2) {
      if (out.size() == size) throw Refused{"more comes out of the packed bytes than they announce"};
      out.push_back(static_cast<std::uint8_t>((kind == 1 ? 0x80 : 0) | bits.Take(7)));
      continue;
    }
    const std::uint32_t distance = TakeDistance(bits, kind == 0);
    if (distance == kMark) {
      if (out.size() == size) return out;
      continue;
    }
    const std::size_t length = TakeLength(bits);
    if (distance == 0 || distance > out.size()) throw Refused{"the packed bytes copy from before their beginning"};
    if (length > size - out.size()) throw Refused{"more comes out of the packed bytes than they announce"};
    for (std::size_t i = 0; i < length; ++i) out.push_back(out[out.size() - distance]);
  }
}

// ---------------------------------------------------------------- what was packed

/// Bytes of which everything that is taken must be there.
class Reader {
 public:
  explicit Reader(ByteView data) : data_(data) {}

  ByteView Take(std::size_t size) {
    if (size > data_.size()) throw Refused{"something is longer than what it is part of"};
    const ByteView taken = data_.first(size);
    data_ = data_.subspan(size);
    return taken;
  }
  std::uint32_t Word() { return static_cast<std::uint32_t>(FromLittleEndian(Take(4))); }
  Reader Part(std::size_t size) { return Reader(Take(size)); }
  /// A part that begins with its size, which counts itself.
  Reader Record() {
    const std::uint32_t size = Word();
    if (size < 4) throw Refused{"something is shorter than its size"};
    return Part(size - 4);
  }
  /// Text of so many bytes, to its terminating 0. A half of a pair of UTF-16 stays one: no name that counts has any.
  std::wstring Text(std::size_t size) {
    const ByteView units = Take(size);
    if (size % 2 != 0) throw Refused{"a text has half a character"};
    std::wstring text;
    for (std::size_t i = 0; i < size; i += 2) {
      const auto unit = static_cast<wchar_t>(FromLittleEndian(units.subspan(i, 2)));
      if (unit == 0) break;
      text += unit;
    }
    return text;
  }
  std::wstring Text() { return Text(data_.size()); }
  bool AtEnd() const { return data_.empty(); }

 private:
  ByteView data_;
};

/// Calls `read(entry)` for each entry of a list.
template <typename Read>
void ReadList(Reader& reader, const Read& read) {
  Reader list = reader.Record();
  const std::uint32_t count = list.Word();
  for (std::uint32_t i = 0; i < count; ++i) read(list.Record());
}

/// A number or a text; empty for values of other types, of arrays for one.
Value ReadValue(Reader& reader, std::uint32_t type) {
  if (type == kNumber) return reader.Word();
  if (type == kText) return reader.Text();
  return {};
}

/// The value called `name`, if there is one and it is a `T`.
template <typename T>
std::optional<T> Find(const NamedValues& values, std::wstring_view name) {
  const auto found = values.find(name);
  const auto* const value = found != values.end() ? std::get_if<T>(&found->second) : nullptr;
  return value != nullptr ? std::optional(*value) : std::nullopt;
}

/// What is said of a class, a method or a parameter.
NamedValues ReadQualifiers(Reader& reader) {
  NamedValues qualifiers;
  ReadList(reader, [&](Reader entry) {
    const std::uint32_t type = entry.Word();
    entry.Word();
    const std::wstring name = entry.Text(entry.Word());
    qualifiers.insert_or_assign(name, ReadValue(entry, type));
  });
  return qualifiers;
}

/// A member of a class or of a method's parameters, or one of the system's own, which has a value in its place.
struct Member {
  std::wstring name;
  std::uint32_t type = 0;
  NamedValues qualifiers = {};
  bool is_system = false;
  Value system_value = {};
};

Member ReadMember(Reader reader) {
  Member member;
  member.type = reader.Word();
  reader.Word();
  const std::uint32_t first = reader.Word();
  const std::uint32_t second = reader.Word();
  if (second == kNone) {
    member.name = reader.Text(first);
    member.is_system = true;
    member.system_value = ReadValue(reader, member.type);
    return member;
  }
  // With a default value the name's size comes first, and the second counts both. The value is of no interest.
  member.name = first == kNone ? reader.Text(second) : reader.Part(second).Text(first);
  member.qualifiers = ReadQualifiers(reader);
  return member;
}

MofParameter ParameterOf(const Member& member) {
  const auto* const type = std::ranges::find(kTypes, member.type & kTypeBits, &MofType::number);
  const bool is_array = (member.type & kArray) != 0;
  return {.name = member.name,
          .type = type != std::end(kTypes) ? type : &kUnknownType,
          .is_array = is_array,
          .length = is_array ? Find<std::uint32_t>(member.qualifiers, L"MAX") : std::nullopt,
          .is_input = member.qualifiers.find(std::wstring_view(L"in")) != member.qualifiers.end()};
}

/// Their place stands in a qualifier. Those without one come last.
std::vector<MofParameter> ReadParameters(Reader& reader) {
  std::multimap<std::uint32_t, MofParameter> placed;
  reader.Word();
  reader.Word();
  const std::uint32_t sides = reader.Word();
  reader.Word();
  for (std::uint32_t i = 0; i < sides; ++i) {
    Reader side = reader.Record();
    side.Take(16);
    ReadList(side, [&](Reader entry) {
      const Member member = ReadMember(entry);
      if (!member.is_system)
        placed.emplace(Find<std::uint32_t>(member.qualifiers, L"ID").value_or(kNone), ParameterOf(member));
    });
  }
  std::vector<MofParameter> parameters;
  for (auto& [place, parameter] : placed) parameters.push_back(std::move(parameter));
  return parameters;
}

MofMethod ReadMethod(Reader reader) {
  MofMethod method;
  reader.Word();
  reader.Word();
  const std::uint32_t name_size = reader.Word();
  Reader head = reader.Part(reader.Word());
  if (name_size == kNone) {
    method.name = head.Text();
  } else {
    method.name = head.Text(name_size);
    method.parameters = ReadParameters(head);
  }
  method.id = Find<std::uint32_t>(ReadQualifiers(reader), L"WmiMethodId");
  return method;
}

/// Nothing for an instance.
std::optional<MofClass> ReadClass(Reader reader) {
  reader.Word();
  reader.Word();
  const std::uint32_t lists_size = reader.Word();
  const std::uint32_t kind = reader.Word();
  if (kind != kClassKind) return std::nullopt;
  Reader lists = reader.Part(lists_size);
  MofClass read;
  read.guid = Find<std::wstring>(ReadQualifiers(lists), L"guid").value_or(L"");
  const auto read_member = [&](Reader entry) {
    const Member member = ReadMember(entry);
    const auto* const text = std::get_if<std::wstring>(&member.system_value);
    if (text != nullptr && member.name == L"__CLASS") read.name = *text;
  };
  ReadList(lists, read_member);
  while (!lists.AtEnd()) read_member(lists.Record());
  if (read.name.empty()) throw Refused{"a class has no name"};
  ReadList(reader, [&](Reader entry) { read.methods.push_back(ReadMethod(entry)); });
  return read;
}

std::string ParameterText(const MofParameter& parameter) {
  std::string text = parameter.is_input ? "in " : "out ";
  text += std::string(parameter.type->name) + " " + ReadableUtf8(parameter.name);
  if (parameter.is_array) text += "[" + (parameter.length ? std::to_string(*parameter.length) : "") + "]";
  return text;
}

void ExpectMagic(Reader& reader) {
  static constexpr std::uint8_t kMagic[] = {'F', 'O', 'M', 'B'};
  if (!std::ranges::equal(reader.Take(4), kMagic)) throw Refused{"it does not begin with FOMB"};
}

std::vector<MofClass> ReadClasses(ByteView blob) {
  Reader head(blob);
  ExpectMagic(head);
  if (head.Word() != 1) throw Refused{"it has another version"};
  const std::uint32_t packed = head.Word();
  const std::uint32_t unpacked = head.Word();
  if (unpacked > kLongestMof) throw Refused{"it announces more than 1 MiB"};
  const Bytes bytes = Unpack(head.Take(packed), unpacked);
  Reader reader(bytes);
  ExpectMagic(reader);
  const std::uint32_t size = reader.Word();
  if (size < 8) throw Refused{"something is shorter than its size"};
  Reader part = reader.Part(size - 8);
  part.Word();
  part.Word();
  const std::uint32_t count = part.Word();
  std::vector<MofClass> classes;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (auto read = ReadClass(part.Record())) classes.push_back(*std::move(read));
  }
  return classes;
}

}  // namespace

BinaryMof ReadBinaryMof(std::span<const std::uint8_t> blob) {
  try {
    return {ReadClasses(blob), {}};
  } catch (const Refused& refused) {
    return {{}, refused.why};
  }
}

std::string Described(const MofMethod& method) {
  std::string text = (method.id ? std::to_string(*method.id) : "?") + " " + ReadableUtf8(method.name) + "(";
  for (const MofParameter& parameter : method.parameters) {
    text += (&parameter == &method.parameters.front() ? "" : ", ") + ParameterText(parameter);
  }
  return text + ")";
}

}  // namespace platform
