#include "simulator/notebook.h"

#include <chrono>
#include <string_view>
#include <thread>
#include <utility>

namespace simulator {
namespace {

using namespace std::string_view_literals;

/// System information whose strings are the maker and the product: readers must step over strings to find the record.
constexpr std::string_view kSystemInformation =
    "\x01\x08\x00\x00\x01\x02\x00\x00"
    "Zarn\0Simulated Notebook\0\0"sv;

}  // namespace

Notebook::Notebook(Profile profile) : profile_(std::move(profile)), firmware_(profile_.ec) {
  for (const HidKeyboard::Settings& settings : profile_.hid_keyboards) {
    hid_keyboards_.push_back(std::make_unique<HidKeyboard>(settings));
  }
}

EcFirmware::Answer Notebook::CallFirmware(const std::string& method, const EcFirmware::Input& input) {
  std::this_thread::sleep_for(std::chrono::milliseconds(profile_.firmware_latency_ms));
  const std::lock_guard guard(lock_);
  EcFirmware::Answer answer = firmware_.Call(method, input);
  wire_.push_back({method, std::nullopt, input, answer.refusal});
  return answer;
}

HidKeyboard::Answer Notebook::SetFeature(std::size_t keyboard, std::uint64_t connection,
                                         std::span<const std::uint8_t> report) {
  return Record({"SetFeature", keyboard, std::vector<std::uint8_t>(report.begin(), report.end()), {}},
                [&] { return hid_keyboards_.at(keyboard)->SetFeature(connection, report); });
}

HidKeyboard::Answer Notebook::GetFeature(std::size_t keyboard, std::uint64_t connection, std::uint8_t report_id) {
  return Record({"GetFeature", keyboard, std::vector<std::uint8_t>{report_id}, {}},
                [&] { return hid_keyboards_.at(keyboard)->GetFeature(connection, report_id); });
}

/// Makes the record first, then runs the exchange without the lock: a slow keyboard must not hold up the others.
template <typename Exchange>
HidKeyboard::Answer Notebook::Record(WireRecord record, const Exchange& exchange) {
  std::uint64_t place = 0;
  {
    const std::lock_guard guard(lock_);
    place = taken_ + wire_.size();
    wire_.push_back(std::move(record));
  }
  HidKeyboard::Answer answer = exchange();
  const std::lock_guard guard(lock_);
  if (place >= taken_) wire_[place - taken_].refusal = answer.refusal;
  return answer;
}

std::vector<std::uint8_t> Notebook::SmbiosTable() const {
  if (!profile_.firmware_record) return {};
  const EcFirmware::Settings& ec = profile_.ec;
  const auto zones = static_cast<std::uint8_t>(ec.keyboard_zones);
  const std::uint8_t rgb = profile_.rgb_keyboard ? 2 : 1;
  const std::uint8_t light_bar = ec.light_bar ? 1 : 2;
  std::vector<std::uint8_t> structure = profile_.firmware_structure;
  if (structure.empty()) {
    structure = {172, 15, 1, 0, ec.version.major, ec.version.minor, 8, zones, 0, 10, rgb, 0, 23, light_bar, 0};
  }
  std::vector<std::uint8_t> table(kSystemInformation.begin(), kSystemInformation.end());
  table.insert(table.end(), structure.begin(), structure.end());
  table.insert(table.end(), {0, 0, 127, 4, 2, 0, 0, 0});
  return table;
}

std::vector<WireRecord> Notebook::TakeWire() {
  const std::lock_guard guard(lock_);
  taken_ += wire_.size();
  return std::exchange(wire_, {});
}

}  // namespace simulator
