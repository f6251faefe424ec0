#include "zarnctl/doctor.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <set>
#include <utility>

#include "firmware/smbios.h"
#include "hid/lighting_hid.h"
#include "log/service_switch.h"
#include "platform/portable/report_descriptor.h"
#include "platform/portable/text.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using Kind = Finding::Kind;
using platform::Bytes;
using zarn::WRV520::Lighting::kAttributeReport;
using zarn::WRV520::Lighting::kKeyboardId;
using zarn::WRV520::Lighting::kLightingUsagePage;

constexpr const char* kSetIt = "'zarnctl config' shows where it is set";

std::string Hexadecimal(std::uint32_t number, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%0*X", digits, number);
  return text.data();
}

bool IsOn(platform::Machine& machine, const ServiceSwitch& service_switch) {
  return machine.RegistryValue(service_switch.key, service_switch.value) == Bytes{1, 0, 0, 0};
}

Finding ExamineLogging(platform::Machine& machine) {
  if (IsOn(machine, kLogSwitch)) return {Kind::Fine, "logging: on", kSetIt};
  return {Kind::Note, "logging: off, the plug-in writes no log", kSetIt};
}

Finding ExamineHybridMode(platform::Machine& machine) {
  if (IsOn(machine, kHybridSwitch)) return {Kind::Fine, "hybrid mode: on", ""};
  return {Kind::Note, "hybrid mode: off, a HID keyboard hides the devices of the embedded controller", kSetIt};
}

/// What the device answers about the lighting device ids that it serves.
Finding ExamineAttributes(platform::HidConnection& connection, std::size_t report_length, const std::string& name) {
  Bytes report(std::max<std::size_t>(report_length, 2));
  report.front() = kAttributeReport;
  if (const LONG error = connection.GetFeature(report)) {
    return {Kind::Missing, name + ": does not answer report A1 (error " + std::to_string(error) + ")",
            "plug it in again"};
  }
  const std::size_t count = std::min<std::size_t>(report[1], report.size() - 2);
  const std::set<std::uint8_t> served(report.begin() + 2, report.begin() + 2 + static_cast<std::ptrdiff_t>(count));
  std::string ids;
  for (const std::uint8_t id : served) ids += " " + Hexadecimal(id, 2);
  if (served.contains(kKeyboardId)) return {Kind::Fine, name + ": a lighting keyboard, serves" + ids, ""};
  return {Kind::Note, name + ": a lighting device, but no keyboard, serves" + (ids.empty() ? " nothing" : ids), ""};
}

Finding ExamineHidDevice(platform::Machine& machine, const platform::HidDevice& device) {
  const std::string name = platform::ReadableUtf8(device.path) + " (" + Hexadecimal(device.vendor, 4) + ":" +
                           Hexadecimal(device.product, 4) + ")";
  const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(device.report_descriptor);
  if (!descriptor.refusal.empty()) {
    return {Kind::Note, name + ": its report descriptor cannot be read, " + descriptor.refusal, ""};
  }
  std::string pages;
  for (const platform::HidCollection& collection : descriptor.collections) {
    if (collection.caps.UsagePage != kLightingUsagePage) {
      pages += (pages.empty() ? "" : ", ") + Hexadecimal(collection.caps.UsagePage, 4);
      continue;
    }
    const platform::OpenedHidDevice opened = machine.OpenHidDevice(device.path);
    if (opened.error == ERROR_ACCESS_DENIED) {
      return {Kind::Missing, name + ": a lighting device, which this user may not open",
              "plug it in again once the package's udev rule is installed, or run as root"};
    }
    if (opened.error != ERROR_SUCCESS) {
      return {Kind::Missing, name + ": cannot be opened (error " + std::to_string(opened.error) + ")",
              "plug it in again"};
    }
    return ExamineAttributes(*opened.connection, collection.caps.FeatureReportByteLength, name);
  }
  return {Kind::Note, name + ": no lighting device, its usage page is " + pages + ", not FF5A", ""};
}

void ExamineHidDevices(platform::Machine& machine, std::vector<Finding>& findings) {
  const std::vector<platform::HidDevice> devices = machine.HidDevices();
  if (devices.empty()) {
    findings.push_back(
        {Kind::Note, "HID devices: none", "plug the keyboard in; on Linux, look whether /sys/class/hidraw is there"});
  }
  for (const platform::HidDevice& device : devices) findings.push_back(ExamineHidDevice(machine, device));
}

std::string Items(const stSMBiosType172& record) {
  std::string text = "firmware " + std::to_string(record.biosMajor) + "." + std::to_string(record.biosMinor);
  const std::pair<std::uint8_t, const char*> kItems[] = {
      {kItemKeyboardZones, ", keyboard zones "}, {kItemRgbKeyboard, ", RGB "}, {kItemLightBar, ", light bar "}};
  for (const auto& [id, name] : kItems) {
    const std::optional<std::uint16_t> value = FirstItem(record, id);
    text += name + (value ? std::to_string(*value) : "not told");
  }
  return text;
}

Finding ExamineFirmwareRecord(platform::Machine& machine) {
  const std::optional<platform::SmbiosTable> table = machine.ReadSmbiosTable();
  const Bytes* const data = table ? std::get_if<Bytes>(&table->data) : nullptr;
  if (data == nullptr) {
    return {Kind::Missing, "SMBIOS table: cannot be read", "run as root, to whom alone a kernel shows it"};
  }
  stSMBiosType172 record;
  if (FindSMBiosType172(*data, record)) return {Kind::Fine, "SMBIOS structure of type 172: " + Items(record), ""};
  return {Kind::Missing, "SMBIOS table: no structure of type 172",
          "this is no notebook of the family; HID keyboards need none"};
}

Finding ExamineFirmwareClass(platform::Machine& machine) {
  const std::optional<platform::FirmwareClass> firmware = machine.FindFirmwareClass();
  if (firmware) {
    return {Kind::Fine, "firmware class ZarnGamingFunction: " + Counted(firmware->instance_names.size(), "instance"),
            ""};
  }
  return {Kind::Missing, "firmware class ZarnGamingFunction: not there, the embedded controller's devices stay dark",
          "it is published by Windows on the notebook itself; HID keyboards need none"};
}

}  // namespace

std::vector<Finding> Examine(platform::Machine& machine) {
  std::vector<Finding> findings = {ExamineLogging(machine), ExamineHybridMode(machine)};
  ExamineHidDevices(machine, findings);
  findings.push_back(ExamineFirmwareRecord(machine));
  findings.push_back(ExamineFirmwareClass(machine));
  return findings;
}

std::string LineOf(const Finding& finding) {
  static constexpr const char* kKinds[] = {"fine     ", "note     ", "missing  "};
  return kKinds[static_cast<std::size_t>(finding.kind)] + finding.answer +
         (finding.remedy.empty() ? "" : "; " + finding.remedy);
}

}  // namespace zarnctl
