#include "controller/zone_storage.h"

#include <cstdint>

void BindZoneStorage(ControllerRecords& records) {
  std::uint32_t total = 0;
  for (const ZoneRecord& zone : records.zone_list) total += zone.led_total;
  records.color_table.resize(total);

  std::uint32_t running = 0;
  for (ZoneRecord& zone : records.zone_list) {
    const bool has_leds = zone.led_total > 0;
    zone.first_index = running;
    zone.color_view = has_leds ? EntryAt(records.color_table, running) : nullptr;
    zone.led_view = has_leds ? EntryAt(records.led_list, running) : nullptr;
    running += zone.led_total;
  }
}
