#include "simulator/hid_keyboard.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <map>

#include "base/little_endian.h"

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

/// Begins a collection with values from 0 to 255.
constexpr std::uint8_t kCollectionOfBytes[] = {0xA1, 0x01, 0x15, 0x00, 0x26, 0xFF, 0x00};

// Flags of fields.
constexpr std::uint8_t kVariable = 0x02;
constexpr std::uint8_t kPadding = 0x03;

std::uint8_t Low(std::size_t value) { return static_cast<std::uint8_t>(value); }

void Append(Bytes& descriptor, std::span<const std::uint8_t> bytes) {
  descriptor.insert(descriptor.end(), bytes.begin(), bytes.end());
}

void AppendNumber(Bytes& bytes, std::uint32_t number, std::size_t size) {
  const std::size_t end = bytes.size();
  bytes.resize(end + size);
  ToLittleEndian(number, std::span(bytes).subspan(end));
}

/// A descriptor's item with `least` bytes of data, or with two where the value needs them.
void AppendItem(Bytes& descriptor, std::uint8_t kind, std::uint32_t value, std::size_t least = 1) {
  const std::size_t size = value <= 0xFF ? least : 2;
  descriptor.push_back(Low(kind | size));
  AppendNumber(descriptor, value, size);
}

/// `count` feature values of `bits` bits.
void AppendValues(Bytes& descriptor, std::uint32_t bits, std::uint32_t count, std::uint8_t flags) {
  AppendItem(descriptor, 0x74, bits);
  AppendItem(descriptor, 0x94, count);
  AppendItem(descriptor, 0xB0, flags);
}

/// A report of `length` data bytes: one for a device id, the fields, then padding.
void AppendReport(Bytes& descriptor, std::uint8_t id, std::uint32_t length, std::uint16_t id_usage,
                  std::vector<HidKeyboard::Field> fields) {
  AppendItem(descriptor, 0x84, id);
  std::uint32_t bits = 8 * length;
  fields.insert(fields.begin(), {id_usage, 8});
  for (const HidKeyboard::Field& field : fields) {
    AppendItem(descriptor, 0x08, field.usage);
    AppendValues(descriptor, field.bits, 1, kVariable);
    bits -= field.bits;
  }
  if (bits % 8 != 0) AppendValues(descriptor, 1, bits % 8, kPadding);
  if (bits >= 8) AppendValues(descriptor, 8, bits / 8, kPadding);
}

Bytes DescriptorOf(const HidKeyboard::Settings& settings) {
  if (!settings.descriptor.empty()) return settings.descriptor;
  const std::uint32_t data_length = settings.report_length - 1;
  Bytes descriptor;
  if (settings.other_collection) Append(descriptor, kOrdinaryKeyboard);
  AppendItem(descriptor, 0x04, settings.usage_page, 2);
  AppendItem(descriptor, 0x08, settings.usage, 2);
  Append(descriptor, kCollectionOfBytes);
  AppendItem(descriptor, 0x84, kAttributes);
  AppendItem(descriptor, 0x08, 0x11);
  AppendValues(descriptor, 8, data_length, kVariable);
  AppendReport(descriptor, kBaseInfoRequest, data_length, 0x21, {});
  AppendReport(descriptor, kBaseInfo, data_length, 0x30, settings.base_info);
  AppendReport(descriptor, kUpdate, data_length, 0x40, settings.update);
  descriptor.push_back(0xC0);
  return descriptor;
}

/// The values of an update, by usage.
std::map<std::uint16_t, std::uint32_t> Unpacked(std::span<const std::uint8_t> data,
                                                std::span<const HidKeyboard::Field> fields) {
  std::map<std::uint16_t, std::uint32_t> values;
  for (const HidKeyboard::Field& field : fields) {
    const std::size_t width = field.bits / 8;
    if (width > 4 || width > data.size()) break;  // nobody knows where the rest stands
    values[field.usage] = static_cast<std::uint32_t>(FromLittleEndian(data.first(std::min<std::size_t>(width, 4))));
    data = data.subspan(width);
  }
  return values;
}

std::string InHex(std::uint32_t value) {
  char text[12];
  std::snprintf(text, sizeof(text), "0x%" PRIx32, value);
  return text;
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
  const bool attributes = report_id == kAttributes && settings_.answers;
  if (!attributes && report_id != kBaseInfo) return Refuse("report " + InHex(report_id) + " cannot be read");
  Answer answer{.report = attributes ? Attributes() : BaseInfo()};
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
  if (mask != kAllZones && settings_.zones < 16 && mask >> settings_.zones != 0)
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
  Bytes report{kAttributes, settings_.claimed_ids.value_or(Low(settings_.device_ids.size()))};
  Append(report, settings_.device_ids);
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
    AppendNumber(report, values.at(field.usage), field.bits / 8);
  }
  return report;
}

}  // namespace simulator
