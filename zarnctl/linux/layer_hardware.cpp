#include "zarnctl/linux/layer_hardware.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "platform/standin/hid_interfaces.h"
#include "platform/standin/report_descriptor.h"
#include "platform/standin/wmi_api.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

/// A firmware call may fail before the firmware is asked.
std::string FirmwareFailure(const platform::JournalEntry& entry) {
  static constexpr std::pair<HRESULT, std::string_view> kReasons[] = {
      {platform::Status(WBEM_E_ACCESS_DENIED), "this user may not call the firmware; type sudo before the command"},
      {platform::Status(WBEM_E_PROVIDER_LOAD_FAILURE),
       "the kernel cannot call the firmware; 'sudo zarnctl doctor' tells what to do"},
      {platform::Status(WBEM_E_SERVER_TOO_BUSY), "another program has kept the firmware busy for 5 s; try again"}};
  const auto code = static_cast<HRESULT>(entry.code);
  const auto* const known = std::ranges::find(kReasons, code, [](const auto& reason) { return reason.first; });
  if (known != std::end(kReasons)) return std::string(known->second);
  return (code == platform::Status(WBEM_E_INVALID_PARAMETER)
              ? "the firmware describes other parameters, so it was not called: "
              : "the firmware refused ") +
         entry.arguments;
}

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
  std::vector<std::string> failures = TakeMissingMethods();
  const std::lock_guard lock(lock_);
  failures.insert(failures.end(), failures_.begin(), failures_.end());
  failures_.clear();
  return {.none = std::exchange(none_, true), .failures = std::move(failures)};
}

std::vector<std::string> LayerHardware::TakeMissingMethods() {
  const std::lock_guard lock(lock_);
  return std::exchange(missing_methods_, {});
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
  if (entry.call == "IWbemClassObject::GetMethod" && entry.failed) {
    const std::lock_guard lock(lock_);
    missing_methods_.push_back("the firmware has no method " + entry.arguments);
  }
  const bool hid = entry.call == "HidD_SetFeature" || entry.call == "HidD_GetFeature";
  if (!hid && entry.call != "IWbemServices::ExecMethod") return;
  const std::lock_guard lock(lock_);
  if (trace_) {
    const std::string line = (hid ? entry.call + " " : "") + entry.arguments + " -> " + entry.result;
    std::fprintf(stderr, "trace: %s\n", Harmless(line).c_str());
  }
  none_ = false;
  if (!entry.failed) return;
  failures_.push_back(hid ? HidFailure(entry) : FirmwareFailure(entry));
}

}  // namespace zarnctl
