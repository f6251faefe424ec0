/// The binary formats: what a host waits for when it reads a controller and when it drags a colour.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "controller/description_format.h"
#include "controller/packet_formats.h"
#include "controller/zone_storage.h"

namespace {

/// A controller with nine modes and `leds` LEDs in one zone.
ControllerRecords RecordsWith(std::int64_t leds) {
  ControllerRecords records;
  records.title = records.caption = "Zarn EC Keyboard Device";
  records.maker_name = "Zarn";
  records.mode_list.resize(9);
  for (ModeRecord& mode : records.mode_list) mode.label = "BREATHING";
  records.zone_list.resize(1);
  records.zone_list[0].label = "Keyboard Backlight zone";
  records.zone_list[0].led_total = static_cast<std::uint32_t>(leds);
  for (std::int64_t i = 1; i <= leds; ++i)
    records.led_list.push_back({"Keyboard Backlight zone " + std::to_string(i), 0});
  BindZoneStorage(records);
  return records;
}

void PackDescription(benchmark::State& state) {
  const ControllerRecords records = RecordsWith(state.range(0));
  std::size_t size = 0;
  for ([[maybe_unused]] auto _ : state) {
    const PackedBuffer buffer = PackDescription(records, 3);
    benchmark::DoNotOptimize(buffer.bytes.get());
    size = buffer.size;
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}
BENCHMARK(PackDescription)->Arg(4)->Arg(128)->Arg(65535);

void UnpackDescription(benchmark::State& state) {
  const PackedBuffer buffer = PackDescription(RecordsWith(state.range(0)), 3);
  for ([[maybe_unused]] auto _ : state) {
    ControllerRecords records;
    benchmark::DoNotOptimize(UnpackDescription(records, buffer.view(), 3));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(buffer.size));
}
BENCHMARK(UnpackDescription)->Arg(4)->Arg(128)->Arg(65535);

/// The least that both could cost: allocating and copying as many bytes.
void CopyOfADescription(benchmark::State& state) {
  const PackedBuffer buffer = PackDescription(RecordsWith(state.range(0)), 3);
  for ([[maybe_unused]] auto _ : state) {
    const auto copy = std::make_unique_for_overwrite<std::uint8_t[]>(buffer.size);
    std::memcpy(copy.get(), buffer.bytes.get(), buffer.size);
    benchmark::DoNotOptimize(copy.get());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(buffer.size));
}
BENCHMARK(CopyOfADescription)->Arg(4)->Arg(128)->Arg(65535);

void UnpackColorTable(benchmark::State& state) {
  ControllerRecords records = RecordsWith(state.range(0));
  const PackedBuffer packet = PackColorTablePacket(records.color_table);
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(UnpackColorTablePacket(records, packet.view()));
}
BENCHMARK(UnpackColorTable)->Arg(4)->Arg(128);

}  // namespace
