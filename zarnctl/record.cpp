#include "zarnctl/record.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <sstream>
#include <utility>

#include "firmware/smbios.h"
#include "hid/lighting_hid.h"
#include "log/service_switch.h"
#include "platform/portable/report_descriptor.h"
#include "platform/portable/text.h"
#include "simulator/hid_keyboard.h"

namespace zarnctl {
namespace {

using platform::Bytes;
using platform::HidCollection;
using simulator::HidKeyboard;
using namespace zarn::WRV520::Lighting;  // NOLINT(google-build-using-namespace): the reports' and fields' numbers

std::string Hexadecimal(std::uint32_t number, int digits = 2) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%0*X", digits, number);
  return text.data();
}

std::string Listed(std::span<const std::uint8_t> bytes) {
  std::string text = "[";
  for (const std::uint8_t byte : bytes) text += (text.size() > 1 ? ", " : "") + Hexadecimal(byte);
  return text + "]";
}

/// The structure of type 172 as it stands in the table; nothing when there is none.
std::optional<Bytes> FirmwareStructure(const Bytes& table) {
  stSMBiosType172 record;
  if (!FindSMBiosType172(table, record) || record.length < 6) return std::nullopt;
  // The first place where type, length and handle stand together is the structure: others are looked past alike.
  const std::array<std::uint8_t, 6> head = {record.type,
                                            record.length,
                                            static_cast<std::uint8_t>(record.handle),
                                            static_cast<std::uint8_t>(record.handle >> 8),
                                            record.biosMajor,
                                            record.biosMinor};
  const auto begin = std::search(table.begin(), table.end(), head.begin(), head.end());
  if (table.end() - begin < record.length) return std::nullopt;
  return Bytes(begin, begin + record.length);
}

std::string RecordFirmware(platform::Machine& machine) {
  const auto table = machine.ReadSmbiosTable();
  const Bytes* const data = table ? std::get_if<Bytes>(&table->data) : nullptr;
  if (data == nullptr) return "# The SMBIOS table could not be read.\n";
  const auto structure = FirmwareStructure(*data);
  if (!structure) return "# The SMBIOS table has no structure of type 172.\n";
  stSMBiosType172 record;
  FindSMBiosType172(*data, record);
  const std::uint16_t zones = FirstItem(record, kItemKeyboardZones).value_or(0);
  std::ostringstream text;
  text << "[firmware]\nversion = \"" << int{record.biosMajor} << "." << int{record.biosMinor}
       << "\"\nrecord = " << Listed(*structure) << "\n";
  if (!machine.FindFirmwareClass()) text << "instance = ''  # no methods here\n";
  text << "[keyboard]\nzones = " << (zones == 1 || zones == 3 || zones == 4 ? zones : 0)
       << "\nrgb = " << (FirstItem(record, kItemRgbKeyboard) == kRgbKeyboardThere ? "true" : "false")
       << "\n[light_bar]\npresent = " << (FirstItem(record, kItemLightBar) == kLightBarThere ? "true" : "false")
       << "\n";
  return text.str();
}

/// The fields of a report that the collection declares, in the report's order, as "[[0x41, 8], ...]".
std::string DeclaredFields(const HidCollection& collection, std::uint8_t report_id,
                           std::span<const std::uint16_t> usages) {
  std::string text = "[";
  for (const std::uint16_t usage : usages) {
    const HIDP_VALUE_CAPS* declared = nullptr;
    for (const HIDP_VALUE_CAPS& caps : collection.values[HidP_Feature]) {
      if (caps.ReportID == report_id && caps.NotRange.Usage == usage) declared = &caps;  // the last one counts
    }
    if (declared == nullptr || declared->BitSize > 255) continue;
    text += (text.size() > 1 ? ", [" : "[") + Hexadecimal(usage) + ", " + std::to_string(declared->BitSize) + "]";
  }
  return text + "]";
}

/// A report read from the device; nothing when it does not answer.
std::optional<Bytes> Read(platform::HidConnection& connection, std::uint8_t report_id, std::size_t length) {
  Bytes report(length);
  report.front() = report_id;
  return connection.GetFeature(report) == ERROR_SUCCESS ? std::optional(report) : std::nullopt;
}

/// The value of a declared field of the base information.
std::uint32_t ValueIn(const Bytes& reply, const HidCollection& collection, std::uint8_t wanted) {
  std::size_t position = 2;  // behind the report id and the device id
  for (const std::uint16_t usage : HidKeyboard::kBaseInfoUsages) {
    std::size_t width = 0;
    for (const HIDP_VALUE_CAPS& caps : collection.values[HidP_Feature]) {
      if (caps.ReportID == kBaseInfoReply && caps.NotRange.Usage == usage) width = caps.BitSize / 8;
    }
    if (width > 4 || position + width > reply.size()) return 0;
    if (usage == wanted) {
      std::uint32_t value = 0;
      for (std::size_t i = 0; i < width; ++i) value |= std::uint32_t{reply[position + i]} << (8 * i);
      return value;
    }
    position += width;
  }
  return 0;
}

std::string RecordAnswers(platform::HidConnection& connection, const HidCollection& collection) {
  const std::size_t length = collection.caps.FeatureReportByteLength;
  const auto attributes = Read(connection, kAttributeReport, length);
  if (!attributes) return "answers = false  # not seen to answer report A1\nzones = 0\n";
  std::string text = "attribute_reply = " + Listed(*attributes) + "\n";
  Bytes request(length);
  request[0] = kBaseInfoRequest;
  request[1] = kKeyboardId;
  const bool asked = connection.SetFeature(request) == ERROR_SUCCESS;
  const auto reply = asked ? Read(connection, kBaseInfoReply, length) : std::nullopt;
  if (!reply) return text + "zones = 0  # not seen to answer report A3\n";
  return text + "base_info_reply = " + Listed(*reply) +
         "\nzones = " + std::to_string(ValueIn(*reply, collection, FieldUsage::ZoneCount)) +
         "\neffects = " + Hexadecimal(ValueIn(*reply, collection, FieldUsage::EffectMask), 8) + "\n";
}

std::string RecordHidDevice(platform::Machine& machine, const platform::HidDevice& device) {
  const auto collections = platform::ParseReportDescriptor(device.report_descriptor).collections;
  const auto lighting =
      std::ranges::find(collections, kLightingUsagePage, [](const HidCollection& each) { return each.caps.UsagePage; });
  if (lighting == collections.end()) return "";
  const HidCollection& collection = *lighting;
  std::string text = "[[hid_keyboard]]\nvendor = " + Hexadecimal(device.vendor, 4) +
                     "\nproduct = " + Hexadecimal(device.product, 4) +
                     "\nreport_length = " + std::to_string(std::max<int>(collection.caps.FeatureReportByteLength, 3)) +
                     "\ndescriptor = " + Listed(device.report_descriptor) +
                     "\nbase_info = " + DeclaredFields(collection, kBaseInfoReply, HidKeyboard::kBaseInfoUsages) +
                     "\nupdate = " + DeclaredFields(collection, kUpdateReport, HidKeyboard::kUpdateUsages) + "\n";
  const platform::OpenedHidDevice opened = machine.OpenHidDevice(device.path);
  if (opened.error != ERROR_SUCCESS || collection.caps.FeatureReportByteLength < 3) {
    return text + "answers = false  # could not be opened\nzones = 0\n";
  }
  return text + RecordAnswers(*opened.connection, collection);
}

std::string RecordSwitch(platform::Machine& machine, const ServiceSwitch& service_switch) {
  const auto value = machine.RegistryValue(service_switch.key, service_switch.value);
  if (!value || value->size() != 4) return "";
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) number |= std::uint32_t{value->at(i)} << (8 * i);
  return "[registry.'" + platform::ReadableUtf8(service_switch.key) + "']\n" +
         platform::ReadableUtf8(service_switch.value) + " = " + std::to_string(number) + "\n";
}

}  // namespace

std::string RecordOf(platform::Machine& machine) {
  std::string text = "# What a machine was seen to be and to answer.\ntitle = \"Recorded\"\n" + RecordFirmware(machine);
  for (const platform::HidDevice& device : machine.HidDevices()) text += RecordHidDevice(machine, device);
  return text + RecordSwitch(machine, kLogSwitch) + RecordSwitch(machine, kHybridSwitch);
}

}  // namespace zarnctl
