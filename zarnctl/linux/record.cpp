#include <toml++/toml.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iostream>
#include <optional>
#include <span>
#include <sstream>
#include <utility>

#include "base/little_endian.h"
#include "firmware/firmware_methods.h"
#include "firmware/smbios.h"
#include "hid/lighting_hid.h"
#include "log/service_switch.h"
#include "platform/standin/machine.h"
#include "platform/standin/report_descriptor.h"
#include "platform/standin/text.h"
#include "simulator/hid_keyboard.h"
#include "simulator/profile.h"
#include "zarnctl/commands.h"
#include "zarnctl/linux/new_file.h"
#include "zarnctl/session.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using platform::Bytes;
using platform::HidCollection;
using simulator::HidKeyboard;
using namespace zarn::WRV520::Lighting;  // NOLINT(google-build-using-namespace): the reports' and fields' numbers

constexpr std::size_t kMostIds = 63;    // as many as a profile may have and the plug-in reads
constexpr std::size_t kReportHead = 2;  // the report id, then a count or the lighting device id

/// A number that the profile shows in hexadecimal.
toml::value<std::int64_t> Hexa(std::uint32_t number) {
  toml::value<std::int64_t> value(number);
  value.flags(toml::value_flags::format_as_hexadecimal);
  return value;
}

toml::array Listed(std::span<const std::uint8_t> bytes) {
  toml::array list;
  for (const std::uint8_t byte : bytes) list.push_back(Hexa(byte));
  return list;
}

/// A field of the collection's feature reports, as declared last. Null when there is none.
const HIDP_VALUE_CAPS* FindField(const HidCollection& collection, std::uint8_t report_id, std::uint16_t usage) {
  const HIDP_VALUE_CAPS* field = nullptr;
  for (const HIDP_VALUE_CAPS& caps : collection.values) {
    if (caps.ReportID == report_id && caps.NotRange.Usage == usage) field = &caps;
  }
  return field;
}

/// The declared fields of a report as pairs of usage and bits, in the report's order. None when they do not fit into
/// it.
toml::array DeclaredFields(const HidCollection& collection, std::uint8_t report_id,
                           std::span<const std::uint16_t> usages) {
  toml::array fields;
  std::size_t bits = 8 * kReportHead;
  for (const std::uint16_t usage : usages) {
    const HIDP_VALUE_CAPS* const field = FindField(collection, report_id, usage);
    if (field == nullptr || field->BitSize == 0 || field->BitSize > 255) continue;
    fields.push_back(toml::array{Hexa(usage), field->BitSize});
    bits += field->BitSize;
  }
  return bits <= std::size_t{8} * collection.caps.FeatureReportByteLength ? fields : toml::array();
}

/// Records what the keyboard tells of itself in report A3, without what it does not declare.
void RecordBaseInfo(const Bytes& reply, const HidCollection& collection, toml::table& keyboard) {
  std::uint32_t zones = 0;
  std::uint32_t effects = 0;
  std::size_t length = kReportHead;
  for (const std::uint16_t usage : HidKeyboard::kBaseInfoUsages) {
    const HIDP_VALUE_CAPS* const field = FindField(collection, kBaseInfoReply, usage);
    const std::size_t width = field == nullptr ? 0 : field->BitSize / 8;
    if (width > sizeof(std::uint32_t) || length + width > reply.size()) break;  // nobody knows where the rest stands
    const auto value = static_cast<std::uint32_t>(FromLittleEndian(std::span(reply).subspan(length, width)));
    if (usage == 0x35) zones = value & 0xFFFF;
    if (usage == 0x31) effects = value;
    length += width;
  }
  keyboard.insert("base_info_reply", Listed(std::span(reply).first(length)));
  keyboard.insert_or_assign("zones", zones);
  keyboard.insert("effects", Hexa(effects));
}

/// A report read from the device; nothing when it does not answer.
std::optional<Bytes> Read(platform::HidConnection& connection, std::uint8_t report_id, std::size_t length) {
  Bytes report(length);
  report.front() = report_id;
  return connection.GetFeature(report) == ERROR_SUCCESS ? std::optional(report) : std::nullopt;
}

/// Asks the machine itself. Takes no more of an answer than the plug-in understands. A record may be published, so it
/// has no user, no path and no serial number.
class Recorder {
 public:
  /// `trouble` keeps the firmware's methods from being seen or called; empty where nothing does.
  Recorder(platform::Machine& machine, std::string trouble) : machine_(machine), trouble_(std::move(trouble)) {}

  /// A profile in TOML. Throws Complaint when the simulator would refuse it.
  std::string Record() {
    RecordFirmware();
    for (const platform::HidDevice& device : machine_.HidDevices()) RecordHidDevice(device);
    if (!keyboards_.empty()) profile_.insert("hid_keyboard", std::move(keyboards_));
    RecordSwitch(kLogSwitch);
    RecordSwitch(kHybridSwitch);
    std::ostringstream text;
    text << "# What a machine was seen to be and to answer.\n";
    for (const std::string& omission : omissions_) text << "# " << omission << "\n";
    text << toml::toml_formatter(profile_) << "\n";
    try {
      simulator::ParseProfile(text.str(), "the record");
    } catch (const simulator::ProfileError& error) {
      throw Complaint(ExitCode::Failed, std::string("this machine cannot be recorded: ") + error.what());
    }
    return text.str();
  }

  /// A line for each thing that is not in the record.
  const std::vector<std::string>& omissions() const { return omissions_; }

 private:
  void Omit(const std::string& what) { omissions_.push_back("not recorded: " + what); }

  void RecordFirmware() {
    const auto table = machine_.ReadSmbiosTable();
    const Bytes* const data = table ? std::get_if<Bytes>(&table->data) : nullptr;
    if (data == nullptr) return Omit("the SMBIOS table, which cannot be read");
    const std::span<const std::uint8_t> structure = FindOemStructure(*data);
    stSMBiosType172 record;
    if (!FindSMBiosType172(*data, record) || structure.size() < 6) return;  // another family
    const std::uint16_t zones = FirstItem(record, kItemKeyboardZones).value_or(0);
    const auto firmware_class = machine_.FindFirmwareClass();
    const bool has_methods = firmware_class.has_value();
    toml::table firmware{{"version", std::to_string(record.biosMajor) + "." + std::to_string(record.biosMinor)},
                         {"record", Listed(structure)}};
    if (!has_methods) firmware.insert("instance", "");
    if (!has_methods && !trouble_.empty()) Omit("the firmware's methods: " + trouble_);
    if (has_methods) RecordMethods(*firmware_class, firmware);
    profile_.insert("firmware", std::move(firmware));
    profile_.insert("keyboard", toml::table{{"zones", IsZoneCount(zones) ? zones : 0},
                                            {"rgb", FirstItem(record, kItemRgbKeyboard) == kRgbKeyboardThere}});
    const bool has_light_bar = FirstItem(record, kItemLightBar) == kLightBarThere;
    toml::table light_bar{{"present", has_light_bar}};
    if (has_light_bar && has_methods) RecordLightBar(light_bar);
    profile_.insert("light_bar", std::move(light_bar));
  }

  static void RecordMethods(const platform::FirmwareClass& firmware_class, toml::table& firmware) {
    toml::array methods;
    for (const auto& method : firmware_class.methods) {
      if (!method.declaration.empty()) methods.push_back(method.declaration);
    }
    if (!methods.empty()) firmware.insert("methods", std::move(methods));
  }

  /// Asks the firmware what discovery asks when a light bar is announced.
  void RecordLightBar(toml::table& light_bar) {
    std::array<std::uint8_t, 16> answer{};
    if (GetGamingLED(answer.data(), static_cast<std::int32_t>(answer.size())) == 0) {
      return Omit("the firmware's answer to GetGamingLED, which failed");
    }
    light_bar.insert("report", Listed(std::span(answer).subspan(1)));
    light_bar.insert("return", answer[0]);
  }

  void RecordHidDevice(const platform::HidDevice& device) {
    const std::string name = "the device " + Hexadecimal(device.vendor, 4) + ":" + Hexadecimal(device.product, 4);
    const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(device.report_descriptor);
    if (!descriptor.refusal.empty()) return Omit(name + ", whose descriptor cannot be read: " + descriptor.refusal);
    const auto lighting = std::ranges::find(descriptor.collections, kLightingUsagePage,
                                            [](const HidCollection& each) { return each.caps.UsagePage; });
    if (lighting == descriptor.collections.end()) return;
    const std::size_t length = lighting->caps.FeatureReportByteLength;
    toml::table keyboard{{"vendor", Hexa(device.vendor)},
                         {"product", Hexa(device.product)},
                         {"report_length", std::max<std::int64_t>(static_cast<std::int64_t>(length), 3)},
                         {"descriptor", Listed(device.report_descriptor)},
                         {"base_info", DeclaredFields(*lighting, kBaseInfoReply, HidKeyboard::kBaseInfoUsages)},
                         {"update", DeclaredFields(*lighting, kUpdateReport, HidKeyboard::kUpdateUsages)},
                         {"zones", 0}};
    RecordAnswers(device, *lighting, name, keyboard);
    keyboards_.push_back(std::move(keyboard));
  }

  void RecordAnswers(const platform::HidDevice& device, const HidCollection& lighting, const std::string& name,
                     toml::table& keyboard) {
    const std::size_t length = lighting.caps.FeatureReportByteLength;
    const platform::OpenedHidDevice opened = machine_.OpenHidDevice(device.path);
    const auto attributes = opened.error == ERROR_SUCCESS && length > kReportHead
                                ? Read(*opened.connection, kAttributeReport, length)
                                : std::nullopt;
    if (!attributes) {
      keyboard.insert("answers", false);
      return Omit(name + "'s answers: " +
                  (opened.error == ERROR_ACCESS_DENIED ? "this user may not open it" : "it does not answer report A1"));
    }
    // Behind the ids that it claims a device could put a serial number.
    const auto claimed = std::span(*attributes).first(std::min(kReportHead + attributes->at(1), length));
    keyboard.insert("attribute_reply", Listed(claimed));
    const auto ids = claimed.subspan(kReportHead);
    if (std::ranges::find(ids, kKeyboardId) == ids.end()) return;
    keyboard.insert("device_ids", Listed(ids.first(std::min(ids.size(), kMostIds))));
    Bytes request(length);
    request[0] = kBaseInfoRequest;
    request[1] = kKeyboardId;
    const bool asked = opened.connection->SetFeature(request) == ERROR_SUCCESS;
    const auto reply = asked ? Read(*opened.connection, kBaseInfoReply, length) : std::nullopt;
    if (!reply) return Omit(name + "'s zones and effects: it does not answer report A3");
    RecordBaseInfo(*reply, lighting, keyboard);
  }

  void RecordSwitch(const ServiceSwitch& service_switch) {
    const auto value = machine_.RegistryValue(service_switch.key, service_switch.value);
    if (!value || value->size() != 4) return;
    toml::table& registry = *profile_.insert("registry", toml::table()).first->second.as_table();
    toml::table& key =
        *registry.insert(platform::ReadableUtf8(service_switch.key), toml::table()).first->second.as_table();
    key.insert(platform::ReadableUtf8(service_switch.value), static_cast<std::int64_t>(FromLittleEndian(*value)));
  }

  platform::Machine& machine_;
  const std::string trouble_;
  toml::table profile_{{"title", "Recorded"}};
  toml::array keyboards_;
  std::vector<std::string> omissions_;
};

}  // namespace

ExitCode RunRecord(Session& session, const TypedValues& typed) {
  const std::string& file = *typed.Find("FILE");
  Symptoms symptoms;
  session.hardware().LookAtDevices(symptoms);
  Recorder recorder(*platform::CurrentMachine(), symptoms.firmware.what);
  WriteNewFile(PathFromUtf8(file), recorder.Record());
  session.hardware().TakeRefusals();  // the record tells what did not answer
  std::cout << "written; 'zarnctl --machine " << Harmless(file) << " demo' plays it back\n";
  return Complain(recorder.omissions()) ? ExitCode::Refused : ExitCode::Done;
}

}  // namespace zarnctl
