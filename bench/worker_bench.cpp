/// The update worker: what a request costs the host, and how long until the hardware operation begins.

#include <benchmark/benchmark.h>

#include <atomic>

#include "controller/rgb_controller.h"

namespace {

/// A device whose hardware operations only count themselves.
class CountingDevice final : public RGBController {
 public:
  CountingDevice() = default;
  CountingDevice(const CountingDevice&) = delete;
  CountingDevice& operator=(const CountingDevice&) = delete;
  ~CountingDevice() override { StopWorker(); }
  void DefineLayout() override {}
  void DeviceSpareHook() override {}
  void WriteColorsToDevice() override { Count(); }
  void WriteZoneToDevice(std::int32_t) override {}
  void WriteLedToDevice(std::int32_t) override {}
  void WriteModeToDevice() override { Count(); }
  void SelectFirstMode() override {}

  std::atomic<int> operations = 0;

 private:
  void Count() {
    ++operations;
    operations.notify_one();
  }
};

void CreateAndDestroy(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    const CountingDevice device;
    benchmark::DoNotOptimize(&device);
  }
}
BENCHMARK(CreateAndDestroy)->UseRealTime();

void RequestOnly(benchmark::State& state) {
  CountingDevice device;
  for ([[maybe_unused]] auto _ : state) device.RequestModePush();
}
BENCHMARK(RequestOnly);

void RequestUntilItsOperationBegins(benchmark::State& state) {
  CountingDevice device;
  for ([[maybe_unused]] auto _ : state) {
    const int before = device.operations;
    // The operation that is just ending may absorb a request, so it is raised until one begins.
    while (device.operations == before) device.RequestColorPush();
  }
}
BENCHMARK(RequestUntilItsOperationBegins)->UseRealTime();

}  // namespace
