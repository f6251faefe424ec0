#include "controller/description_format.h"

#include <algorithm>
#include <utility>

#include "controller/record_fields.h"
#include "controller/wire_archive.h"
#include "controller/zone_storage.h"

namespace {

template <typename Archive, typename Records>
void DescriptionFields(Archive& archive, Records& records, std::uint32_t protocol_version) {
  archive.Number(records.hw_kind);
  archive.Text(records.title);
  if (protocol_version >= kVersionWithMaker) archive.Text(records.maker_name);
  archive.Text(records.caption);
  archive.Text(records.info_text_1);
  archive.Text(records.info_text_2);
  archive.Text(records.info_text_3);
  const std::size_t modes = archive.Count(records.mode_list);
  archive.Number(records.current_mode);
  archive.Entries(records.mode_list, modes,
                  [&](auto& inner, auto& mode) { ModeFields(inner, mode, protocol_version); });
  ListFields(archive, records.zone_list, [](auto& inner, auto& zone) { ZoneFields(inner, zone); });
  ListFields(archive, records.led_list, [](auto& inner, auto& led) { LedFields(inner, led); });
  ColorListFields(archive, records.color_table);
}

/// Whether every list fits its 16-bit count, the colour table too, which gets as many entries as the zones have LEDs.
bool CanBeWrittenAgain(const ControllerRecords& records) {
  const std::size_t longest = std::max({records.mode_list.size(), records.zone_list.size(), records.led_list.size()});
  std::uint64_t zone_leds = 0;
  for (const ZoneRecord& zone : records.zone_list) zone_leds += zone.led_total;
  return longest <= kLongestList && zone_leds <= kLongestList;
}

}  // namespace

PackedBuffer PackDescription(const ControllerRecords& records, std::uint32_t protocol_version) {
  return PackFields([&](auto& archive) { DescriptionFields(archive, records, protocol_version); });
}

bool UnpackDescription(ControllerRecords& records, std::span<const std::uint8_t> buffer,
                       std::uint32_t protocol_version) {
  ControllerRecords updated = records;
  ReadArchive reader = BehindTotalSize(buffer);
  DescriptionFields(reader, updated, protocol_version);
  if (!reader.ok() || !CanBeWrittenAgain(updated)) return false;
  BindZoneStorage(updated);
  records = std::move(updated);
  return true;
}
