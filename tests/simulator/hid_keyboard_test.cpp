#include "simulator/hid_keyboard.h"

#include <gtest/gtest.h>

#include "platform/portable/hid_api.h"
#include "simulator/notebook_machine.h"
#include "tests/support/hex.h"

namespace simulator {
namespace {

using Bytes = std::vector<std::uint8_t>;
using test::Hex;
using Kind = HidKeyboard::Misbehaviour::Kind;
using Result = HidKeyboard::Result;

Bytes Padded(const std::string& beginning, std::size_t length = 65) {
  Bytes report = Hex(beginning);
  report.resize(length);
  return report;
}

class HidKeyboardTest : public ::testing::Test {
 protected:
  explicit HidKeyboardTest(const HidKeyboard::Settings& settings = {.zones = 4, .effects = 0x7FF8})
      : keyboard(settings), connection(keyboard.Connect().value()) {}

  std::string Refusal(const std::string& report) {
    const HidLights before = keyboard.Lights();
    const HidKeyboard::Answer answer = keyboard.SetFeature(connection, Padded(report));
    EXPECT_EQ(keyboard.Lights(), before);
    EXPECT_EQ(answer.result, Result::Refused);
    return answer.refusal;
  }

  HidKeyboard keyboard;
  const std::uint64_t connection;
};

TEST_F(HidKeyboardTest, ItsDescriptorDeclaresTheFieldsOfItsReportsAndPadding) {
  const Bytes narrow = HidKeyboard({.report_length = 4, .base_info = {{0x35, 12}}, .update = {}}).report_descriptor();
  const Bytes end =
      Hex("85 a3 09 30 75 08 95 01 b1 02 09 35 75 0c 95 01 b1 02 75 01 95 04 b1 03 "
          "85 a4 09 40 75 08 95 01 b1 02 75 08 95 02 b1 03 c0");
  EXPECT_EQ(Bytes(narrow.end() - static_cast<std::ptrdiff_t>(end.size()), narrow.end()), end);
}

TEST_F(HidKeyboardTest, AnswersWhatItIsAndForWhichId) {
  EXPECT_EQ(keyboard.GetFeature(connection, 0xA1).report, Padded("a1 01 21"));
  EXPECT_EQ(keyboard.SetFeature(connection, Padded("a2 21")).refusal, "");
  EXPECT_EQ(keyboard.GetFeature(connection, 0xA3).report, Padded("a3 21 01 02 04 00 05 00 f8 7f 00 00"));

  HidKeyboard liar({.report_length = 6,
                    .claimed_ids = 200,
                    .reply_id = 0x22,
                    .zones = 0x0102,
                    .base_info = {{0x34, 4}, {0x35, 12}, {0x33, 16}}});
  EXPECT_EQ(liar.GetFeature(1, 0xA1).report, Hex("a1 c8 21 00 00 00"));
  EXPECT_EQ(liar.GetFeature(1, 0xA3).report, Hex("a3 22 02 05 00 00"));
  HidKeyboard silent({.answers = false});
  EXPECT_EQ(silent.GetFeature(1, 0xA1).refusal, "report 0xa1 cannot be read");
}

TEST_F(HidKeyboardTest, UpdatesReachTheZonesOfTheMask) {
  EXPECT_EQ(keyboard.SetFeature(connection, Padded("a4 21 04 64 09 02 01 02 03 05 00")).refusal, "");
  const HidLights::Zone breathing{4, 100, 9, 2, {1, 2, 3}};
  EXPECT_EQ(keyboard.Lights(), (HidLights{{breathing, {}, breathing, {}}}));
  EXPECT_EQ(keyboard.SetFeature(connection, Padded("a4 21 02 32 00 00 ff 00 00 ff ff")).refusal, "");
  const HidLights::Zone red{2, 50, 0, 0, {255, 0, 0}};
  EXPECT_EQ(keyboard.Lights(), (HidLights{{red, red, red, red}}));

  HidKeyboard narrow({.zones = 2, .update = {{0x43, 8}, {0x45, 16}}});
  EXPECT_EQ(narrow.SetFeature(1, Padded("a4 21 32 ff 01")).refusal, "");
  EXPECT_EQ(narrow.Lights(), (HidLights{{{2, 50, 0, 0, {255, 0, 0}}, {2, 50, 0, 0, {255, 0, 0}}}}));
}

TEST_F(HidKeyboardTest, RefusalsSayWhyAndChangeNothing) {
  EXPECT_EQ(Refusal("a4 22"), "the report is for device id 0x22, which is not served here");
  EXPECT_EQ(Refusal("a5 21"), "report 0xa5 cannot be set");
  EXPECT_EQ(Refusal("a4 21 03 00 00 00 00 00 00 01"), "there is no effect 3");
  EXPECT_EQ(Refusal("a4 21 02 00 00 00 00 00 00 10"), "zone mask 0x10 names zones that are not there");
  EXPECT_EQ(keyboard.SetFeature(connection, Hex("a4 21")).refusal, "the report has 2 bytes, must have 65");
}

TEST_F(HidKeyboardTest, AConnectionEndsWithTheUnplug) {
  keyboard.Unplug();
  EXPECT_EQ(keyboard.Connect(), std::nullopt);
  EXPECT_EQ(keyboard.GetFeature(connection, 0xA1).result, Result::Gone);
  keyboard.Plug();
  EXPECT_EQ(keyboard.GetFeature(connection, 0xA1).result, Result::Gone);
  EXPECT_EQ(keyboard.GetFeature(keyboard.Connect().value(), 0xA1).result, Result::Done);
}

TEST_F(HidKeyboardTest, MisbehavesFromTheExchangeThatWasNamed) {
  const auto get = [this] { return keyboard.GetFeature(connection, 0xA1); };
  keyboard.Misbehave({.kind = Kind::Fail, .first = 2, .once = true});
  EXPECT_EQ(get().result, Result::Done);
  EXPECT_EQ(get().refusal, "the keyboard misbehaves");
  EXPECT_EQ(get().result, Result::Done);
  keyboard.Misbehave({.kind = Kind::Short});
  EXPECT_EQ(get().report, Hex("a1 01"));
  keyboard.Misbehave({.kind = Kind::Stall, .stall_ms = 1});
  EXPECT_EQ(get().result, Result::NoAnswer);
  keyboard.Misbehave({.first = 0});
  EXPECT_EQ(get().result, Result::Done);
}

TEST(HidNotebookTest, ExchangesAreOnTheWireInTheOrderInWhichTheyBegan) {
  Profile profile;
  profile.hid_keyboards = {{.zones = 1}, {.product = 7, .plugged = false, .zones = 2}};
  const auto notebook = std::make_shared<Notebook>(profile);
  const auto machine = MakeMachine(notebook);
  ASSERT_EQ(machine->HidDevices().size(), 1U);
  EXPECT_EQ(machine->HidDevices()[0].path, L"\\\\?\\hid#vid_1209&pid_0001#0");
  EXPECT_EQ(machine->OpenHidDevice(L"\\\\?\\hid#vid_1209&pid_0007#1").error, ERROR_FILE_NOT_FOUND);
  notebook->HidKeyboardAt(1).Plug();
  const auto opened = machine->OpenHidDevice(L"\\\\?\\hid#vid_1209&pid_0007#1");
  ASSERT_EQ(opened.error, ERROR_SUCCESS);
  EXPECT_EQ(opened.device.product, 7);

  Bytes report = Padded("a1");
  EXPECT_EQ(opened.connection->GetFeature(report), ERROR_SUCCESS);
  EXPECT_EQ(report, Padded("a1 01 21"));
  EXPECT_EQ(opened.connection->SetFeature(Padded("a4 22")), ERROR_GEN_FAILURE);
  notebook->HidKeyboardAt(1).Unplug();
  EXPECT_EQ(opened.connection->GetFeature(report), ERROR_DEVICE_NOT_CONNECTED);
  std::vector<std::string> wire;
  for (const WireRecord& record : notebook->TakeWire()) wire.push_back(record.method + ": " + record.refusal);
  EXPECT_EQ(wire, (std::vector<std::string>{
                      "GetFeature: ", "SetFeature: the report is for device id 0x22, which is not served here",
                      "GetFeature: the keyboard was unplugged"}));
}

}  // namespace
}  // namespace simulator
