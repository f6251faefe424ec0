#include "platform/standin/report_descriptor.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

#include "base/little_endian.h"

namespace platform {
namespace {

// What the Linux kernel takes.
constexpr std::size_t kLongestDescriptor = 4096;
constexpr std::uint32_t kMostUsages = 12288;  // of a main item, and the most values
constexpr std::uint32_t kMostFields = 256;    // of a report
constexpr std::uint32_t kLongestReport = 16384;
constexpr std::uint32_t kWidestValue = 256;
constexpr std::size_t kDeepestPush = 4;

constexpr std::uint32_t kMost16Bits = 0xFFFF;

// Flags of Input, Output and Feature.
constexpr std::uint32_t kConstant = 0x01;
constexpr std::uint32_t kVariable = 0x02;

constexpr std::uint8_t kLongItem = 0xFE;
constexpr std::uint8_t kUnit = 0x64;

constexpr USAGE kDesktopPage = 1;
constexpr std::uint32_t kKeyboard = 6;
constexpr std::uint32_t kKeypad = 7;
constexpr USAGE kKeysPage = 7;

/// What is wrong; null when nothing is.
using Refusal = const char*;
constexpr Refusal kSound = nullptr;

constexpr USHORT Low16(std::uint32_t value) { return static_cast<USHORT>(value & kMost16Bits); }

enum class ItemType { Main, Global, Local, Reserved };

struct Item {
  std::uint8_t kind = 0;  // tag and type: the prefix without the two bits that tell the size
  std::size_t size = 0;
  std::uint32_t value = 0;

  ItemType Type() const { return static_cast<ItemType>(kind >> 2 & 3); }
};

/// Takes the first item off `rest`, which has a byte at least; nothing when the item is not all there. A long item
/// comes out as one of the reserved type: nobody uses its data.
std::optional<Item> TakeItem(std::span<const std::uint8_t>& rest) {
  static constexpr std::size_t kShortSizes[] = {0, 1, 2, 4};
  const bool is_long = rest[0] == kLongItem;  // then the size is in the next byte, and a tag in the one behind it
  const std::size_t header = is_long ? 3 : 1;
  if (rest.size() < header) return std::nullopt;
  const std::size_t size = is_long ? rest[1] : kShortSizes[rest[0] & 3];
  if (rest.size() - header < size) return std::nullopt;
  // Of a long item, whose data nobody uses, the first bytes are enough.
  const auto value = static_cast<std::uint32_t>(FromLittleEndian(rest.subspan(header, std::min<std::size_t>(size, 4))));
  const Item item{static_cast<std::uint8_t>(rest[0] & 0xFC), size, value};
  rest = rest.subspan(header + size);
  return item;
}

/// Consecutive usages. However long a range is, it stays one of these.
struct UsageRun {
  std::uint32_t first = 0;
  std::uint32_t count = 0;
  std::optional<USAGE> page;  // when the item named it; otherwise the main item's page counts
};

struct Globals {
  USAGE usage_page = 0;
  std::uint32_t report_size = 0;
  std::uint32_t report_count = 0;
  BYTE report_id = 0;
};

struct Locals {
  std::vector<UsageRun> usages;
  std::uint32_t usage_count = 0;
  Item usage_minimum;
  bool delimited = false;
  std::size_t alternatives = 0;  // in the open delimiter, so far
};

/// Takes a descriptor item by item.
class Parser {
 public:
  Refusal Take(const Item& item);
  /// Whether the descriptor may end here.
  Refusal Finish() const;

  ReportDescriptor result;

 private:
  struct Report {
    std::uint32_t bits = 0;
    std::uint32_t fields = 0;
  };

  Refusal TakeMain(const Item& item);
  Refusal TakeGlobal(const Item& item);
  Refusal TakeLocal(const Item& item);

  void OpenCollection();
  Refusal AddField(HIDP_REPORT_TYPE kind, std::uint32_t flags);
  Refusal TakeBits(HIDP_REPORT_TYPE kind);
  Refusal AddFeatures(std::uint32_t flags);

  Refusal AddUsages(const Item& first, const Item& last);
  Refusal Delimit(bool opens);
  USAGE PageOf(const UsageRun& run) const { return run.page.value_or(globals_.usage_page); }
  /// Whether the run, on the page that counts now, names a keyboard, a keypad or their keys.
  bool NamesKeys(const UsageRun& run) const;

  Globals globals_;
  std::vector<Globals> pushed_;
  Locals locals_;
  std::size_t depth_ = 0;  // of open collections
  std::map<std::pair<HIDP_REPORT_TYPE, BYTE>, Report> reports_;
  std::map<BYTE, std::uint32_t> feature_bits_;  // of the feature reports, within the top-level collection
  std::uint32_t data_indexes_ = 0;              // of its feature reports
};

Refusal Parser::Take(const Item& item) {
  switch (item.Type()) {
    case ItemType::Main: {
      const Refusal refusal = TakeMain(item);
      for (const UsageRun& run : locals_.usages) result.has_keys = result.has_keys || NamesKeys(run);
      locals_ = {};
      return refusal;
    }
    case ItemType::Global:
      return TakeGlobal(item);
    case ItemType::Local:
      return TakeLocal(item);
    case ItemType::Reserved:
      break;
  }
  return kSound;
}

Refusal Parser::Finish() const {
  if (locals_.delimited) return "the descriptor ends with an open delimiter";
  if (depth_ != 0) return "the descriptor ends inside a collection";
  if (result.collections.empty()) return "the descriptor ends without a collection";
  return kSound;
}

Refusal Parser::TakeMain(const Item& item) {
  switch (item.kind) {
    case 0x80:
      return AddField(HidP_Input, item.value);
    case 0x90:
      return AddField(HidP_Output, item.value);
    case 0xB0:
      return AddField(HidP_Feature, item.value);
    case 0xA0:
      OpenCollection();
      return kSound;
    case 0xC0:
      if (depth_ == 0) return "End Collection without a collection";
      --depth_;
      return kSound;
    default:
      return kSound;  // kernels pass over unknown ones, too
  }
}

Refusal Parser::TakeGlobal(const Item& item) {
  switch (item.kind) {
    case 0x04:
      if (item.value > kMost16Bits) return "Usage Page beyond 65535";
      globals_.usage_page = Low16(item.value);
      result.has_keys = result.has_keys || globals_.usage_page == kKeysPage;
      return kSound;
    case 0x74:
      if (item.value > kWidestValue) return "Report Size beyond 256 bits";
      globals_.report_size = item.value;
      return kSound;
    case 0x84:
      if (item.value < 1 || item.value > 255) return "Report ID outside 1 to 255";
      globals_.report_id = static_cast<BYTE>(item.value);
      return kSound;
    case 0x94:
      if (item.value > kMostUsages) return "Report Count beyond 12288";
      globals_.report_count = item.value;
      return kSound;
    case 0xA4:
      if (pushed_.size() == kDeepestPush) return "Push beyond 4 levels";
      pushed_.push_back(globals_);
      return kSound;
    case 0xB4:
      if (pushed_.empty()) return "Pop without a Push";
      globals_ = pushed_.back();
      pushed_.pop_back();
      return kSound;
    default:
      // Ranges and units: nobody asks for them. An item that is not known may change what the rest means.
      return item.kind <= kUnit ? kSound : "unknown global item";
  }
}

Refusal Parser::TakeLocal(const Item& item) {
  switch (item.kind) {
    case 0x08:
      return AddUsages(item, item);
    case 0x18:
      locals_.usage_minimum = item;
      return kSound;
    case 0x28:
      return AddUsages(locals_.usage_minimum, item);
    case 0xA8:
      return Delimit(item.value != 0);
    default:
      return kSound;  // designators and strings only decorate
  }
}

bool Parser::NamesKeys(const UsageRun& run) const {
  const USAGE page = PageOf(run);
  const bool names_keyboard = run.first <= kKeypad && run.first + run.count > kKeyboard;
  return page == kKeysPage || (page == kDesktopPage && names_keyboard);
}

void Parser::OpenCollection() {
  if (depth_++ != 0) return;
  HIDP_CAPS& caps = result.collections.emplace_back().caps;
  caps.UsagePage = globals_.usage_page;
  if (!locals_.usages.empty()) {
    caps.Usage = Low16(locals_.usages.front().first);
    caps.UsagePage = PageOf(locals_.usages.front());
  }
  feature_bits_.clear();
  data_indexes_ = 0;
}

/// The page in the high half of an item with 4 bytes.
std::optional<USAGE> NamedPage(const Item& item) {
  return item.size < 4 ? std::nullopt : std::optional(Low16(item.value >> 16));
}

Refusal Parser::AddUsages(const Item& first, const Item& last) {
  if (NamedPage(last) != NamedPage(first)) return "Usage Maximum on another page than Usage Minimum";
  if (last.value < first.value) return "Usage Maximum below Usage Minimum";
  UsageRun run{first.value & kMost16Bits, last.value - first.value + 1, NamedPage(last)};
  // Systems differ in which page counts, that of now or that of the main item, and in which alternative. Keys must not
  // slip through between them.
  result.has_keys = result.has_keys || NamesKeys(run);
  // Of the alternatives between two delimiters the first is the preferred one, and the only one that counts.
  if (locals_.delimited && ++locals_.alternatives > 1) return kSound;
  const std::uint32_t room = kMostUsages - locals_.usage_count;
  if (room == 0) return "more than 12288 usages";
  // A range that says "any usage" is common: a kernel takes of it what it has room for.
  run.count = std::min(run.count, room);
  locals_.usages.push_back(run);
  locals_.usage_count += run.count;
  return kSound;
}

Refusal Parser::Delimit(bool opens) {
  if (opens && locals_.delimited) return "Delimiter opened inside another";
  if (!opens && !locals_.delimited) return "Delimiter closed that is not open";
  locals_.delimited = opens;
  locals_.alternatives = 0;
  return kSound;
}

Refusal Parser::AddField(HIDP_REPORT_TYPE kind, std::uint32_t flags) {
  // A kernel takes a field outside all collections; but it is in no interface, so nobody can ask for it.
  if (depth_ == 0) return kSound;
  if (const Refusal refusal = TakeBits(kind)) return refusal;
  const bool empty = globals_.report_size == 0 || globals_.report_count == 0;
  // Nobody asks for constants without a usage of their own.
  const bool padding = (flags & kConstant) != 0 && (flags & kVariable) == 0;
  return kind != HidP_Feature || empty || padding ? kSound : AddFeatures(flags);
}

Refusal Parser::TakeBits(HIDP_REPORT_TYPE kind) {
  const std::uint32_t bits = globals_.report_size * globals_.report_count;
  if (bits == 0) return kSound;
  Report& report = reports_[{kind, globals_.report_id}];
  report.bits += bits;
  if (report.bits > (kLongestReport - 1) * 8) return "report of more than 16384 bytes";
  // Padding, which has no usages, is no field to a kernel.
  if (!locals_.usages.empty() && ++report.fields > kMostFields) return "report of more than 256 fields";
  if (kind != HidP_Feature) return kSound;

  const std::uint32_t in_collection = feature_bits_[globals_.report_id] += bits;
  USHORT& length = result.collections.back().caps.FeatureReportByteLength;
  length = std::max(length, Low16(1 + (in_collection + 7) / 8));
  return kSound;
}

/// Shares the field's values out among the usages: each usage has one, the last has all that are left. In an array
/// every usage is a button of its own, even if a report has room for fewer. As on Windows, capabilities and data
/// indexes run from the last usage named to the first.
Refusal Parser::AddFeatures(std::uint32_t flags) {
  struct Share {
    const UsageRun* run;
    std::uint32_t usages;
    std::uint32_t values;
  };
  const bool array = (flags & kVariable) == 0;
  std::uint32_t left = array ? locals_.usage_count : globals_.report_count;
  std::vector<Share> shares;
  for (const UsageRun& run : locals_.usages) {
    if (left == 0) break;
    const std::uint32_t usages = std::min(run.count, left);
    shares.push_back({&run, usages, &run == &locals_.usages.back() ? left : usages});
    left -= shares.back().values;
  }
  HidCollection& collection = result.collections.back();
  std::reverse(shares.begin(), shares.end());
  for (const auto& [run, usages, values] : shares) {
    const std::uint32_t first_index = data_indexes_;
    data_indexes_ += usages;
    if (data_indexes_ > kMost16Bits) return "more than 65535 data indexes";
    if (array || globals_.report_size == 1) continue;  // a button
    HIDP_VALUE_CAPS& caps = collection.values.emplace_back();
    caps.UsagePage = PageOf(*run);
    caps.ReportID = globals_.report_id;
    caps.BitSize = Low16(globals_.report_size);
    caps.ReportCount = Low16(values);
    // A single usage lies where a range's first does, with nothing where its last would be.
    caps.Range.UsageMin = Low16(run->first);
    caps.Range.DataIndexMin = Low16(first_index);
    if (usages == 1) continue;
    caps.IsRange = TRUE;
    caps.Range.UsageMax = Low16(run->first + usages - 1);
    caps.Range.DataIndexMax = Low16(data_indexes_ - 1);
  }
  collection.caps.NumberFeatureValueCaps = static_cast<USHORT>(collection.values.size());
  return kSound;
}

}  // namespace

ReportDescriptor ParseReportDescriptor(std::span<const std::uint8_t> descriptor) {
  const auto refused = [](std::size_t offset, Refusal why) {
    return ReportDescriptor{{}, false, "byte " + std::to_string(offset) + ": " + why};
  };
  if (descriptor.size() > kLongestDescriptor) return refused(kLongestDescriptor, "descriptor of more than 4096 bytes");
  Parser parser;
  for (auto rest = descriptor; !rest.empty();) {
    const std::size_t offset = descriptor.size() - rest.size();
    const std::optional<Item> item = TakeItem(rest);
    if (!item) return refused(offset, "item that runs past the end");
    if (const Refusal refusal = parser.Take(*item)) return refused(offset, refusal);
  }
  if (const Refusal refusal = parser.Finish()) return refused(descriptor.size(), refusal);
  return std::move(parser.result);
}

}  // namespace platform
