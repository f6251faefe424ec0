/// HID lighting through the plug-in's HID code, the platform layer and a simulated keyboard that answers at once.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "hid/lighting_hid.h"
#include "log/logger.h"
#include "platform/standin/report_descriptor.h"
#include "simulator/road/notebook_machine.h"

namespace {

using zarn::WRV520::Lighting::kKeyboardId;
using zarn::WRV520::Lighting::LightingHID;

/// A notebook with so many keyboards, all in the list of lighting devices.
class Keyboards {
 public:
  explicit Keyboards(std::size_t count) {
    zarn::WRV520::ReplaceLogger(std::make_shared<zarn::WRV520::TsLogAdapter>(nullptr));
    simulator::Profile profile;
    simulator::HidKeyboard::Settings keyboard;
    keyboard.zones = 4;
    profile.hid_keyboards.assign(count, keyboard);
    notebook_ = std::make_shared<simulator::Notebook>(std::move(profile));
    platform::UseMachine(simulator::MakeMachine(notebook_));
    std::vector<_HIDInfo> ignored;
    LightingHID::GetLightingDeviceList(ignored);
  }
  Keyboards(const Keyboards&) = delete;
  Keyboards& operator=(const Keyboards&) = delete;
  ~Keyboards() {
    LightingHID::CloseLightingDevices();
    g_lightingDevices.clear();
  }

  /// Otherwise the record of the wire grows with every exchange.
  void ForgetWire() { notebook_->TakeWire(); }

 private:
  std::shared_ptr<simulator::Notebook> notebook_;
};

void LightingUpdate(benchmark::State& state) {
  Keyboards keyboards(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) {
    LightingHID::SetLightingDeviceUpdateReport(kKeyboardId, 2, 5, 2, 50, 0xFF, 0, 0, 0x000F);
    keyboards.ForgetWire();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(LightingUpdate)->Arg(1)->Arg(4);

void BuildTheListOfLightingDevices(benchmark::State& state) {
  Keyboards keyboards(static_cast<std::size_t>(state.range(0)));
  std::vector<_HIDInfo> devices;
  for ([[maybe_unused]] auto _ : state) {
    LightingHID::CloseLightingDevices();
    LightingHID::GetLightingDeviceList(devices);
    keyboards.ForgetWire();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BuildTheListOfLightingDevices)->Arg(1)->Arg(4);

void ParseLightingDescriptor(benchmark::State& state) {
  const simulator::HidKeyboard keyboard{{}};
  const std::vector<std::uint8_t>& descriptor = keyboard.report_descriptor();
  for ([[maybe_unused]] auto _ : state) {
    if (platform::ParseReportDescriptor(descriptor).collections.empty()) state.SkipWithError("refused");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(descriptor.size()));
}
BENCHMARK(ParseLightingDescriptor);

}  // namespace
