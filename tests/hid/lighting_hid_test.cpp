#include "hid/lighting_hid.h"

#include "tests/hid/lighting_fixture.h"

namespace test {
namespace {

using zarn::WRV520::Lighting::LightingHID;

const std::vector<DeclaredField> kBaseInfoFields = {
    {0xA3, 0x34, 8}, {0xA3, 0x32, 8}, {0xA3, 0x35, 16}, {0xA3, 0x33, 16}, {0xA3, 0x31, 32}};

std::vector<std::uint8_t> IdsOf(const _HIDInfo& device) {
  std::vector<std::uint8_t> ids;
  for (const auto& [id, entry] : device.deviceIds) {
    EXPECT_EQ(id, entry.id);
    ids.push_back(id);
  }
  return ids;
}

/// The beginning of a report of 65 bytes, the rest of which is zeros.
Bytes Report(const std::string& beginning) {
  Bytes report = Hex(beginning);
  report.resize(65);
  return report;
}

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
  EXPECT_EQ(g_lightingDevices.size(), 3U);
  EXPECT_EQ(platform::CountLive().device_handles, 3);
  const std::string kFound = "I TsHID::GetHIDDeviceHandle | HID device(1209, 0001) UsagePage find: FF5A:0001";
  const std::string kList = "I Lighting::LightingHID::GetLightingDeviceList | ";
  EXPECT_EQ(TakeLines(),
            (Lines{kFound, kFound, kFound, kFound, kList + "ReportID: A4 Usage: 65 BitSize: 8, DataIndex: 0",
                   kList + "ReportID: A4 Usage: 72 BitSize: 16, DataIndex: 1",
                   kList + "ReportID: A4 Usage: 65 BitSize: 12, DataIndex: 2",
                   "E TsHID::GetHIDFeature | Error getting feature from HID device"}));
}

TEST_F(LightingList, IsBuiltWhileItIsEmptyAndKeptFromThenOn) {
  _HIDInfo found;
  found.productId = 77;
  EXPECT_FALSE(LightingHID::FindLightingDevice(found));
  EXPECT_EQ(found.productId, 77);
  machine->Plug(VendorCollection(0xFF5A, {})).answers[0xA1] = {0xA1, 1, 0x20};
  EXPECT_FALSE(LightingHID::FindLightingDevice(found));
  PlugKeyboard({}).device.product = 5;
  EXPECT_FALSE(LightingHID::FindLightingDevice(found));  // the list is there already, without this one

  LightingHID::CloseLightingDevices();
  g_lightingDevices.clear();
  EXPECT_TRUE(LightingHID::FindLightingDevice(found));
  EXPECT_EQ(found.productId, 5);
  machine->hid_devices.clear();
  EXPECT_TRUE(LightingHID::FindLightingDevice(found));
}

TEST_F(LightingList, AFieldIsAsWideAsTheFirstDeviceThatHasItSays) {
  PlugKeyboard({{0xA4, 0x41, 7}, {0xA4, 0x42, 16}, {0xA4, 0x43, 8, 3}, {0xA4, 0x44, 12}, {0xA4, 0x45, 255}});
  PlugKeyboard({{0xA4, 0x41, 24}, {0xA4, 0x48, 32}});
  BuildList();
  const std::pair<std::uint8_t, int> widths[] = {{0x41, 0}, {0x42, 2}, {0x43, 1}, {0x44, 1}, {0x45, 31}, {0x48, 4}};
  for (const auto& [usage, width] : widths) {
    std::uint8_t told = 99;
    EXPECT_TRUE(LightingHID::GetFieldSize(0x21, 0xA4, usage, told));
    EXPECT_EQ(told, width);
  }
  g_lightingDevices[0].fields[{0xA4, 0x45}].BitSize = 2048 + 8;
  std::uint8_t width = 99;
  EXPECT_TRUE(LightingHID::GetFieldSize(0x21, 0xA4, 0x45, width));
  EXPECT_EQ(width, 255);  // not 1

  width = 99;
  EXPECT_FALSE(LightingHID::GetFieldSize(0x21, 0xA3, 0x31, width));
  EXPECT_FALSE(LightingHID::GetFieldSize(0x21, 0xA4, 0x33, width));
  EXPECT_EQ(TakeLines(), Lines{});
  EXPECT_FALSE(LightingHID::GetFieldSize(0x21, 0xA4, 0x46, width));
  EXPECT_FALSE(LightingHID::GetFieldSize(0x22, 0xA4, 0x41, width));
  EXPECT_EQ(width, 99);
  EXPECT_EQ(TakeLines(), (Lines{"I Lighting::LightingHID::GetFieldSize | Field A4,46 not exist!",
                                "I Lighting::LightingHID::GetFieldSize | Field A4,41 not exist!"}));
}

class LightingReports : public LightingTest {
 protected:
  static void Update() { LightingHID::SetLightingDeviceUpdateReport(0x21, 2, 5, 1, 50, 0xFF, 0, 0, 0x0103); }
  static constexpr char kUpdateTag[] = "I Lighting::LightingHID::SetLightingDeviceUpdateReport | ";
  static constexpr char kUpdateError[] = "E Lighting::LightingHID::SetLightingDeviceUpdateReport | ";
  static constexpr char kInfoError[] = "E Lighting::LightingHID::GetLightingDeviceBaseInfo | ";
};

TEST_F(LightingReports, UpdatesArePackedByTheWidthsThatTheDeviceDeclares) {
  const auto declared = [](std::initializer_list<std::pair<int, int>> fields) {
    std::vector<DeclaredField> all;
    for (const auto& [usage, bits] : fields) {
      all.push_back({0xA4, static_cast<std::uint8_t>(usage), static_cast<std::uint8_t>(bits)});
    }
    return all;
  };
  const std::pair<std::vector<DeclaredField>, std::string> cases[] = {
      {declared({{0x41, 8}, {0x43, 8}, {0x48, 16}}), "a4 21 02 32 03 01"},
      {declared({{0x48, 8}, {0x47, 8}, {0x46, 8}, {0x45, 8}, {0x44, 8}, {0x42, 8}, {0x43, 8}, {0x41, 8}}),
       "a4 21 02 32 05 01 ff 00 00 03"},  // in the order of the report, whatever that of the descriptor
      {declared({{0x41, 32}, {0x43, 4}, {0x42, 24}, {0x48, 16}}), "a4 21 02 00 00 00 05 00 00 03 01"},
      {declared({{0x41, 8}, {0x43, 40}, {0x42, 8}, {0x48, 16}}), "a4 21 02"},  // nothing behind a field that wide
      {declared({{0x41, 8}, {0x43, 250}, {0x48, 16}}), "a4 21 02"},
      {{{0xA3, 0x34, 8}}, "a4 21"}};
  for (const auto& [fields, payload] : cases) {
    SCOPED_TRACE(payload);
    ScriptedHid& device = PlugKeyboard(fields);
    BuildList();
    Update();
    EXPECT_EQ(device.TakeReports(), std::vector<Bytes>{Report(payload)});
    // A line for each field that is missing, and one for the report.
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
  sent.push_back(std::string(kUpdateTag) + "21,02,00,00,00,00,00,00,00,00");
  Lines expected;
  for (int attempt = 1; attempt <= 5; ++attempt) {
    if (attempt > 1) expected.emplace_back("I TsHID::GetHIDDeviceHandle | HID device UsagePage find: FF5A, 0001");
    expected.insert(expected.end(), sent.begin(), sent.end());
    expected.emplace_back("E TsHID::SetHIDFeature | Error setting feature on HID device: 121");
    expected.push_back(std::string(kUpdateError) + "Error setting feature on HID device");
  }
  expected.insert(expected.end(), sent.begin(), sent.end());
  EXPECT_EQ(TakeLines(), expected);
}

TEST_F(LightingReports, BaseInfoIsUnpackedByTheWidthsThatTheDeviceDeclares) {
  const Bytes reply = Hex("a3 21 01 02 10 00 05 00 ff 7f 00 00");
  struct {
    std::vector<DeclaredField> fields;
    std::uint32_t expected[5];  // info34, info32, zoneCount, info33, effectMask
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
    EXPECT_EQ(info.info34, expected[0]);
    EXPECT_EQ(info.info32, expected[1]);
    EXPECT_EQ(info.zoneCount, expected[2]);
    EXPECT_EQ(info.info33, expected[3]);
    EXPECT_EQ(info.effectMask, expected[4]);
    EXPECT_EQ(device.TakeReports(), std::vector<Bytes>{Report("a2 21")});
    EXPECT_EQ(TakeLines(), Lines{"I Lighting::LightingHID::GetLightingDeviceBaseInfo | vid: 1209 pid: 0001 usage: "
                                 "FF5A:0001"});
    LightingHID::CloseLightingDevices();
    machine->hid_devices.clear();
  }
  EXPECT_EQ(machine->TakeSleeps(), std::vector<std::uint32_t>(5, 20));
}

TEST_F(LightingReports, BaseInfoComesFromTheFirstDeviceThatAnswers) {
  ScriptedHid& silent = PlugKeyboard(kBaseInfoFields);
  PlugKeyboard(kBaseInfoFields).answers[0xA3] = Hex("a3 21 09");
  machine->hid_devices[1]->device.product = 2;
  BuildList();
  int exchanges = 0;
  silent.fail = [&exchanges](std::span<const std::uint8_t> report) -> LONG {
    ++exchanges;
    return report[0] == 0xA3 ? ERROR_SEM_TIMEOUT : exchanges == 3 ? ERROR_GEN_FAILURE : ERROR_SUCCESS;
  };
  LightingDeviceBaseInfo info;
  EXPECT_TRUE(LightingHID::GetLightingDeviceBaseInfo(0x21, info));
  EXPECT_EQ(info.info34, 9);
  EXPECT_EQ(exchanges, 9);  // five requests, of which the second failed

  const Lines lines = TakeLines();
  const std::string kReply = std::string(kInfoError) + "Error 79: getting feature from HID device";  // 0x79 is 121
  const std::string kRequest = std::string(kInfoError) + "Error setting feature on HID device";
  EXPECT_EQ(std::count(lines.begin(), lines.end(), kReply), 4);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), kRequest), 1);
  EXPECT_EQ(lines[1], "E TsHID::GetHIDFeature | Error getting feature from HID device");
  EXPECT_EQ(lines[2], kReply);
}

TEST_F(LightingReports, BaseInfoOfAnotherIdEndsTheSearchWithNothing) {
  PlugKeyboard(kBaseInfoFields).answers[0xA3] = Hex("a3 22 09");
  PlugKeyboard(kBaseInfoFields).answers[0xA3] = Hex("a3 21 09");
  BuildList();
  LightingDeviceBaseInfo info;
  info.zoneCount = 7;
  EXPECT_FALSE(LightingHID::GetLightingDeviceBaseInfo(0x21, info));
  EXPECT_EQ(info.zoneCount, 0);
  EXPECT_EQ(TakeLines().back(), std::string(kInfoError) + "Error Device Id input: 33 output: 34 not match");

  info.zoneCount = 7;
  EXPECT_FALSE(LightingHID::GetLightingDeviceBaseInfo(0x30, info));
  EXPECT_EQ(info.zoneCount, 7);
}

TEST_F(LightingReports, ANullHandleIsNoHandle) {
  PlugKeyboard({{0xA4, 0x41, 8}});
  BuildList();
  LightingHID::CloseLightingDevices();
  g_lightingDevices[0].handle = nullptr;
  Update();
  EXPECT_EQ(TakeLines(), Lines(5, std::string(kUpdateError) + "GetHIDDeviceHandle fail"));
  g_lightingDevices[0].handle = INVALID_HANDLE_VALUE;
}

}  // namespace
}  // namespace test
