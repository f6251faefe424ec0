#include "zarnctl/linux/record.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <utility>

#include "firmware/firmware_methods.h"
#include "firmware/smbios.h"
#include "hid/lighting_hid.h"
#include "log/service_switch.h"
#include "platform/standin/machine.h"
#include "platform/standin/report_descriptor.h"
#include "platform/standin/text.h"
#include "simulator/hid_keyboard.h"
#include "simulator/profile.h"
#include "zarnctl/complaint.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using platform::Bytes;
using platform::HidCollection;
using simulator::HidKeyboard;
using namespace zarn::WRV520::Lighting;  // NOLINT(google-build-using-namespace): the reports' and fields' numbers

constexpr std::size_t kMostIds = 63;    // of a profile; the plug-in reads no more either
constexpr std::size_t kReportHead = 2;  // the report id, then a count or the lighting device id

std::string Number(std::uint32_t number, int digits) { return "0x" + Hexadecimal(number, digits); }

std::string Listed(std::span<const std::uint8_t> bytes) {
  std::string text = "[";
  for (const std::uint8_t byte : bytes) text += (text.size() > 1 ? ", " : "") + Number(byte, 2);
  return text + "]";
}

std::string Truth(bool holds) { return holds ? "true" : "false"; }

/// A field of the collection's feature reports; of several declarations the last one counts. Null when there is none.
const HIDP_VALUE_CAPS* FindField(const HidCollection& collection, std::uint8_t report_id, std::uint16_t usage) {
  const HIDP_VALUE_CAPS* field = nullptr;
  for (const HIDP_VALUE_CAPS& caps : collection.values[HidP_Feature]) {
    if (caps.ReportID == report_id && caps.NotRange.Usage == usage) field = &caps;
  }
  return field;
}

/// The fields of a report that the collection declares, in the report's order, as "[[0x41, 8], ...]"; none when they do
/// not fit into it.
std::string DeclaredFields(const HidCollection& collection, std::uint8_t report_id,
                           std::span<const std::uint16_t> usages) {
  std::string text = "[";
  std::size_t bits = 8 * kReportHead;
  for (const std::uint16_t usage : usages) {
    const HIDP_VALUE_CAPS* const field = FindField(collection, report_id, usage);
    if (field == nullptr || field->BitSize == 0 || field->BitSize > 255) continue;
    text += (text.size() > 1 ? ", [" : "[") + Number(usage, 2) + ", " + std::to_string(field->BitSize) + "]";
    bits += field->BitSize;
  }
  return bits <= std::size_t{8} * collection.caps.FeatureReportByteLength ? text + "]" : "[]";
}

/// What the keyboard says of itself in report A3, as far as it declares it.
struct BaseInfo {
  std::uint32_t zones = 0;
  std::uint32_t effects = 0;
  std::size_t length = kReportHead;  // of what is declared
};

BaseInfo ReadBaseInfo(const Bytes& reply, const HidCollection& collection) {
  BaseInfo info;
  for (const std::uint16_t usage : HidKeyboard::kBaseInfoUsages) {
    const HIDP_VALUE_CAPS* const field = FindField(collection, kBaseInfoReply, usage);
    const std::size_t width = field == nullptr ? 0 : field->BitSize / 8;
    if (width > sizeof(std::uint32_t) || info.length + width > reply.size()) break;  // what follows has no known place
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) value |= std::uint32_t{reply[info.length + i]} << (8 * i);
    if (usage == 0x35) info.zones = value & 0xFFFF;  // the fields that HidKeyboard knows by these usages
    if (usage == 0x31) info.effects = value;
    info.length += width;
  }
  return info;
}

/// The report with everything behind its first `length` bytes blank: nobody knows what a device puts there.
Bytes Blanked(Bytes report, std::size_t length) {
  std::fill(report.begin() + static_cast<std::ptrdiff_t>(std::min(length, report.size())), report.end(), 0);
  return report;
}

/// A report read from the device; nothing when it does not answer.
std::optional<Bytes> Read(platform::HidConnection& connection, std::uint8_t report_id, std::size_t length) {
  Bytes report(length);
  report.front() = report_id;
  return connection.GetFeature(report) == ERROR_SUCCESS ? std::optional(report) : std::nullopt;
}

class Recorder {
 public:
  explicit Recorder(platform::Machine& machine) : machine_(machine) {}

  Recording Record() {
    text_ = "# What a machine was seen to be and to answer.\ntitle = \"Recorded\"\n";
    RecordFirmware();
    for (const platform::HidDevice& device : machine_.HidDevices()) RecordHidDevice(device);
    RecordSwitch(kLogSwitch);
    RecordSwitch(kHybridSwitch);
    return {std::move(text_), std::move(omissions_)};
  }

 private:
  void Omit(const std::string& what) {
    text_ += "# " + what + "\n";
    omissions_.push_back("not recorded: " + what);
  }

  void RecordFirmware() {
    const auto table = machine_.ReadSmbiosTable();
    const Bytes* const data = table ? std::get_if<Bytes>(&table->data) : nullptr;
    if (data == nullptr) return Omit("the SMBIOS table, which cannot be read");
    const std::span<const std::uint8_t> structure = FindOemStructure(*data);
    stSMBiosType172 record;
    if (!FindSMBiosType172(*data, record) || structure.size() < 6) {
      text_ += "# The SMBIOS table has no structure of type 172.\n";
      return;
    }
    const std::uint16_t zones = FirstItem(record, kItemKeyboardZones).value_or(0);
    const bool has_methods = machine_.FindFirmwareClass().has_value();
    const bool light_bar = FirstItem(record, kItemLightBar) == kLightBarThere;
    text_ += "[firmware]\nversion = \"" + std::to_string(record.biosMajor) + "." + std::to_string(record.biosMinor) +
             "\"\nrecord = " + Listed(structure) + "\n" + (has_methods ? "" : "instance = ''  # no methods here\n") +
             "[keyboard]\nzones = " + std::to_string(IsZoneCount(zones) ? zones : 0) +
             "\nrgb = " + Truth(FirstItem(record, kItemRgbKeyboard) == kRgbKeyboardThere) +
             "\n[light_bar]\npresent = " + Truth(light_bar) + "\n";
    if (light_bar && has_methods) RecordLightBar();
  }

  /// What discovery asks the firmware when a light bar is announced.
  void RecordLightBar() {
    std::array<std::uint8_t, 16> answer{};
    if (GetGamingLED(answer.data(), static_cast<std::int32_t>(answer.size())) == 0) {
      return Omit("the firmware's answer to GetGamingLED, which failed");
    }
    text_ += "report = " + Listed(std::span(answer).subspan(1)) + "\nreturn = " + std::to_string(answer[0]) + "\n";
  }

  void RecordHidDevice(const platform::HidDevice& device) {
    const std::string name = "the device " + Hexadecimal(device.vendor, 4) + ":" + Hexadecimal(device.product, 4);
    const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(device.report_descriptor);
    if (!descriptor.refusal.empty()) return Omit(name + ", whose descriptor cannot be read: " + descriptor.refusal);
    const auto lighting = std::ranges::find(descriptor.collections, kLightingUsagePage,
                                            [](const HidCollection& each) { return each.caps.UsagePage; });
    if (lighting == descriptor.collections.end()) return;
    const std::size_t length = lighting->caps.FeatureReportByteLength;
    text_ += "[[hid_keyboard]]\nvendor = " + Number(device.vendor, 4) + "\nproduct = " + Number(device.product, 4) +
             "\nreport_length = " + std::to_string(std::max<std::size_t>(length, 3)) +
             "\ndescriptor = " + Listed(device.report_descriptor) +
             "\nbase_info = " + DeclaredFields(*lighting, kBaseInfoReply, HidKeyboard::kBaseInfoUsages) +
             "\nupdate = " + DeclaredFields(*lighting, kUpdateReport, HidKeyboard::kUpdateUsages) + "\n";
    const platform::OpenedHidDevice opened = machine_.OpenHidDevice(device.path);
    const auto attributes = opened.error == ERROR_SUCCESS && length > kReportHead
                                ? Read(*opened.connection, kAttributeReport, length)
                                : std::nullopt;
    if (!attributes) {
      text_ += "answers = false\nzones = 0\n";
      return Omit(name + "'s answers: " +
                  (opened.error == ERROR_ACCESS_DENIED ? "this user may not open it" : "it does not answer report A1"));
    }
    const std::size_t claimed = kReportHead + attributes->at(1);
    text_ += "attribute_reply = " + Listed(Blanked(*attributes, claimed)) + "\n";
    const auto ids = std::span(*attributes).first(std::min(claimed, length)).subspan(kReportHead);
    if (std::ranges::find(ids, kKeyboardId) == ids.end()) {
      text_ += "zones = 0  # no keyboard\n";
      return;
    }
    text_ += "device_ids = " + Listed(ids.first(std::min(ids.size(), kMostIds))) + "\n";
    RecordBaseInfo(*opened.connection, *lighting, name);
  }

  void RecordBaseInfo(platform::HidConnection& connection, const HidCollection& lighting, const std::string& name) {
    const std::size_t length = lighting.caps.FeatureReportByteLength;
    Bytes request(length);
    request[0] = kBaseInfoRequest;
    request[1] = kKeyboardId;
    const bool asked = connection.SetFeature(request) == ERROR_SUCCESS;
    const auto reply = asked ? Read(connection, kBaseInfoReply, length) : std::nullopt;
    if (!reply) {
      text_ += "zones = 0\n";
      return Omit(name + "'s zones and effects: it does not answer report A3");
    }
    const BaseInfo info = ReadBaseInfo(*reply, lighting);
    text_ += "base_info_reply = " + Listed(Blanked(*reply, info.length)) + "\nzones = " + std::to_string(info.zones) +
             "\neffects = " + Number(info.effects, 8) + "\n";
  }

  void RecordSwitch(const ServiceSwitch& service_switch) {
    const auto value = machine_.RegistryValue(service_switch.key, service_switch.value);
    if (!value || value->size() != 4) return;
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) number |= std::uint32_t{value->at(i)} << (8 * i);
    text_ += "[registry.'" + platform::ReadableUtf8(service_switch.key) + "']\n" +
             platform::ReadableUtf8(service_switch.value) + " = " + std::to_string(number) + "\n";
  }

  platform::Machine& machine_;
  std::string text_;
  std::vector<std::string> omissions_;
};

}  // namespace

Recording Record(platform::Machine& machine) {
  Recording recording = Recorder(machine).Record();
  try {
    simulator::ParseProfile(recording.profile, "the record");
  } catch (const simulator::ProfileError& error) {
    throw Complaint(ExitCode::Failed, std::string("this machine cannot be recorded: ") + error.what());
  }
  return recording;
}

}  // namespace zarnctl
