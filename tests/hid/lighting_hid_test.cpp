#include "hid/lighting_hid.h"

#include <array>

#include "tests/hid/lighting_fixture.h"

namespace test {
namespace {

using zarn::WRV520::Lighting::LightingHID;

const std::vector<DeclaredField> kBaseInfoFields = {
    {0xA3, 0x34, 8}, {0xA3, 0x32, 8}, {0xA3, 0x35, 16}, {0xA3, 0x33, 16}, {0xA3, 0x31, 32}};

Bytes IdsOf(const _HIDInfo& device) {
  Bytes ids;
  for (const auto& [id, entry] : device.deviceIds) ids.push_back(entry.id);
  return ids;
}

Bytes Report(const std::string& beginning) { return Padded(Hex(beginning), 65); }

using LightingList = LightingTest;

TEST_F(LightingList, HoldsTheDevicesThatTellTheirIds) {
  PlugKeyboard({{0xA4, 0x41, 8}, {0xA4, 0x48, 16}, {0xA4, 0x41, 12}});
  machine->Plug(VendorCollection(0xFF5A, {})).answers[0xA1] = {0xA1, 0};
  machine->Plug(VendorCollection(0xFF5A, {}));  // answers nothing
  machine->Plug(VendorCollection(0xFF59, {})).answers[0xA1] = {0xA1, 1, 0x21};
  machine->Plug(VendorCollection(0xFF5A, {}, 3)).answers[0xA1] = {0xA1, 200, 0x22, 0x21};  // claims too many
  std::vector<_HIDInfo> devices(1);
  ::testing::internal::CaptureStderr();
  LightingHID::GetLightingDeviceList(devices);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Failed to get value caps.\nFailed to get value caps.\n");
  ASSERT_EQ(devices.size(), 3U);
  EXPECT_EQ(IdsOf(devices[0]), Hex("21"));
  EXPECT_EQ(IdsOf(devices[1]), Hex(""));
  EXPECT_EQ(IdsOf(devices[2]), Hex("21 22"));
  EXPECT_EQ(devices[0].fields.at({0xA4, 0x41}).BitSize, 12);  // the last one counts
  EXPECT_EQ(devices[0].fields.size(), 2U);
  EXPECT_EQ(platform::CountLive().device_handles, 3);
  EXPECT_EQ(TakeLines().back(), "E TsHID::GetHIDFeature | Error getting feature from HID device");
}

TEST_F(LightingList, AFieldIsAsWideAsTheFirstDeviceThatHasItSays) {
  PlugKeyboard({{0xA4, 0x41, 7}, {0xA4, 0x42, 16}, {0xA4, 0x43, 8, 3}, {0xA4, 0x44, 12}, {0xA4, 0x45, 255}});
  PlugKeyboard({{0xA4, 0x41, 24}, {0xA4, 0x48, 32}});
  BuildList();
  g_lightingDevices[0].fields[{0xA4, 0x46}].BitSize = 2048 + 8;
  const std::pair<std::uint8_t, int> widths[] = {{0x41, 0}, {0x42, 2},  {0x43, 1},  {0x44, 1},
                                                 {0x48, 4}, {0x45, 31}, {0x46, 255}};  // the last one not 1
  std::uint8_t width = 0;
  for (const auto& [usage, expected] : widths) {
    EXPECT_TRUE(LightingHID::GetFieldSize(0x21, 0xA4, usage, width));
    EXPECT_EQ(width, expected);
  }
  width = 99;
  EXPECT_FALSE(LightingHID::GetFieldSize(0x21, 0xA3, 0x31, width));
  EXPECT_FALSE(LightingHID::GetFieldSize(0x21, 0xA4, 0x33, width));
  EXPECT_EQ(TakeLines(), Lines{});
  EXPECT_FALSE(LightingHID::GetFieldSize(0x21, 0xA4, 0x47, width));
  EXPECT_FALSE(LightingHID::GetFieldSize(0x22, 0xA4, 0x41, width));
  EXPECT_EQ(width, 99);
  EXPECT_EQ(TakeLines(), (Lines{"I Lighting::LightingHID::GetFieldSize | Field A4,47 not exist!",
                                "I Lighting::LightingHID::GetFieldSize | Field A4,41 not exist!"}));
}

class LightingReports : public LightingTest {
 protected:
  static void Update() { LightingHID::SetLightingDeviceUpdateReport(0x21, 2, 5, 1, 50, 0xFF, 0, 0, 0x0103); }
};

TEST_F(LightingReports, UpdatesArePackedByTheWidthsThatTheDeviceDeclares) {
  std::vector<DeclaredField> all_reversed;  // a report has its own order of fields, whatever the descriptor's
  for (const std::uint8_t usage : Hex("48 47 46 45 44 42 43 41")) all_reversed.push_back({0xA4, usage, 8});
  const std::pair<std::vector<DeclaredField>, std::string> cases[] = {
      {{{0xA4, 0x41, 8}, {0xA4, 0x43, 8}, {0xA4, 0x48, 16}}, "a4 21 02 32 03 01"},
      {all_reversed, "a4 21 02 32 05 01 ff 00 00 03"},
      {{{0xA4, 0x41, 32}, {0xA4, 0x43, 4}, {0xA4, 0x42, 24}, {0xA4, 0x48, 16}}, "a4 21 02 00 00 00 05 00 00 03 01"},
      {{{0xA4, 0x41, 8}, {0xA4, 0x43, 40}, {0xA4, 0x48, 16}}, "a4 21 02"},  // nothing behind a field that wide
      {{{0xA3, 0x34, 8}}, "a4 21"}};
  for (const auto& [fields, payload] : cases) {
    SCOPED_TRACE(payload);
    ScriptedHid& device = PlugKeyboard(fields);
    BuildList();
    Update();
    EXPECT_EQ(device.TakeReports(), std::vector<Bytes>{Report(payload)});
    // A line for each missing field, and one for the report.
    EXPECT_EQ(TakeLines().size(), payload == "a4 21" ? 9 : 1 + 8 - fields.size());
    LightingHID::CloseLightingDevices();
    machine->hid_devices.clear();
  }
}

TEST_F(LightingReports, UpdatesGoToEveryDeviceThatServesTheIdWithFiveAttemptsEach) {
  ScriptedHid& broken = PlugKeyboard({{0xA4, 0x41, 8}});
  ScriptedHid& good = PlugKeyboard({{0xA4, 0x41, 8}});
  good.device.product = 2;
  ScriptedHid& other = PlugKeyboard({{0xA4, 0x41, 8}});
  other.device.product = 3;
  other.answers[0xA1] = {0xA1, 1, 0x22};
  BuildList();
  broken.fail = [](auto) { return ERROR_SEM_TIMEOUT; };
  Update();
  EXPECT_EQ(good.TakeReports(), std::vector<Bytes>{Report("a4 21 02")});
  EXPECT_EQ(other.TakeReports(), std::vector<Bytes>{});
  EXPECT_EQ(g_lightingDevices[0].handle, INVALID_HANDLE_VALUE);
  EXPECT_NE(g_lightingDevices[1].handle, INVALID_HANDLE_VALUE);

  Lines sent;
  for (const char* const usage : {"43", "42", "44", "45", "46", "47", "48"}) {
    sent.push_back(std::string("I Lighting::LightingHID::GetFieldSize | Field A4,") + usage + " not exist!");
  }
  const std::string kUpdate = " Lighting::LightingHID::SetLightingDeviceUpdateReport | ";
  sent.push_back("I" + kUpdate + "21,02,00,00,00,00,00,00,00,00");
  Lines expected = sent;
  for (int attempt = 2; attempt <= 6; ++attempt) {
    expected.emplace_back("E TsHID::SetHIDFeature | Error setting feature on HID device: 121");
    expected.push_back("E" + kUpdate + "Error setting feature on HID device");
    if (attempt <= 5) expected.emplace_back("I TsHID::GetHIDDeviceHandle | HID device UsagePage find: FF5A, 0001");
    expected.insert(expected.end(), sent.begin(), sent.end());  // the last time to the good one
  }
  EXPECT_EQ(TakeLines(), expected);
}

TEST_F(LightingReports, BaseInfoIsUnpackedByTheWidthsThatTheDeviceDeclares) {
  const Bytes reply = Hex("a3 21 01 02 10 00 05 00 ff 7f 00 00");
  struct {
    std::vector<DeclaredField> fields;
    std::array<std::uint32_t, 5> expected;
  } const cases[] = {{kBaseInfoFields, {1, 2, 16, 5, 0x7FFF}},
                     {{kBaseInfoFields.begin() + 1, kBaseInfoFields.end()}, {0, 1, 4098, 0x0500, 0x007FFF00}},
                     {{{0xA3, 0x34, 8}, {0xA3, 0x32, 40}, {0xA3, 0x35, 16}}, {1, 0, 0, 0, 0}},
                     {{{0xA3, 0x34, 32}, {0xA3, 0x32, 4}, {0xA3, 0x35, 32}}, {1, 0, 5, 0, 0}},
                     {{}, {0, 0, 0, 0, 0}}};
  for (const auto& [fields, expected] : cases) {
    ScriptedHid& device = PlugKeyboard(fields);
    device.answers[0xA3] = reply;
    ::testing::internal::CaptureStderr();
    BuildList();
    ::testing::internal::GetCapturedStderr();
    LightingDeviceBaseInfo info;
    EXPECT_TRUE(LightingHID::GetLightingDeviceBaseInfo(0x21, info));
    EXPECT_EQ(info.deviceId, 0x21);
    const std::array<std::uint32_t, 5> told = {info.info34, info.info32, info.zoneCount, info.info33, info.effectMask};
    EXPECT_EQ(told, expected);
    EXPECT_EQ(device.TakeReports(), std::vector<Bytes>{Report("a2 21")});
    EXPECT_EQ(TakeLines(), Lines{"I Lighting::LightingHID::GetLightingDeviceBaseInfo | vid: 1209 pid: 0001 usage: "
                                 "FF5A:0001"});
    LightingHID::CloseLightingDevices();
    machine->hid_devices.clear();
  }
  EXPECT_EQ(machine->TakeSleeps(), std::vector<std::uint32_t>(5, 20));
}

TEST_F(LightingReports, BaseInfoComesFromTheFirstDeviceThatAnswersUnlessItIsForAnotherId) {
  ScriptedHid& silent = PlugKeyboard(kBaseInfoFields);
  ScriptedHid& good = PlugKeyboard(kBaseInfoFields);
  good.device.product = 2;
  good.answers[0xA3] = Hex("a3 21 09");
  BuildList();
  LightingDeviceBaseInfo info;
  EXPECT_TRUE(LightingHID::GetLightingDeviceBaseInfo(0x21, info));
  EXPECT_EQ(info.info34, 9);
  EXPECT_EQ(silent.TakeReports(), std::vector<Bytes>(5, Report("a2 21")));

  good.answers[0xA3] = Hex("a3 22 09");
  PlugKeyboard(kBaseInfoFields).answers[0xA3] = Hex("a3 21 09");
  EXPECT_FALSE(LightingHID::GetLightingDeviceBaseInfo(0x21, info));
  EXPECT_EQ(info.info34, 0);
  info.zoneCount = 7;
  EXPECT_FALSE(LightingHID::GetLightingDeviceBaseInfo(0x30, info));
  EXPECT_EQ(info.zoneCount, 7);
}

}  // namespace
}  // namespace test
