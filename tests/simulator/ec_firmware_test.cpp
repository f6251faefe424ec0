#include "simulator/ec_firmware.h"

#include <gtest/gtest.h>

#include <tuple>

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Zone = KeyboardLights::Zone;

Bytes Padded(Bytes bytes, std::size_t length = 16) {
  bytes.resize(length);
  return bytes;
}

struct Firmware {
  explicit Firmware(int zones, bool light_bar = false, FirmwareVersion version = {2, 91})
      : ec({zones, light_bar, version}) {}

  /// What the firmware said against it; empty when it obeyed.
  std::string Send(std::string_view method, const EcFirmware::Input& input) {
    const KeyboardLights before = ec.Lights();
    const EcFirmware::Answer answer = ec.Call(method, input);
    EXPECT_TRUE(answer.refusal.empty() || ec.Lights() == before) << "a refused call changed the lights";
    EXPECT_TRUE(answer.output == EcFirmware::Answer{}.output && !answer.gm_return);
    return answer.refusal;
  }

  EcFirmware ec;
};

TEST(EcFirmwareTest, EffectRunsUntilTheZonesGetTheirColoursBack) {
  Firmware firmware(1);
  const Effect breathing{1, 255, 2, {0xFF, 0x10, 0x20}};
  EXPECT_EQ(firmware.Send("SetGamingRgbKb", L"65281"), "");
  EXPECT_EQ(firmware.Send("SetGamingKBBacklight", Padded({1, 255, 200, 0, 2, 0xFF, 0x10, 0x20, 3, 1})), "");
  EXPECT_EQ(firmware.Send("SetGamingLED", Padded({8, 0, 0, 0, 0, 1})), "");
  EXPECT_EQ(firmware.ec.Lights(), (KeyboardLights{{{true, {0xFF, 0, 0}}}, 200, breathing}));
  EXPECT_EQ(firmware.Send("SetGamingKBBacklight", Padded({0, 0, 80, 0, 0, 0, 0, 0, 3, 1})), "");
  EXPECT_EQ(firmware.ec.Lights(), (KeyboardLights{{{true, {0xFF, 0, 0}}}, 80, {}}));
}

TEST(EcFirmwareTest, StaticLightOnTheWholeDeviceLightsEveryZone) {
  const std::pair<Bytes, Color> cases[] = {{{0, 0, 70, 0, 0, 1, 2, 3, 3, 3}, {1, 2, 3}},
                                           {{0, 5, 70, 0, 0, 0, 0, 0, 3, 3}, {}},
                                           {{0, 0, 70, 0, 2, 0, 0, 0, 3, 3}, {}}};
  for (const auto& [packet, color] : cases) {
    Firmware firmware(3, true);
    EXPECT_EQ(firmware.Send("SetGamingKBBacklight", Padded({7, 5, 50, 0, 2, 9, 9, 9, 3, 3})), "");
    EXPECT_EQ(firmware.Send("SetGamingKBBacklight", Padded(packet)), "");
    EXPECT_EQ(firmware.ec.Lights(), (KeyboardLights{std::vector<Zone>(3, {true, color}), 70, {}}));
  }
}

TEST(EcFirmwareTest, RefusalNamesTheByteAndChangesNothing) {
  const struct {
    std::string_view method;
    EcFirmware::Input input;
    std::string refusal;
  } cases[] = {
      {"SetGamingLED", Padded({8, 0, 0, 0, 0, 8}), "byte 5 is 8, a switch bit for a zone that is not there"},
      {"SetGamingLED", Padded({8, 0, 0, 0, 0, 1, 0, 4}), "byte 7 is 4, must be 0"},
      {"SetGamingLED", L"8", "the input is text, must be bytes"},
      {"SetGamingKBBacklight", Padded({8, 7, 30, 0, 2, 255, 0, 0, 3, 1}), "byte 0 is 8, effects are 0 to 7"},
      {"SetGamingKBBacklight", Padded({1, 7, 30, 0, 2, 255, 0, 0, 1, 1}), "byte 8 is 1, must be 3"},
      {"SetGamingKBBacklight", Padded({1, 7, 30, 0, 2, 255, 0, 0, 3, 2}), "byte 9 is 2, must be 1"},
      {"SetGamingKBBacklight", Padded({1, 7, 30, 0, 2, 255, 0, 0, 3, 3}), "byte 9 is 3, but there is no light bar"},
      {"SetGamingKBBacklight", Padded({1, 7, 30, 0, 2, 255, 0, 0, 3, 1, 1}), "byte 10 is 1, must be 0"},
      {"SetGamingKBBacklight", Padded({1, 7, 30, 0, 2, 255, 0, 0, 3, 1}, 15), "the packet has 15 bytes, must have 16"},
      {"SetGamingRgbKb", L"5", "byte 0 is 5, must be exactly one zone bit"},
      {"SetGamingRgbKb", L"8", "byte 0 is 8, a zone that is not there"},
      {"SetGamingRgbKb", L"4294967297", "bits 32 to 63 are not 0"},
      {"SetGamingRgbKb", L"", "the input is no decimal number of 64 bits"},
      {"SetGamingRgbKb", L"\x661", "the input is no decimal number of 64 bits"},
      {"SetGamingRgbKb", L"18446744073709551617", "the input is no decimal number of 64 bits"},
      {"SetGamingRgbKb", Bytes{1}, "the input is bytes, must be a number as text"},
      {"GetGamingLED", L"11", "the input is 11, must be 16"},
      {"SetGamingLed", L"16", "there is no method \"SetGamingLed\""},
  };
  Firmware firmware(3);
  firmware.ec.Call("SetGamingLED", Padded({8, 0, 0, 0, 0, 7}));
  for (const auto& [method, input, refusal] : cases) EXPECT_EQ(firmware.Send(method, input), refusal);
  for (const FirmwareVersion version : {FirmwareVersion{2, 85}, {2, 86}, {2, 90}}) {
    EXPECT_FALSE(Firmware(3, false, version).Send("SetGamingLED", Padded({8})).empty());
  }
}

TEST(EcFirmwareTest, LightBarIsToldWhereTheVersionPutsIt) {
  const std::tuple<bool, FirmwareVersion, Bytes> reports[] = {
      {true, {2, 90}, {0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
      {true, {2, 91}, {0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}},
      {false, {2, 91}, Bytes(15)},
  };
  for (const auto& [light_bar, version, report] : reports) {
    const EcFirmware::Answer answer = EcFirmware({4, light_bar, version}).Call("GetGamingLED", L"16");
    EXPECT_EQ(answer.gm_return, 0U) << answer.refusal;
    EXPECT_EQ(std::get<Bytes>(answer.output), report);
  }
}

}  // namespace
}  // namespace simulator
