/// Any bytes as a lighting device's answers, with fields of any width: read inside their bounds, and with the values
/// that a second, simpler reader finds.
///
/// Input: the length of the reports, the bits of the five fields of the base information (0: undeclared), 64 bytes of
/// the attribute report, and the rest for the base information.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <span>

#include "fuzz/check.h"
#include "hid/lighting_hid.h"
#include "log/logger.h"
#include "tests/support/scripted_machine.h"

namespace {

using zarn::WRV520::Lighting::LightingHID;

constexpr std::array<std::uint8_t, 5> kUsages{0x34, 0x32, 0x35, 0x33, 0x31};

std::span<const std::uint8_t> Take(std::span<const std::uint8_t>& input, std::size_t size) {
  const auto taken = input.first(std::min(size, input.size()));
  input = input.subspan(taken.size());
  return taken;
}

platform::Bytes Answer(std::uint8_t id, std::span<const std::uint8_t> data) {
  platform::Bytes answer(data.begin(), data.end());
  answer.insert(answer.begin(), id);
  return answer;
}

/// The second reader of the five values.
std::array<std::uint32_t, 5> Expected(std::span<const std::uint8_t> bits, const platform::Bytes& reply) {
  std::array<std::uint32_t, 5> values{};
  std::size_t position = 1;
  for (std::size_t i = 0; i < bits.size(); ++i) {
    const std::size_t width = bits[i] / 8U;
    if (width > 4) break;
    for (std::size_t byte = 0; byte < width; ++byte, ++position) {
      // By hand, so that this is no copy of what is tested.
      const std::uint32_t value = position < reply.size() ? reply[position] : 0;
      values.at(i) |= value << (8 * byte);
    }
  }
  return values;
}

void Try(test::ScriptedMachine& machine, std::span<const std::uint8_t> input) {
  const auto length = std::max<std::uint8_t>(Take(input, 1)[0], 1);
  const auto bits = Take(input, kUsages.size());
  std::vector<test::DeclaredField> fields;
  for (std::size_t i = 0; i < bits.size(); ++i) {
    if (bits[i] != 0) fields.push_back({0xA3, kUsages.at(i), bits[i]});
  }
  test::ScriptedHid& device = machine.Plug(test::VendorCollection(0xFF5A, fields, length));
  device.answers[0xA1] = Answer(0xA1, Take(input, 64));
  device.answers[0xA3] = Answer(0xA3, input);

  std::vector<_HIDInfo> devices;
  LightingHID::GetLightingDeviceList(devices);
  Check(devices.size() == 1);
  Check(devices[0].deviceIds.size() < 64);
  LightingDeviceBaseInfo info;
  info.info34 = 0xEE;
  const bool told = LightingHID::GetLightingDeviceBaseInfo(0x21, info);
  Check(!told || (devices[0].deviceIds.contains(0x21) && info.deviceId == 0x21));
  if (!told) return;

  // Bytes beyond the report, and bytes that the device leaves out, read as 0.
  platform::Bytes reply(input.begin(), input.end());
  std::size_t bytes = length;  // of the longest report, which may be the one with these fields
  std::size_t field_bits = 0;
  for (const std::uint8_t each : bits) field_bits += each;
  bytes = std::max(bytes, (field_bits + 7) / 8);
  reply.resize(std::min({reply.size(), bytes, std::size_t{64}}));
  const auto expected = Expected(bits, reply);
  Check(info.info34 == static_cast<std::uint8_t>(expected[0]) && info.info32 == static_cast<std::uint8_t>(expected[1]));
  Check(info.zoneCount == static_cast<std::uint16_t>(expected[2]));
  Check(info.info33 == static_cast<std::uint16_t>(expected[3]) && info.effectMask == expected[4]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto machine = [] {
    zarn::WRV520::ReplaceLogger(std::make_shared<zarn::WRV520::TsLogAdapter>(nullptr));
    std::cerr.rdbuf(nullptr);  // every device without fields prints a line
    auto made = std::make_shared<test::ScriptedMachine>();
    Check(platform::UseMachine(made));
    return made;
  }();
  if (size < 1 + kUsages.size()) return 0;
  Try(*machine, {data, size});
  LightingHID::CloseLightingDevices();
  g_lightingDevices.clear();
  machine->hid_devices.clear();
  machine->TakeSleeps();
  return 0;
}
