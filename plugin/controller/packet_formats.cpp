#include "controller/packet_formats.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "controller/record_fields.h"
#include "controller/wire_archive.h"
#include "controller/zone_storage.h"

namespace {

/// The colours of `zone`: the low 16 bits of its LED count say how many, and the table may have fewer.
std::span<const PackedColor> ColorsOf(const ControllerRecords& records, const ZoneRecord& zone) {
  const std::span<const PackedColor> table = records.color_table;
  const std::span<const PackedColor> rest = table.subspan(std::min<std::size_t>(zone.first_index, table.size()));
  return rest.first(std::min<std::size_t>(static_cast<std::uint16_t>(zone.led_total), rest.size()));
}

}  // namespace

PackedBuffer PackModePacket(std::int32_t mode_index, const ModeRecord& mode, std::uint32_t protocol_version) {
  return PackFields([&](auto& archive) {
    archive.Number(mode_index);
    ModeFields(archive, mode, protocol_version);
  });
}

PackedBuffer PackModePacket(const ControllerRecords& records, std::int32_t mode_index, std::uint32_t protocol_version) {
  static const ModeRecord kNoMode;
  const ModeRecord* mode = EntryAt(records.mode_list, mode_index);
  return PackModePacket(mode_index, mode != nullptr ? *mode : kNoMode, protocol_version);
}

bool UnpackModePacket(ControllerRecords& records, std::span<const std::uint8_t> packet,
                      std::uint32_t protocol_version) {
  ReadArchive reader = BehindTotalSize(packet);
  std::int32_t mode_index = -1;
  reader.Number(mode_index);
  ModeRecord* mode = EntryAt(records.mode_list, mode_index);
  if (!reader.ok() || mode == nullptr) return false;

  ModeRecord updated = *mode;  // fields that do not travel in this version keep their values
  updated.mode_colors.clear();
  ModeFields(reader, updated, protocol_version);
  if (!reader.ok()) return false;
  *mode = std::move(updated);
  records.current_mode = mode_index;
  return true;
}

PackedBuffer PackColorTablePacket(std::span<const PackedColor> colors) {
  return PackFields([&](auto& archive) { ColorListFields(archive, colors); });
}

bool UnpackColorTablePacket(ControllerRecords& records, std::span<const std::uint8_t> packet) {
  ReadArchive reader = BehindTotalSize(packet);
  std::vector<PackedColor> colors;
  ColorListFields(reader, colors);
  if (!reader.ok() || colors.size() > records.color_table.size()) return false;
  std::copy(colors.begin(), colors.end(), records.color_table.begin());
  return !colors.empty();
}

PackedBuffer PackZoneColorsPacket(const ControllerRecords& records, std::int32_t zone_index) {
  const ZoneRecord* zone = EntryAt(records.zone_list, zone_index);
  const auto colors = zone != nullptr ? ColorsOf(records, *zone) : std::span<const PackedColor>();
  return PackFields([&](auto& archive) {
    archive.Number(zone_index);
    ColorListFields(archive, colors);
  });
}

bool UnpackZoneColorsPacket(ControllerRecords& records, std::span<const std::uint8_t> packet) {
  ReadArchive reader = BehindTotalSize(packet);
  std::uint32_t zone_index = 0;
  std::vector<PackedColor> colors;
  reader.Number(zone_index);
  ColorListFields(reader, colors);
  const ZoneRecord* zone = EntryAt(records.zone_list, zone_index);
  if (!reader.ok() || zone == nullptr) return false;
  if (colors.empty() || colors.size() > ColorsOf(records, *zone).size()) return false;
  std::copy(colors.begin(), colors.end(), records.color_table.begin() + static_cast<std::ptrdiff_t>(zone->first_index));
  return true;
}

PackedBuffer PackOneColorPacket(const ControllerRecords& records, std::int32_t led_index) {
  const PackedColor* color = EntryAt(records.color_table, led_index);
  PackedBuffer packet{std::make_unique<std::uint8_t[]>(kOneColorPacketSize), kOneColorPacketSize};
  WriteArchive writer(packet.bytes.get());
  writer.Number(led_index);
  writer.Number(color != nullptr ? *color : PackedColor{0});
  return packet;
}

bool UnpackOneColorPacket(ControllerRecords& records, std::span<const std::uint8_t> packet) {
  ReadArchive reader(packet);
  std::int32_t led_index = -1;
  PackedColor color = 0;
  reader.Number(led_index);
  reader.Number(color);
  PackedColor* entry = EntryAt(records.color_table, led_index);
  if (!reader.ok() || EntryAt(records.led_list, led_index) == nullptr || entry == nullptr) return false;
  *entry = color;
  return true;
}
