#include "simulator/ec_firmware.h"

#include <gtest/gtest.h>

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

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

}  // namespace
}  // namespace simulator
