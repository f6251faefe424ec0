/// A firmware call through the channel and the platform layer, without the firmware's own time and pause.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <vector>

#include "firmware/firmware_methods.h"
#include "firmware/smbios.h"
#include "platform/standin/machine.h"

namespace {

class UnpausedMachine final : public platform::Machine {
 public:
  std::optional<platform::FirmwareClass> FindFirmwareClass() override {
    return platform::FirmwareClass{{{L"SetGamingKBBacklight"}}, {std::wstring(L"ACPI\\ZARN\\0_0")}};
  }
  platform::FirmwareAnswer CallFirmware(const std::wstring&, const std::wstring&,
                                        const platform::NamedValues&) override {
    return {S_OK, {{L"gmOutput", std::uint32_t{0}}}};
  }
  void Sleep(std::uint32_t) override {}
};

void FirmwareCall(benchmark::State& state) {
  platform::UseMachine(std::make_shared<UnpausedMachine>());
  const std::array<std::uint8_t, 16> packet = {1, 7, 30, 0, 2, 255, 0, 0, 3, 1};
  for ([[maybe_unused]] auto _ : state) {
    std::uint64_t output = 0;
    if (SetGamingKBBacklight(packet.data(), &output) != 1) state.SkipWithError("the call failed");
  }
}
BENCHMARK(FirmwareCall);

void WalkSmbiosTable(benchmark::State& state) {
  std::vector<std::uint8_t> table;
  for (int i = 0; i < 60; ++i) table.insert(table.end(), {1, 5, 0, 0, 1, 'A', 'c', 'm', 'e', 0, 0});
  table.insert(table.end(), {172, 9, 0, 0, 2, 91, 8, 4, 0, 0, 0});
  for ([[maybe_unused]] auto _ : state) {
    stSMBiosType172 record;
    if (!FindSMBiosType172(table, record)) state.SkipWithError("not found");
    benchmark::DoNotOptimize(record.itemCount);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(table.size()));
}
BENCHMARK(WalkSmbiosTable);

}  // namespace
