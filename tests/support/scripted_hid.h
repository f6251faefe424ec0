/// A HID device for tests: it answers as a test tells it, and records what it was sent.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

#include "platform/standin/hid_api.h"
#include "platform/standin/machine.h"

namespace test {

/// A feature value field: `count` values of `bits` bits.
struct DeclaredField {
  std::uint8_t report_id = 0;
  std::uint8_t usage = 0;
  std::uint8_t bits = 0;
  std::uint8_t count = 1;
};

/// A vendor's collection with these fields. A constant report makes its feature reports `data_bytes` long.
inline platform::Bytes VendorCollection(std::uint16_t usage_page, const std::vector<DeclaredField>& fields,
                                        std::uint8_t data_bytes = 64, std::uint8_t usage = 1) {
  platform::Bytes bytes = {
      0x06, static_cast<std::uint8_t>(usage_page), static_cast<std::uint8_t>(usage_page >> 8), 0x09, usage, 0xA1, 0x01};
  const auto append = [&bytes](std::initializer_list<std::uint8_t> more) { bytes.insert(bytes.end(), more); };
  if (data_bytes != 0) append({0x85, 0xA1, 0x75, 0x08, 0x95, data_bytes, 0xB1, 0x03});
  for (const DeclaredField& field : fields) {
    append({0x85, field.report_id, 0x75, field.bits, 0x95, field.count, 0x09, field.usage, 0xB1, 0x02});
  }
  append({0xC0});
  return bytes;
}

class ScriptedHid {
 public:
  platform::HidDevice device{L"\\\\?\\hid#test#0", 0x1209, 0x0001, 0x0100, {}};
  LONG open_error = ERROR_SUCCESS;
  /// What is read of each report, with the id in front.
  std::map<std::uint8_t, platform::Bytes> answers;
  /// Gives the error code of the exchange that is about to run. `report` is what the device gets.
  std::function<LONG(std::span<const std::uint8_t> report)> fail = [](auto) { return ERROR_SUCCESS; };

  explicit ScriptedHid(platform::Bytes descriptor) { device.report_descriptor = std::move(descriptor); }

  /// The reports it was sent since the last call.
  std::vector<platform::Bytes> TakeReports() {
    const std::lock_guard lock(lock_);
    return std::exchange(reports_, {});
  }

  LONG Set(std::span<const std::uint8_t> report) {
    if (const LONG error = fail(report)) return error;
    const std::lock_guard lock(lock_);
    reports_.emplace_back(report.begin(), report.end());
    return ERROR_SUCCESS;
  }
  LONG Get(std::span<std::uint8_t> report) {
    if (const LONG error = fail(report)) return error;
    const auto answer = answers.find(report.front());
    if (answer == answers.end()) return ERROR_GEN_FAILURE;
    std::copy_n(answer->second.begin(), std::min(report.size(), answer->second.size()), report.begin());
    return ERROR_SUCCESS;
  }

 private:
  std::mutex lock_;
  std::vector<platform::Bytes> reports_;  // guarded by lock_
};

/// A connection that ends when the machine drops its device, which means an unplug.
class ScriptedConnection final : public platform::HidConnection {
 public:
  explicit ScriptedConnection(const std::shared_ptr<ScriptedHid>& device) : device_(device) {}

  LONG SetFeature(std::span<const std::uint8_t> report) override {
    const auto device = device_.lock();
    return device == nullptr ? ERROR_DEVICE_NOT_CONNECTED : device->Set(report);
  }
  LONG GetFeature(std::span<std::uint8_t> report) override {
    const auto device = device_.lock();
    return device == nullptr ? ERROR_DEVICE_NOT_CONNECTED : device->Get(report);
  }

 private:
  const std::weak_ptr<ScriptedHid> device_;
};

}  // namespace test
