#include "simulator/hid_keyboard.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <initializer_list>
#include <map>

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Answer = HidKeyboard::Answer;
using Result = HidKeyboard::Result;

constexpr std::uint8_t kAttributes = 0xA1;
constexpr std::uint8_t kBaseInfoRequest = 0xA2;
constexpr std::uint8_t kBaseInfo = 0xA3;
constexpr std::uint8_t kUpdate = 0xA4;

constexpr std::uint8_t kStatic = 2;
constexpr std::uint32_t kAllZones = 0xFFFF;
constexpr std::size_t kShortReport = 2;

/// An ordinary keyboard: eight modifier keys and six keys.
constexpr std::uint8_t kOrdinaryKeyboard[] = {
    0x05, 0x01, 0x09, 0x06, 0xA1, 0x01, 0x85, 0x01, 0x05, 0x07, 0x19, 0xE0, 0x29, 0xE7, 0x15, 0x00, 0x25, 0x01, 0x75,
    0x01, 0x95, 0x08, 0x81, 0x02, 0x95, 0x06, 0x75, 0x08, 0x25, 0x65, 0x19, 0x00, 0x29, 0x65, 0x81, 0x00, 0xC0};

std::uint8_t Low(std::uint32_t value) { return static_cast<std::uint8_t>(value); }

/// Writes a report descriptor item by item.
class DescriptorWriter {
 public:
  void Append(std::initializer_list<std::uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes); }
  void AppendAll(std::span<const std::uint8_t> bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

  /// A report of `length` data bytes: the fields, then padding.
  void Report(std::uint8_t id, std::uint32_t length, std::span<const HidKeyboard::Field> fields) {
    Append({0x85, id});
    std::uint32_t bits = 8 * length;
    for (const HidKeyboard::Field& field : fields) {
      Item(0x08, field.usage);
      Values(field.bits, 1, 0x02);
      bits -= field.bits;
    }
    if (bits % 8 != 0) Values(1, bits % 8, 0x03);
    if (bits >= 8) Values(8, bits / 8, 0x03);
  }

  /// `count` feature values of `bits` bits.
  void Values(std::uint32_t bits, std::uint32_t count, std::uint8_t flags) {
    Item(0x74, bits);
    Item(0x94, count);
    Append({0xB1, flags});
  }

  Bytes Take() { return std::move(bytes_); }

 private:
  void Item(std::uint8_t prefix, std::uint32_t value) {
    if (value <= 0xFF) return Append({Low(prefix | 1U), Low(value)});
    Append({Low(prefix | 2U), Low(value), Low(value >> 8)});
  }

  Bytes bytes_;
};

Bytes DescriptorOf(const HidKeyboard::Settings& settings) {
  if (!settings.descriptor.empty()) return settings.descriptor;
  const std::uint32_t data_length = settings.report_length - 1;
  const auto with_id = [](std::uint16_t usage, std::vector<HidKeyboard::Field> fields) {
    fields.insert(fields.begin(), {usage, 8});
    return fields;
  };
  DescriptorWriter writer;
  if (settings.other_collection) writer.AppendAll(kOrdinaryKeyboard);
  writer.Append({0x06, Low(settings.usage_page), Low(settings.usage_page >> 8U)});
  writer.Append({0x0A, Low(settings.usage), Low(settings.usage >> 8U), 0xA1, 0x01, 0x15, 0x00, 0x26, 0xFF, 0x00});
  writer.Append({0x85, kAttributes, 0x09, 0x11});
  writer.Values(8, data_length, 0x02);
  writer.Report(kBaseInfoRequest, data_length, with_id(0x21, {}));
  writer.Report(kBaseInfo, data_length, with_id(0x30, settings.base_info));
  writer.Report(kUpdate, data_length, with_id(0x40, settings.update));
  writer.Append({0xC0});
  return writer.Take();
}

/// The values of an update that it declares, by usage.
std::map<std::uint16_t, std::uint32_t> Unpacked(std::span<const std::uint8_t> data,
                                                std::span<const HidKeyboard::Field> fields) {
  std::map<std::uint16_t, std::uint32_t> values;
  for (const HidKeyboard::Field& field : fields) {
    const std::size_t width = field.bits / 8;
    if (width > 4 || width > data.size()) break;  // where the rest is cannot be told
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) value |= std::uint32_t{data[i]} << (8 * i);
    values[field.usage] = value;
    data = data.subspan(width);
  }
  return values;
}

std::string InHex(std::uint32_t value) {
  std::array<char, 8> digits{};
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
  return "0x" + std::string(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

Answer Refuse(const std::string& why) { return {Result::Refused, why, {}}; }

}  // namespace

HidKeyboard::HidKeyboard(const Settings& settings)
    : settings_(settings), report_descriptor_(DescriptorOf(settings)), plugged_(settings.plugged) {
  lights_.zones.resize(settings.zones);
}

std::optional<std::uint64_t> HidKeyboard::Connect() const {
  const std::lock_guard lock(lock_);
  return plugged_ ? std::optional(connection_) : std::nullopt;
}

Answer HidKeyboard::SetFeature(std::uint64_t connection, std::span<const std::uint8_t> report) {
  std::unique_lock lock(lock_);
  if (auto ended = BeginExchange(connection, lock)) return *std::move(ended);
  if (report.size() != settings_.report_length) {
    return Refuse("the report has " + std::to_string(report.size()) + " bytes, must have " +
                  std::to_string(settings_.report_length));
  }
  const bool known = std::ranges::count(settings_.device_ids, report[1]) != 0;
  if (!known) return Refuse("the report is for device id " + InHex(report[1]) + ", which is not served here");
  if (report[0] == kUpdate) return Update(report.subspan(2));
  if (report[0] != kBaseInfoRequest) return Refuse("report " + InHex(report[0]) + " cannot be set");
  asked_id_ = report[1];
  return {};
}

Answer HidKeyboard::GetFeature(std::uint64_t connection, std::uint8_t report_id) {
  std::unique_lock lock(lock_);
  if (auto ended = BeginExchange(connection, lock)) return *std::move(ended);
  Answer answer;
  if (report_id == kAttributes && settings_.answers) {
    answer.report = Attributes();
  } else if (report_id == kBaseInfo) {
    answer.report = BaseInfo();
  } else {
    return Refuse("report " + InHex(report_id) + " cannot be read");
  }
  const bool is_short = Misbehaves() && misbehaviour_.kind == Misbehaviour::Kind::Short;
  answer.report.resize(is_short ? kShortReport : settings_.report_length);
  return answer;
}

HidLights HidKeyboard::Lights() const {
  const std::lock_guard lock(lock_);
  return lights_;
}

void HidKeyboard::Plug() {
  const std::lock_guard lock(lock_);
  plugged_ = true;
}

void HidKeyboard::Unplug() {
  const std::lock_guard lock(lock_);
  plugged_ = false;
  ++connection_;
  changed_.notify_all();
}

void HidKeyboard::Misbehave(const Misbehaviour& misbehaviour) {
  const std::lock_guard lock(lock_);
  misbehaviour_ = misbehaviour;
  exchanges_ = 0;
  ++behaviour_;
  changed_.notify_all();
}

std::optional<Answer> HidKeyboard::BeginExchange(std::uint64_t connection, std::unique_lock<std::mutex>& lock) {
  const auto is_gone = [&] { return !plugged_ || connection_ != connection; };
  const Answer gone{Result::Gone, "the keyboard was unplugged", {}};
  if (is_gone()) return gone;
  ++exchanges_;
  if (!Misbehaves() || misbehaviour_.kind == Misbehaviour::Kind::Short) return std::nullopt;
  if (misbehaviour_.kind == Misbehaviour::Kind::Fail) return Refuse("the keyboard misbehaves");
  const Misbehaviour::Kind kind = misbehaviour_.kind;
  changed_.wait_for(lock, std::chrono::milliseconds(misbehaviour_.stall_ms),
                    [&, behaviour = behaviour_] { return is_gone() || behaviour_ != behaviour; });
  if (is_gone()) return gone;
  if (kind == Misbehaviour::Kind::Late) return std::nullopt;
  return Answer{Result::NoAnswer, "the keyboard did not answer", {}};
}

bool HidKeyboard::Misbehaves() const {
  const std::uint32_t first = misbehaviour_.first;
  return first != 0 && (misbehaviour_.once ? exchanges_ == first : exchanges_ >= first);
}

Answer HidKeyboard::Update(std::span<const std::uint8_t> data) {
  const auto values = Unpacked(data, settings_.update);
  const auto value = [&values](std::uint16_t usage, std::uint32_t otherwise) {
    const auto found = values.find(usage);
    return found != values.end() ? found->second : otherwise;
  };
  const std::uint32_t mode = value(0x41, kStatic);
  if (mode != kStatic && (mode == 0 || mode > 32 || (settings_.effects >> (mode - 1) & 1) == 0)) {
    return Refuse("there is no effect " + std::to_string(mode));
  }
  const std::uint32_t mask = value(0x48, kAllZones);
  const bool names_missing_zones = settings_.zones < 16 && mask >> settings_.zones != 0;
  if (mask != kAllZones && names_missing_zones)
    return Refuse("zone mask " + InHex(mask) + " names zones that are not there");
  for (std::size_t i = 0; i < std::min<std::size_t>(lights_.zones.size(), 16); ++i) {
    if ((mask >> i & 1) == 0) continue;
    HidLights::Zone& zone = lights_.zones[i];
    zone.mode = Low(mode);
    zone.brightness = Low(value(0x43, zone.brightness));
    zone.speed = Low(value(0x42, zone.speed));
    zone.direction = Low(value(0x44, zone.direction));
    zone.color = {Low(value(0x45, zone.color.red)), Low(value(0x46, zone.color.green)),
                  Low(value(0x47, zone.color.blue))};
  }
  return {};
}

Bytes HidKeyboard::Attributes() const {
  if (!settings_.attribute_reply.empty()) return settings_.attribute_reply;
  const Bytes& ids = settings_.device_ids;
  Bytes report = ids;
  report.insert(report.begin(), settings_.claimed_ids.value_or(Low(static_cast<std::uint32_t>(ids.size()))));
  report.insert(report.begin(), kAttributes);
  return report;
}

Bytes HidKeyboard::BaseInfo() const {
  if (!settings_.base_info_reply.empty()) return settings_.base_info_reply;
  const std::map<std::uint16_t, std::uint32_t> values = {{0x34, settings_.info34},
                                                         {0x32, settings_.info32},
                                                         {0x35, settings_.zones},
                                                         {0x33, settings_.info33},
                                                         {0x31, settings_.effects}};
  Bytes report{kBaseInfo, settings_.reply_id.value_or(asked_id_)};
  for (const Field& field : settings_.base_info) {
    for (std::uint32_t byte = 0; byte < field.bits / 8; ++byte) {
      report.push_back(byte < 4 ? Low(values.at(field.usage) >> (8 * byte)) : std::uint8_t{0});
    }
  }
  return report;
}

}  // namespace simulator
