#include "firmware/smbios.h"

#include <algorithm>
#include <limits>

#include "base/little_endian.h"
#include "firmware/com_resources.h"
#include "firmware/wmi_connection.h"

namespace {

constexpr std::uint8_t kOemType = 172;
constexpr std::size_t kHeaderSize = 4;
constexpr int kItemsOffset = 6;
constexpr int kItemSize = 3;

std::uint16_t ReadU16(std::span<const std::uint8_t> bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(FromLittleEndian(bytes.subspan(offset, sizeof(std::uint16_t))));
}

/// The structure of type 172 and everything behind it; empty when the walk ends before one is found.
std::span<const std::uint8_t> SkipToOemStructure(std::span<const std::uint8_t> rest) {
  static constexpr std::uint8_t kEndOfStrings[] = {0, 0};
  while (!rest.empty() && rest[0] != kOemType) {
    if (rest.size() < 2 || rest[1] > rest.size()) return {};
    const auto strings = rest.subspan(rest[1]);
    const auto end = std::search(strings.begin(), strings.end(), std::begin(kEndOfStrings), std::end(kEndOfStrings));
    if (end == strings.end()) return {};
    rest = strings.subspan(static_cast<std::size_t>(end - strings.begin()) + std::size(kEndOfStrings));
  }
  return rest;
}

std::size_t CountItems(const stSMBiosType172& record) {
  return static_cast<std::size_t>(std::max(record.itemCount, 0));
}

}  // namespace

int ReadRawSmbiosTable(RawSmbiosTable& table) {
  table.data.reset();
  table.length = 0;

  WmiConnection connection;
  Variant data;
  Variant major;
  Variant minor;
  const NamedVariant properties[] = {
      {L"SMBiosData", data}, {L"SmbiosMajorVersion", major}, {L"SmbiosMinorVersion", minor}};
  if (OpenWmiConnection(connection) == 0 ||
      ReadInstanceProperties(connection, L"MSSMBios_RawSMBiosTables", properties) == 0) {
    return 0;
  }
  table.smbiosMajor = V_UI1(major.Get());
  table.smbiosMinor = V_UI1(minor.Get());

  const ArrayBytes bytes(*data.Get());
  if (!bytes) return 0;
  table.data = std::make_unique<std::uint8_t[]>(bytes.Get().size());
  table.length = static_cast<std::uint32_t>(bytes.Get().size());
  std::copy(bytes.Get().begin(), bytes.Get().end(), table.data.get());
  return 1;
}

bool FindSMBiosType172(const RawSmbiosTable& table, stSMBiosType172& record) {
  // A length that is negative as a signed number is nonsense, not a table of 2 GiB.
  const bool plausible = table.length <= std::uint32_t{std::numeric_limits<std::int32_t>::max()};
  return FindSMBiosType172(std::span<const std::uint8_t>(table.data.get(), plausible ? table.length : 0), record);
}

bool FindSMBiosType172(std::span<const std::uint8_t> table, stSMBiosType172& record) {
  record = {};
  const std::span<const std::uint8_t> found = SkipToOemStructure(table);
  if (found.size() < kHeaderSize || found.size() < found[1]) return false;

  record.type = found[0];
  record.length = found[1];
  record.handle = ReadU16(found, 2);
  if (found.size() >= kItemsOffset) {
    record.biosMajor = found[4];
    record.biosMinor = found[5];
  }
  record.itemCount = (record.length - kItemsOffset) / kItemSize;  // -1 or less for a length below that of the header
  for (std::size_t i = 0; i < CountItems(record); ++i) {
    record.itemIds[i] = found[kItemsOffset + kItemSize * i];
    record.itemValues[i] = ReadU16(found, kItemsOffset + kItemSize * i + 1);
  }
  return true;
}

bool ReadSMBiosType172(stSMBiosType172& record) {
  RawSmbiosTable table;
  ReadRawSmbiosTable(table);
  return FindSMBiosType172(table, record);
}

std::span<const std::uint8_t> FindOemStructure(std::span<const std::uint8_t> table) {
  stSMBiosType172 record;
  return FindSMBiosType172(table, record) ? SkipToOemStructure(table).first(record.length)
                                          : std::span<const std::uint8_t>();
}

AnnouncedLights FindAnnouncedLights(const stSMBiosType172& record) {
  AnnouncedLights lights;
  for (std::size_t i = 0; i < CountItems(record); ++i) {
    const std::uint8_t id = record.itemIds.at(i);
    const std::uint16_t value = record.itemValues.at(i);
    if (id == kItemKeyboardZones && IsZoneCount(value)) lights.keyboard = value != 0;
    if (id == kItemRgbKeyboard && (value == kRgbKeyboardNone || value == kRgbKeyboardThere)) {
      lights.rgb_keyboard = value == kRgbKeyboardThere;
    }
    if (id != kItemLightBar) continue;
    lights.light_bar = value == kLightBarThere;
    break;
  }
  return lights;
}

std::optional<std::uint16_t> FirstItem(const stSMBiosType172& record, std::uint8_t id) {
  for (std::size_t i = 0; i < CountItems(record); ++i) {
    if (record.itemIds[i] == id) return record.itemValues[i];
  }
  return std::nullopt;
}
