#include "simulator/ec_firmware.h"

#include <gtest/gtest.h>

#include "tests/support/hex.h"

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Packet(const Bytes& bytes, std::size_t length = 16) { return test::Padded(bytes, length); }

TEST(EcFirmwareTest, RefusalNamesTheByteAndChangesNothing) {
  const std::tuple<std::string_view, EcFirmware::Input, std::string> cases[] = {
      {"SetGamingLED", Packet({8, 0, 0, 0, 0, 8}), "byte 5 is 8, a switch bit for a zone that is not there"},
      {"SetGamingLED", Packet({8, 0, 0, 0, 0, 1, 0, 4}), "byte 7 is 4, must be 0"},
      {"SetGamingLED", L"8", "the input is text, must be bytes"},
      {"SetGamingKBBacklight", Packet({8, 7, 30, 0, 2, 255, 0, 0, 3, 1}), "byte 0 is 8, effects are 0 to 7"},
      {"SetGamingKBBacklight", Packet({1, 7, 30, 0, 2, 255, 0, 0, 1, 1}), "byte 8 is 1, must be 3"},
      {"SetGamingKBBacklight", Packet({1, 7, 30, 0, 2, 255, 0, 0, 3, 2}), "byte 9 is 2, must be 1"},
      {"SetGamingKBBacklight", Packet({1, 7, 30, 0, 2, 255, 0, 0, 3, 3}), "byte 9 is 3, but there is no light bar"},
      {"SetGamingKBBacklight", Packet({1, 7, 30, 0, 2, 255, 0, 0, 3, 1, 1}), "byte 10 is 1, must be 0"},
      {"SetGamingKBBacklight", Packet({1, 7, 30, 0, 2, 255, 0, 0, 3, 1}, 15), "the packet has 15 bytes, must have 16"},
      {"SetGamingRgbKb", L"5", "byte 0 is 5, must be exactly one zone bit"},
      {"SetGamingRgbKb", L"8", "byte 0 is 8, a zone that is not there"},
      {"SetGamingRgbKb", L"4294967297", "bits 32 to 63 are not 0"},
      {"SetGamingRgbKb", L"", "the input is no decimal number of 64 bits"},
      {"SetGamingRgbKb", L"\x661", "the input is no decimal number of 64 bits"},
      {"SetGamingRgbKb", L"18446744073709551617", "the input is no decimal number of 64 bits"},
      {"SetGamingRgbKb", Bytes{1}, "the input is bytes, must be a number as text"},
      {"GetGamingLED", L"11", "the input is 11, must be 16"},
      {"SetGamingLed", L"16", "there is no method \"SetGamingLed\""}};
  EcFirmware ec({3, false, {2, 91}});
  ec.Call("SetGamingLED", Packet({8, 0, 0, 0, 0, 7}));
  const KeyboardLights before = ec.Lights();
  for (const auto& [method, input, refusal] : cases) {
    const EcFirmware::Answer answer = ec.Call(method, input);
    EXPECT_EQ(answer.refusal, refusal);
    EXPECT_TRUE(answer.output == EcFirmware::Answer{}.output && !answer.gm_return && ec.Lights() == before);
  }
  for (const FirmwareVersion version : {FirmwareVersion{2, 85}, {2, 86}, {2, 90}})
    EXPECT_FALSE(EcFirmware({3, false, version}).Call("SetGamingLED", Packet({8})).refusal.empty());
}

}  // namespace
}  // namespace simulator
