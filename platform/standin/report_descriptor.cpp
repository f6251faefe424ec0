#include "platform/standin/report_descriptor.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace platform {
namespace {

// What the Linux kernel takes.
constexpr std::size_t kLongestDescriptor = 4096;
constexpr std::uint32_t kMostUsages = 12288;  // of a main item; its values are not more either
constexpr std::uint32_t kMostFields = 256;    // of a report
constexpr std::uint32_t kLongestReport = 16384;
constexpr std::uint32_t kWidestValue = 256;
constexpr std::size_t kDeepestPush = 4;

constexpr std::uint32_t kMost16Bits = 0xFFFF;

// Flags of Input, Output and Feature.
constexpr std::uint32_t kConstant = 0x01;
constexpr std::uint32_t kVariable = 0x02;
constexpr std::uint32_t kRelative = 0x04;
constexpr std::uint32_t kNullState = 0x40;

constexpr std::uint8_t kLongItem = 0xFE;

constexpr USAGE kDesktopPage = 1;
constexpr std::uint32_t kKeyboard = 6;
constexpr std::uint32_t kKeypad = 7;
constexpr USAGE kKeysPage = 7;

/// What is wrong; null when nothing is.
using Refusal = const char*;
constexpr Refusal kSound = nullptr;

constexpr USHORT Low16(std::uint32_t value) { return static_cast<USHORT>(value & kMost16Bits); }
constexpr BOOLEAN Flag(bool value) { return value ? BOOLEAN{TRUE} : BOOLEAN{FALSE}; }

enum class ItemType { Main, Global, Local, Reserved };

struct Item {
  std::uint8_t kind = 0;  // tag and type: the prefix without the two bits that tell the size
  std::size_t size = 0;
  std::uint32_t value = 0;

  ItemType Type() const { return static_cast<ItemType>(kind >> 2 & 3); }
  std::int32_t SignedValue() const {
    if (size == 1) return static_cast<std::int8_t>(value);
    if (size == 2) return static_cast<std::int16_t>(value);
    return static_cast<std::int32_t>(value);
  }
};

/// Takes the first item off `rest`, which has a byte at least; nothing when the item is not all there. A long item
/// comes out as one of the reserved type, its data being of no use to anyone.
std::optional<Item> TakeItem(std::span<const std::uint8_t>& rest) {
  static constexpr std::size_t kShortSizes[] = {0, 1, 2, 4};
  const bool is_long = rest[0] == kLongItem;  // then the size is in the next byte, and a tag in the one behind it
  const std::size_t header = is_long ? 3 : 1;
  if (rest.size() < header) return std::nullopt;
  const std::size_t size = is_long ? rest[1] : kShortSizes[rest[0] & 3];
  if (rest.size() - header < size) return std::nullopt;
  Item item{static_cast<std::uint8_t>(rest[0] & 0xFC), size, 0};
  for (std::size_t i = 0; i < std::min<std::size_t>(size, 4); ++i) {
    item.value |= std::uint32_t{rest[header + i]} << (8 * i);
  }
  rest = rest.subspan(header + size);
  return item;
}

/// Consecutive numbers for consecutive controls. However long a range is, it stays one of these.
struct Run {
  std::uint32_t first = 0;
  std::uint32_t count = 0;
};

struct UsageRun {
  Run ids;
  std::optional<USAGE> page;  // when the item named it; otherwise the main item's page counts
};

/// What of a field falls to one run of usages.
struct Share {
  const UsageRun* run;
  std::uint32_t usages;
  std::uint32_t controls;
};

struct Globals {
  USAGE usage_page = 0;
  std::int32_t logical_min = 0;
  std::int32_t logical_max = 0;
  std::int32_t physical_min = 0;
  std::int32_t physical_max = 0;
  std::uint32_t unit_exponent = 0;
  std::uint32_t unit = 0;
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

  /// Of the alternatives between two delimiters the first is the preferred one, and the only one that counts.
  bool Surplus() const { return delimited && alternatives > 1; }
};

/// An open collection, as the fields in it link to it.
struct Link {
  USHORT index = 0;
  USAGE usage = 0;
  USAGE page = 0;
};

/// Where the capabilities of a collection count each kind of report.
struct KindCaps {
  USHORT HIDP_CAPS::*length;
  USHORT HIDP_CAPS::*buttons;
  USHORT HIDP_CAPS::*values;
  USHORT HIDP_CAPS::*data_indexes;
};
constexpr std::array<KindCaps, 3> kKindCaps = {{
    {&HIDP_CAPS::InputReportByteLength, &HIDP_CAPS::NumberInputButtonCaps, &HIDP_CAPS::NumberInputValueCaps,
     &HIDP_CAPS::NumberInputDataIndices},
    {&HIDP_CAPS::OutputReportByteLength, &HIDP_CAPS::NumberOutputButtonCaps, &HIDP_CAPS::NumberOutputValueCaps,
     &HIDP_CAPS::NumberOutputDataIndices},
    {&HIDP_CAPS::FeatureReportByteLength, &HIDP_CAPS::NumberFeatureButtonCaps, &HIDP_CAPS::NumberFeatureValueCaps,
     &HIDP_CAPS::NumberFeatureDataIndices},
}};

class Parser {
 public:
  Refusal Take(const Item& item);
  Refusal Finish() const;
  std::vector<HidCollection> TakeCollections() { return std::move(collections_); }
  bool has_keys() const { return has_keys_; }

 private:
  using ReportKey = std::pair<HIDP_REPORT_TYPE, BYTE>;
  struct Report {
    std::uint32_t bits = 0;
    std::uint32_t fields = 0;
  };
  struct ItemRow {
    std::uint8_t kind;
    Refusal (Parser::*take)(const Item&);
  };
  static const ItemRow kItems[];

  template <HIDP_REPORT_TYPE kKind>
  Refusal Field(const Item& item) {
    return AddField(kKind, item.value);
  }
  Refusal OpenCollection(const Item& item);
  Refusal CloseCollection(const Item& item);

  template <auto kMember>
  Refusal SetSigned(const Item& item) {
    globals_.*kMember = item.SignedValue();
    return kSound;
  }
  template <auto kMember>
  Refusal SetUnsigned(const Item& item) {
    globals_.*kMember = item.value;
    return kSound;
  }
  Refusal SetUsagePage(const Item& item);
  Refusal SetReportSize(const Item& item);
  Refusal SetReportId(const Item& item);
  Refusal SetReportCount(const Item& item);
  Refusal Push(const Item& item);
  Refusal Pop(const Item& item);

  Refusal AddUsage(const Item& item);
  Refusal SetUsageMinimum(const Item& item);
  Refusal SetUsageMaximum(const Item& item);
  Refusal Delimit(const Item& item);

  Refusal AddUsages(const UsageRun& run);
  Refusal AddField(HIDP_REPORT_TYPE kind, std::uint32_t flags);
  Refusal TakeBits(HIDP_REPORT_TYPE kind);
  Refusal AddControls(HIDP_REPORT_TYPE kind, std::uint32_t flags);
  HIDP_VALUE_CAPS FieldCaps(std::uint32_t flags) const;
  USAGE PageOf(const UsageRun& run) const { return run.page.value_or(globals_.usage_page); }
  /// Whether the run, on the page that counts now, names a keyboard, a keypad or their keys.
  bool NamesKeys(const UsageRun& run) const;

  Globals globals_;
  std::vector<Globals> pushed_;
  Locals locals_;
  std::vector<Link> open_;
  std::map<ReportKey, Report> reports_;
  std::map<ReportKey, std::uint32_t> collection_bits_;  // of the reports, as far as the top-level collection goes
  std::vector<HidCollection> collections_;
  bool has_keys_ = false;
};

const Parser::ItemRow Parser::kItems[] = {
    {0x80, &Parser::Field<HidP_Input>},
    {0x90, &Parser::Field<HidP_Output>},
    {0xB0, &Parser::Field<HidP_Feature>},
    {0xA0, &Parser::OpenCollection},
    {0xC0, &Parser::CloseCollection},

    {0x04, &Parser::SetUsagePage},
    {0x14, &Parser::SetSigned<&Globals::logical_min>},
    {0x24, &Parser::SetSigned<&Globals::logical_max>},
    {0x34, &Parser::SetSigned<&Globals::physical_min>},
    {0x44, &Parser::SetSigned<&Globals::physical_max>},
    {0x54, &Parser::SetUnsigned<&Globals::unit_exponent>},
    {0x64, &Parser::SetUnsigned<&Globals::unit>},
    {0x74, &Parser::SetReportSize},
    {0x84, &Parser::SetReportId},
    {0x94, &Parser::SetReportCount},
    {0xA4, &Parser::Push},
    {0xB4, &Parser::Pop},

    {0x08, &Parser::AddUsage},
    {0x18, &Parser::SetUsageMinimum},
    {0x28, &Parser::SetUsageMaximum},
    {0xA8, &Parser::Delimit},
};

Refusal Parser::Take(const Item& item) {
  const auto* const row = std::ranges::find(kItems, item.kind, &ItemRow::kind);
  // A kernel passes over what it does not know, designators and strings among it, which only decorate; but not over
  // unknown global items, which may change what the rest means.
  const bool known = row != std::end(kItems);
  if (!known && item.Type() == ItemType::Global) return "unknown global item";
  const Refusal refusal = known ? (this->*row->take)(item) : kSound;
  if (item.Type() == ItemType::Main) {
    for (const UsageRun& run : locals_.usages) has_keys_ = has_keys_ || NamesKeys(run);
    locals_ = {};
  }
  return refusal;
}

bool Parser::NamesKeys(const UsageRun& run) const {
  const USAGE page = PageOf(run);
  const bool names_keyboard = run.ids.first <= kKeypad && run.ids.first + run.ids.count > kKeyboard;
  return page == kKeysPage || (page == kDesktopPage && names_keyboard);
}

Refusal Parser::Finish() const {
  if (locals_.delimited) return "the descriptor ends with an open delimiter";
  if (!open_.empty()) return "the descriptor ends inside a collection";
  if (collections_.empty()) return "the descriptor ends without a collection";
  return kSound;
}

Refusal Parser::OpenCollection(const Item& /*item*/) {
  const UsageRun named = locals_.usages.empty() ? UsageRun() : locals_.usages.front();
  Link link{0, Low16(named.ids.first), PageOf(named)};
  if (open_.empty()) {
    collection_bits_.clear();
    HIDP_CAPS& caps = collections_.emplace_back().caps;
    caps.Usage = link.usage;
    caps.UsagePage = link.page;
  }
  link.index = collections_.back().caps.NumberLinkCollectionNodes++;
  open_.push_back(link);
  return kSound;
}

Refusal Parser::CloseCollection(const Item& /*item*/) {
  if (open_.empty()) return "End Collection without a collection";
  open_.pop_back();
  return kSound;
}

Refusal Parser::SetUsagePage(const Item& item) {
  if (item.value > kMost16Bits) return "Usage Page beyond 65535";
  globals_.usage_page = Low16(item.value);
  has_keys_ = has_keys_ || globals_.usage_page == kKeysPage;
  return kSound;
}

Refusal Parser::SetReportSize(const Item& item) {
  if (item.value > kWidestValue) return "Report Size beyond 256 bits";
  globals_.report_size = item.value;
  return kSound;
}

Refusal Parser::SetReportId(const Item& item) {
  if (item.value < 1 || item.value > 255) return "Report ID outside 1 to 255";
  globals_.report_id = static_cast<BYTE>(item.value);
  return kSound;
}

Refusal Parser::SetReportCount(const Item& item) {
  if (item.value > kMostUsages) return "Report Count beyond 12288";
  globals_.report_count = item.value;
  return kSound;
}

Refusal Parser::Push(const Item& /*item*/) {
  if (pushed_.size() == kDeepestPush) return "Push beyond 4 levels";
  pushed_.push_back(globals_);
  return kSound;
}

Refusal Parser::Pop(const Item& /*item*/) {
  if (pushed_.empty()) return "Pop without a Push";
  globals_ = pushed_.back();
  pushed_.pop_back();
  return kSound;
}

/// The page in the high half of an item with 4 bytes.
std::optional<USAGE> NamedPage(const Item& item) {
  if (item.size < 4) return std::nullopt;
  return Low16(item.value >> 16);
}

Refusal Parser::AddUsage(const Item& item) { return AddUsages({{item.value & kMost16Bits, 1}, NamedPage(item)}); }

Refusal Parser::SetUsageMinimum(const Item& item) {
  locals_.usage_minimum = item;
  return kSound;
}

Refusal Parser::SetUsageMaximum(const Item& item) {
  const Item& minimum = locals_.usage_minimum;
  if (NamedPage(item) != NamedPage(minimum)) return "Usage Maximum on another page than Usage Minimum";
  if (item.value < minimum.value) return "Usage Maximum below Usage Minimum";
  return AddUsages({{minimum.value & kMost16Bits, item.value - minimum.value + 1}, NamedPage(item)});
}

Refusal Parser::AddUsages(const UsageRun& run) {
  // Systems differ in whether the page of now or that of the main item counts, and which alternative; keys must not
  // slip through between them.
  has_keys_ = has_keys_ || NamesKeys(run);
  if (locals_.delimited) ++locals_.alternatives;
  if (locals_.Surplus()) return kSound;
  const std::uint32_t room = kMostUsages - locals_.usage_count;
  if (room == 0) return "more than 12288 usages";
  // A range that says "any usage" is common: a kernel takes of it what it has room for.
  const std::uint32_t count = std::min(run.ids.count, room);
  locals_.usages.push_back({{run.ids.first, count}, run.page});
  locals_.usage_count += count;
  return kSound;
}

Refusal Parser::Delimit(const Item& item) {
  const bool opens = item.value != 0;
  if (opens && locals_.delimited) return "Delimiter opened inside another";
  if (!opens && !locals_.delimited) return "Delimiter closed that is not open";
  locals_.delimited = opens;
  locals_.alternatives = 0;
  return kSound;
}

Refusal Parser::AddField(HIDP_REPORT_TYPE kind, std::uint32_t flags) {
  // A kernel takes a field outside all collections; but it is in no interface, so nobody can ask for it.
  if (open_.empty()) return kSound;
  if (const Refusal refusal = TakeBits(kind)) return refusal;
  const bool empty = globals_.report_size == 0 || globals_.report_count == 0;
  // Of constants only a variable that names a usage is anybody's to ask for.
  const bool padding = (flags & kConstant) != 0 && (flags & kVariable) == 0;
  return empty || padding ? kSound : AddControls(kind, flags);
}

Refusal Parser::TakeBits(HIDP_REPORT_TYPE kind) {
  const ReportKey key(kind, globals_.report_id);
  const std::uint32_t bits = globals_.report_size * globals_.report_count;
  if (bits == 0) return kSound;
  Report& report = reports_[key];
  report.bits += bits;
  if (report.bits > (kLongestReport - 1) * 8) return "report of more than 16384 bytes";
  // Padding, which has no usages, is no field to a kernel.
  if (!locals_.usages.empty() && ++report.fields > kMostFields) return "report of more than 256 fields";

  const std::uint32_t in_collection = collection_bits_[key] += bits;
  USHORT& length = collections_.back().caps.*kKindCaps[kind].length;
  length = std::max(length, Low16(1 + (in_collection + 7) / 8));
  return kSound;
}

/// A single number lies where a run's first does, with nothing where its last would be.
void SetRuns(HIDP_VALUE_CAPS& caps, const Run& usages, const Run& data_indexes) {
  caps.Range = {};
  caps.IsRange = Flag(usages.count > 1);
  caps.Range.UsageMin = Low16(usages.first);
  caps.Range.DataIndexMin = Low16(data_indexes.first);
  if (usages.count == 1) return;
  caps.Range.UsageMax = Low16(usages.first + usages.count - 1);
  caps.Range.DataIndexMax = Low16(data_indexes.first + data_indexes.count - 1);
}

/// Shares the field's values out among the usages: each usage has one, the last has all that are left. In an array
/// every usage is a button of its own, however many of them a report has room for. As on Windows the capabilities
/// stand, and their data are numbered, from the last usage named to the first.
Refusal Parser::AddControls(HIDP_REPORT_TYPE kind, std::uint32_t flags) {
  HidCollection& collection = collections_.back();
  USHORT& data_indexes = collection.caps.*kKindCaps[kind].data_indexes;
  const bool array = (flags & kVariable) == 0;
  const bool buttons = array || globals_.report_size == 1;
  std::uint32_t left = array ? locals_.usage_count : globals_.report_count;
  std::vector<Share> shares;
  for (const UsageRun& usage : locals_.usages) {
    if (left == 0) break;
    const std::uint32_t usages = std::min(usage.ids.count, left);
    shares.push_back({&usage, usages, &usage == &locals_.usages.back() ? left : usages});
    left -= shares.back().controls;
  }
  HIDP_VALUE_CAPS caps = FieldCaps(flags);
  std::reverse(shares.begin(), shares.end());
  for (const auto& [usage, usages, controls] : shares) {
    if (data_indexes + usages > kMost16Bits) return "more than 65535 data indexes";
    if (buttons) {
      ++(collection.caps.*kKindCaps[kind].buttons);
    } else {
      ++(collection.caps.*kKindCaps[kind].values);
      caps.UsagePage = PageOf(*usage);
      caps.ReportCount = Low16(controls);
      SetRuns(caps, {usage->ids.first, usages}, {data_indexes, usages});
      collection.values[kind].push_back(caps);
    }
    data_indexes = Low16(data_indexes + usages);
  }
  return kSound;
}

/// What all values of a field have in common.
HIDP_VALUE_CAPS Parser::FieldCaps(std::uint32_t flags) const {
  HIDP_VALUE_CAPS caps = {};
  caps.ReportID = globals_.report_id;
  caps.BitField = Low16(flags);
  caps.LinkCollection = open_.back().index;
  caps.LinkUsage = open_.back().usage;
  caps.LinkUsagePage = open_.back().page;
  caps.IsAbsolute = Flag((flags & kRelative) == 0);
  caps.HasNull = Flag((flags & kNullState) != 0);
  caps.BitSize = Low16(globals_.report_size);
  caps.UnitsExp = globals_.unit_exponent;
  caps.Units = globals_.unit;
  caps.LogicalMin = globals_.logical_min;
  caps.LogicalMax = globals_.logical_max;
  caps.PhysicalMin = globals_.physical_min;
  caps.PhysicalMax = globals_.physical_max;
  return caps;
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
  return {parser.TakeCollections(), parser.has_keys(), {}};
}

}  // namespace platform
