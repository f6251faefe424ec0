/// Measures, writes and reads the primitives of the binary formats: little-endian numbers without padding, texts
/// behind a 16-bit length, lists behind a 16-bit count.
///
/// The three archives understand the same calls, so that one list of fields serves all three and they cannot
/// disagree. Number takes any integer field, Text a string, List a vector (or, to write, a
/// span), a function for one of its entries and another for what stands between the count and the entries.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "controller/packed_buffer.h"

/// The longest text that fits behind a 16-bit length together with its NUL.
inline constexpr std::size_t kLongestText = 65534;
/// The longest list that fits behind a 16-bit count.
inline constexpr std::size_t kLongestList = 65535;

/// What of `text` travels: everything up to its first NUL, at most kLongestText bytes.
inline std::string_view TravellingText(const std::string& text) {
  return std::string_view(text.c_str()).substr(0, kLongestText);
}

/// How many of a list's entries travel: the low 16 bits of its length.
template <typename Entries>
std::size_t TravellingCount(const Entries& list) {
  return static_cast<std::uint16_t>(list.size());
}

/// Nothing stands between a list's count and its entries, as in most lists.
inline constexpr auto kNothingBetween = [](auto&) {};

class MeasureArchive {
 public:
  static constexpr bool kReading = false;

  template <std::integral Integer>
  void Number(Integer) {
    size_ += sizeof(Integer);
  }
  void Text(const std::string& text) { size_ += sizeof(std::uint16_t) + TravellingText(text).size() + 1; }
  template <typename Entries, typename EntryFields, typename FieldsBetween = decltype(kNothingBetween)>
  void List(const Entries& list, EntryFields entry_fields, FieldsBetween fields_between = {}) {
    const std::size_t count = TravellingCount(list);
    size_ += sizeof(std::uint16_t);
    fields_between(*this);
    for (std::size_t i = 0; i < count; ++i) entry_fields(*this, list[i]);
  }

  std::size_t size() const { return size_; }

 private:
  std::size_t size_ = 0;
};

/// Writes into a block that a MeasureArchive has found large enough.
class WriteArchive {
 public:
  static constexpr bool kReading = false;

  explicit WriteArchive(std::uint8_t* cursor) : cursor_(cursor) {}

  template <std::integral Integer>
  void Number(Integer value) {
    auto rest = static_cast<std::make_unsigned_t<Integer>>(value);
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
      *cursor_++ = static_cast<std::uint8_t>(rest >> (8 * i));
    }
  }
  void Text(const std::string& text) {
    const std::string_view travelling = TravellingText(text);
    Number(static_cast<std::uint16_t>(travelling.size() + 1));
    cursor_ = std::copy(travelling.begin(), travelling.end(), cursor_);
    *cursor_++ = 0;
  }
  template <typename Entries, typename EntryFields, typename FieldsBetween = decltype(kNothingBetween)>
  void List(const Entries& list, EntryFields entry_fields, FieldsBetween fields_between = {}) {
    const std::size_t count = TravellingCount(list);
    Number(static_cast<std::uint16_t>(count));
    fields_between(*this);
    for (std::size_t i = 0; i < count; ++i) entry_fields(*this, list[i]);
  }

 private:
  std::uint8_t* cursor_;
};

/// Reads from a received buffer and never beyond it. Once something did not fit, ok() stays false, and what was
/// read since is worthless.
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
    std::make_unsigned_t<Integer> sum = 0;
    for (std::size_t i = 0; i < sizeof(Integer); ++i) {
      sum = static_cast<decltype(sum)>(sum | static_cast<decltype(sum)>(buffer_[position_ + i]) << (8 * i));
    }
    value = static_cast<Integer>(sum);
    position_ += sizeof(Integer);
  }

  /// The NUL decides what the text is, its length moves the cursor. Texts that disagree about the two may overlap,
  /// but all together they may not be longer than the buffer that they came from: a small buffer must not ask for
  /// much memory.
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

  /// Appends the list's entries, unless it is plain from the start that the buffer cannot hold as many.
  template <typename Entry, typename EntryFields, typename FieldsBetween = decltype(kNothingBetween)>
  void List(std::vector<Entry>& list, EntryFields entry_fields, FieldsBetween fields_between = {}) {
    std::uint16_t count = 0;
    Number(count);
    fields_between(*this);
    const Entry smallest{};  // its texts are empty, and their length may even deny the NUL
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
