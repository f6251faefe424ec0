/// Measures, writes and reads the primitives of the binary formats: little-endian numbers without padding, texts
/// behind a 16-bit length, lists behind a 16-bit count.
///
/// All archives take the same calls, so one list of fields serves them and they cannot disagree. Count and Entries take
/// a vector or, to write, a span.
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

/// The part of `text` that travels: everything up to its first NUL, at most kLongestText bytes.
inline std::string_view TravellingText(const std::string& text) {
  return std::string_view(text.c_str()).substr(0, kLongestText);
}

/// How many of a list's entries travel: the low 16 bits of its length.
std::uint16_t TravellingCount(const auto& list) { return static_cast<std::uint16_t>(list.size()); }

/// A list whose entries stand right behind their count.
template <typename Archive, typename List, typename EntryFields>
void ListFields(Archive& archive, List& list, EntryFields entry_fields) {
  archive.Entries(list, archive.Count(list), entry_fields);
}

/// Measures what it is given, or writes it into a block that was measured before.
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

  /// The text ends at its NUL; the next field begins where its claimed length ends. So texts may overlap. Together they
  /// may not be longer than the buffer, or a small buffer could ask for much memory.
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
    const Entry smallest{};
    MeasureArchive measure;
    entry_fields(measure, smallest);
    // 1 less: an empty text may claim the length 0, and so take no room for its NUL.
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

/// Reads what stands behind total_size, a buffer's first field, up to the end that it claims. Nothing can be read when
/// the buffer is shorter than it claims.
inline ReadArchive BehindTotalSize(std::span<const std::uint8_t> buffer) {
  std::uint32_t total_size = 0;
  ReadArchive(buffer).Number(total_size);
  ReadArchive reader(buffer.first(total_size <= buffer.size() ? total_size : 0));
  reader.Number(total_size);
  return reader;
}

/// A buffer of total_size, its size in bytes, and what `fields(archive)` lists.
template <typename Fields>
PackedBuffer PackFields(Fields fields) {
  MeasureArchive measure;
  fields(measure);
  const std::size_t size = sizeof(std::uint32_t) + measure.size();
  PackedBuffer buffer{std::make_unique_for_overwrite<std::uint8_t[]>(size), size};
  WriteArchive writer(buffer.bytes.get());
  writer.Number(static_cast<std::uint32_t>(size));
  fields(writer);
  return buffer;
}
