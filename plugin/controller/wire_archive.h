/// Measures, writes and reads the primitives of the binary formats: little-endian numbers without padding, texts
/// behind a 16-bit length, lists behind a 16-bit count.
///
/// The archives understand the same calls, so one list of fields serves all of them and they cannot disagree. Count and
/// Entries take a vector or, to write, a span.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/little_endian.h"
#include "controller/packed_buffer.h"

/// The longest text that fits behind a 16-bit length together with its NUL, and the longest list behind its count.
inline constexpr std::size_t kLongestText = 65534;
inline constexpr std::size_t kLongestList = 65535;

/// What of `text` travels: everything up to its first NUL, at most kLongestText bytes.
inline std::string_view TravellingText(const std::string& text) {
  return std::string_view(text.c_str()).substr(0, kLongestText);
}

/// How many of a list's entries travel: the low 16 bits of its length.
std::uint16_t TravellingCount(const auto& list) { return static_cast<std::uint16_t>(list.size()); }

/// A list as most stand in the formats: its entries right behind their count.
template <typename Archive, typename List, typename EntryFields>
void ListFields(Archive& archive, List& list, EntryFields entry_fields) {
  archive.Entries(list, archive.Count(list), entry_fields);
}

/// Measures what it is given, or writes it into a block that has been measured to be large enough.
template <bool kWriting>
class OutputArchive {
 public:
  static constexpr bool kReading = false;

  explicit OutputArchive(std::uint8_t* block = nullptr) : block_(block) {}

  template <std::integral Integer>
  void Number(Integer value) {
    if constexpr (kWriting) ToLittleEndian(static_cast<std::uint64_t>(value), {block_ + size_, sizeof(Integer)});
    size_ += sizeof(Integer);
  }
  void Text(const std::string& text) {
    const std::string_view travelling = TravellingText(text);
    Number(static_cast<std::uint16_t>(travelling.size() + 1));
    if constexpr (kWriting) *std::copy(travelling.begin(), travelling.end(), block_ + size_) = 0;
    size_ += travelling.size() + 1;
  }
  template <typename List>
  std::size_t Count(const List& list) {
    const std::uint16_t count = TravellingCount(list);
    Number(count);
    return count;
  }
  template <typename List, typename EntryFields>
  void Entries(const List& list, std::size_t count, EntryFields entry_fields) {
    for (std::size_t i = 0; i < count; ++i) entry_fields(*this, list[i]);
  }

  std::size_t size() const { return size_; }

 private:
  std::uint8_t* const block_;
  std::size_t size_ = 0;
};
using MeasureArchive = OutputArchive<false>;
using WriteArchive = OutputArchive<true>;

/// Reads from a received buffer and never beyond it. Once something did not fit, ok() stays false, and what is read
/// from then on means nothing.
class ReadArchive {
 public:
  static constexpr bool kReading = true;

  explicit ReadArchive(std::span<const std::uint8_t> buffer) : buffer_(buffer), text_budget_(buffer.size()) {}

  bool ok() const { return ok_; }
  /// Refuses the buffer for a reason of the format's own.
  void Refuse() { ok_ = false; }
  std::size_t remaining() const { return buffer_.size() - position_; }

  template <std::integral Integer>
  void Number(Integer& value) {
    if (!Fits(sizeof(Integer))) return;
    value = static_cast<Integer>(FromLittleEndian(buffer_.subspan(position_, sizeof(Integer))));
    position_ += sizeof(Integer);
  }

  /// The NUL decides what the text is, its length moves the cursor. Where the two disagree, texts may overlap. All
  /// together they may not be longer than the buffer, or a small buffer could ask for much memory.
  void Text(std::string& text) {
    std::uint16_t length = 0;
    Number(length);
    if (!Fits(length)) return;
    const std::span<const std::uint8_t> rest = buffer_.subspan(position_);
    const auto* nul =
        rest.empty() ? nullptr : static_cast<const std::uint8_t*>(std::memchr(rest.data(), 0, rest.size()));
    if (nul == nullptr) return Refuse();
    const auto size = static_cast<std::size_t>(nul - rest.data());
    if (size > text_budget_) return Refuse();
    text_budget_ -= size;
    text.assign(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(size));
    position_ += length;
  }

  template <typename Entry>
  std::size_t Count(const std::vector<Entry>& /*list*/) {
    std::uint16_t count = 0;
    Number(count);
    return count;
  }
  /// Appends the entries, unless the buffer is plainly too small for as many.
  template <typename Entry, typename EntryFields>
  void Entries(std::vector<Entry>& list, std::size_t count, EntryFields entry_fields) {
    const Entry smallest{};  // its texts are empty, and may claim a length of 0, without their NUL
    MeasureArchive measure;
    entry_fields(measure, smallest);
    if (!Fits(count * (measure.size() - 1))) return;
    list.reserve(list.size() + count);
    for (std::size_t i = 0; i < count && ok_; ++i) entry_fields(*this, list.emplace_back());
  }

 private:
  bool Fits(std::size_t size) {
    if (remaining() < size) ok_ = false;
    return ok_;
  }

  std::span<const std::uint8_t> buffer_;
  std::size_t position_ = 0;
  std::size_t text_budget_;
  bool ok_ = true;
};

/// The part of `buffer` that its first field, total_size, lays claim to; nothing when that is not all there.
inline std::span<const std::uint8_t> ClaimedPart(std::span<const std::uint8_t> buffer) {
  std::uint32_t total_size = 0;
  ReadArchive(buffer).Number(total_size);
  return total_size <= buffer.size() ? buffer.first(total_size) : buffer.first(0);
}

/// Writes a buffer of exactly the size that `fields(archive, total_size)` measures.
template <typename Fields>
PackedBuffer PackFields(Fields fields) {
  MeasureArchive measure;
  fields(measure, std::uint32_t{0});
  PackedBuffer buffer{std::make_unique_for_overwrite<std::uint8_t[]>(measure.size()), measure.size()};
  WriteArchive writer(buffer.bytes.get());
  fields(writer, static_cast<std::uint32_t>(measure.size()));
  return buffer;
}
