/// Any bytes as an update packet: ignored whole, or applied without growing or shrinking a list. The first byte chooses
/// the packet and the protocol version.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "controller/description_format.h"
#include "controller/packet_formats.h"
#include "controller/zone_storage.h"
#include "fuzz/check.h"

namespace {

ControllerRecords TwoZones() {
  ControllerRecords records;
  records.mode_list.resize(2);
  records.zone_list.resize(2);
  records.zone_list[0].led_total = 5;
  records.zone_list[1].led_total = 3;
  records.led_list.resize(8);
  BindZoneStorage(records);
  return records;
}

bool Unpack(ControllerRecords& records, std::span<const std::uint8_t> packet, unsigned choice) {
  switch (choice % 4) {
    case 0:
      return UnpackModePacket(records, packet, choice / 4);
    case 1:
      return UnpackColorTablePacket(records, packet);
    case 2:
      return UnpackZoneColorsPacket(records, packet);
    default:
      return UnpackOneColorPacket(records, packet);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  ControllerRecords records = TwoZones();
  const PackedBuffer before = PackDescription(records, 3);
  const bool applied = Unpack(records, {data + 1, size - 1}, data[0]);
  const PackedBuffer after = PackDescription(records, 3);
  Check(applied || std::ranges::equal(before.view(), after.view()));
  Check(records.color_table.size() == 8 && records.mode_list.size() == 2);
  return 0;
}
