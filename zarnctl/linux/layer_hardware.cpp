#include "zarnctl/linux/layer_hardware.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "platform/standin/hid_interfaces.h"
#include "platform/standin/report_descriptor.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

std::string HidFailure(const platform::JournalEntry& entry) {
  static constexpr std::pair<std::uint32_t, std::string_view> kReasons[] = {
      {ERROR_ACCESS_DENIED, "this user may not open it"},
      {ERROR_GEN_FAILURE, "the device refused it"},
      {ERROR_SEM_TIMEOUT, "the device did not answer"},
      {ERROR_DEVICE_NOT_CONNECTED, "the device was unplugged"}};
  const auto* const known = std::ranges::find(kReasons, entry.code, [](const auto& reason) { return reason.first; });
  const std::string why =
      known != std::end(kReasons) ? std::string(known->second) : "error " + std::to_string(entry.code);
  return entry.subject + ", " + entry.call.substr(std::string_view("HidD_").size()) + ": " + why;
}

}  // namespace

LayerHardware::LayerHardware(bool trace) : trace_(trace) {
  platform::SetJournal([this](const platform::JournalEntry& entry) { Note(entry); });
}

LayerHardware::~LayerHardware() { platform::SetJournal({}); }

Exchanges LayerHardware::TakeExchanges(const std::string& /*device*/) {
  const std::lock_guard lock(lock_);
  return {.none = std::exchange(none_, true), .failures = std::exchange(failures_, {})};
}

void LayerHardware::LookAtDevices(Symptoms& symptoms) const {
  for (const platform::HidDevice& device : platform::CurrentMachine()->HidDevices()) {
    const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(device.report_descriptor);
    const std::string name = HidDeviceName(device.path, device.vendor, device.product) + ": ";
    if (!descriptor.refusal.empty()) {
      symptoms.device_notes.push_back(name + "its report descriptor cannot be read, " + descriptor.refusal);
    }
    if (descriptor.collections.size() > platform::kMostInterfaces) {
      symptoms.device_notes.push_back(name + "it declares " + Counted(descriptor.collections.size(), "collection") +
                                      ", of which only the first " + std::to_string(platform::kMostInterfaces) +
                                      " are looked at; no keyboard has so many");
    }
  }
}

void LayerHardware::Note(const platform::JournalEntry& entry) {
  const bool hid = entry.call == "HidD_SetFeature" || entry.call == "HidD_GetFeature";
  if (!hid && entry.call != "IWbemServices::ExecMethod") return;
  const std::lock_guard lock(lock_);
  if (trace_) {
    const std::string line = (hid ? entry.call + " " : "") + entry.arguments + " -> " + entry.result;
    std::fprintf(stderr, "trace: %s\n", Harmless(line).c_str());
  }
  none_ = false;
  if (!entry.failed) return;
  std::string text = hid ? HidFailure(entry) : "the firmware refused " + entry.arguments;
  if (std::ranges::count(failures_, text) == 0) failures_.push_back(std::move(text));  // attempts are repeated
}

}  // namespace zarnctl
