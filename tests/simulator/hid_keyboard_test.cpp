#include "simulator/hid_keyboard.h"

#include <gtest/gtest.h>

#include "tests/support/hex.h"

namespace simulator {
namespace {

using test::Hex;
using Result = HidKeyboard::Result;

class HidKeyboardTest : public ::testing::Test {
 protected:
  explicit HidKeyboardTest(const HidKeyboard::Settings& settings = {.zones = 4, .effects = 0x7FF8})
      : keyboard(settings), connection(keyboard.Connect().value()) {}

  std::string Refusal(const std::string& report) {
    const HidLights before = keyboard.Lights();
    const HidKeyboard::Answer answer = keyboard.SetFeature(connection, test::Padded(Hex(report), 65));
    EXPECT_EQ(keyboard.Lights(), before);
    EXPECT_EQ(answer.result, Result::Refused);
    return answer.refusal;
  }

  HidKeyboard keyboard;
  const std::uint64_t connection;
};

TEST_F(HidKeyboardTest, LiesAsItsSettingsSayInTheFieldsThatItDeclares) {
  HidKeyboard liar({.report_length = 6,
                    .claimed_ids = 200,
                    .reply_id = 0x22,
                    .zones = 0x0102,
                    .base_info = {{0x34, 4}, {0x35, 12}, {0x33, 16}, {0x32, 8}}});
  EXPECT_EQ(liar.GetFeature(1, 0xA1).report, Hex("a1 c8 21 00 00 00"));
  EXPECT_EQ(liar.GetFeature(1, 0xA3).report, Hex("a3 22 02 05 00 02"));
}

TEST_F(HidKeyboardTest, RefusalsSayWhyAndChangeNothing) {
  EXPECT_EQ(Refusal("a4 22"), "the report is for device id 0x22, which is not served here");
  EXPECT_EQ(Refusal("a5 21"), "report 0xa5 cannot be set");
  EXPECT_EQ(Refusal("a4 21 03 00 00 00 00 00 00 01"), "there is no effect 3");
  EXPECT_EQ(Refusal("a4 21 02 00 00 00 00 00 00 10"), "zone mask 0x10 names zones that are not there");
  EXPECT_EQ(keyboard.SetFeature(connection, Hex("a4 21")).refusal, "the report has 2 bytes, must have 65");
}

}  // namespace
}  // namespace simulator
