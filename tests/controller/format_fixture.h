/// Records whose bytes the tests of the binary formats spell out.
#pragma once

#include <cstdint>
#include <vector>

#include "controller/description_format.h"
#include "controller/zone_storage.h"
#include "zarn_lighting/records.h"

namespace test {

using Bytes = std::vector<std::uint8_t>;

/// Two-letter title AB, one mode M, one zone K, one LED L, one red colour.
inline ControllerRecords ExampleRecords() {
  ControllerRecords records;
  records.title = "AB";
  records.maker_name = "Z";
  records.caption = "AB";
  records.hw_kind = 5;
  ModeRecord mode;
  mode.label = "M";
  mode.hw_code = 255;
  mode.capabilities = 0x30;
  mode.brightness_highest = 100;
  mode.brightness_setting = 50;
  mode.color_source = 1;
  records.mode_list = {mode};
  ZoneRecord zone;
  zone.label = "K";
  zone.zone_kind = 1;
  zone.led_total = zone.led_total_min = zone.led_total_max = 1;
  records.zone_list = {zone};
  records.led_list = {{"L", 7}};
  BindZoneStorage(records);
  records.color_table[0] = 0xFF;
  return records;
}

inline ZoneRecord ZoneOf(std::uint32_t leds) {
  ZoneRecord zone;
  zone.led_total = leds;
  return zone;
}

/// Zones of 5 and 3 LEDs with colours 1 to 8, and two modes.
inline ControllerRecords TwoZones() {
  ControllerRecords records;
  records.mode_list.resize(2);
  records.zone_list = {ZoneOf(5), ZoneOf(3)};
  records.led_list.resize(8);
  BindZoneStorage(records);
  for (std::uint32_t i = 0; i < 8; ++i) records.color_table[i] = i + 1;
  return records;
}

inline Bytes Copy(const PackedBuffer& buffer) { return {buffer.view().begin(), buffer.view().end()}; }

/// Everything that travels, to compare records by.
inline Bytes Snapshot(const ControllerRecords& records) { return Copy(PackDescription(records, 3)); }

}  // namespace test
