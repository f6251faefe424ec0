#include "hid/ts_hid.h"

#include <numeric>

#include "platform/system.h"
#include "tests/hid/lighting_fixture.h"

namespace test {
namespace {

using zarn::WRV520::TsHID;

bool AnyIdentity(std::uint16_t /*vendor*/, std::uint16_t /*product*/) { return true; }
bool AnyCapability(const HIDP_CAPS& /*caps*/) { return true; }

class TsHidTest : public LightingTest {
 protected:
  static HANDLE OpenFirst() { return TsHID::GetHIDDeviceHandle(AnyIdentity, AnyCapability); }
};

TEST_F(TsHidTest, ThePredicateFormOpensTheFirstMatchAlone) {
  machine->Plug(VendorCollection(0x0001, {}));
  machine->Plug(VendorCollection(0xFF5A, {}, 64, 7));
  machine->Plug(VendorCollection(0xFF5A, {}, 64, 7)).device.product = 2;
  EXPECT_EQ(TsHID::GetHIDDeviceHandle(0x1209, 3, 0xFF5A, 7), INVALID_HANDLE_VALUE);
  EXPECT_EQ(TsHID::GetHIDDeviceHandle(0x1209, 1, 0xFF5A, 8), INVALID_HANDLE_VALUE);
  EXPECT_EQ(TakeLines(), Lines{});
  const HANDLE handle = TsHID::GetHIDDeviceHandle(0x1209, 1, 0xFF5A, 7);
  EXPECT_EQ(TakeLines(), Lines{"I TsHID::GetHIDDeviceHandle | HID device UsagePage find: FF5A, 0007"});
  EXPECT_EQ(platform::CountLive().device_handles, 1);
  EXPECT_TRUE(CloseHandle(handle));
}

TEST_F(TsHidTest, TheListFormAppendsAllMatchesWithHandlesOfTheirOwn) {
  std::vector<_HIDDevice> found;
  const auto is_lighting = [](const HIDP_CAPS& caps) { return caps.UsagePage == 0xFF5A; };
  EXPECT_FALSE(TsHID::GetHIDDeviceHandle(AnyIdentity, is_lighting, found));
  machine->Plug(VendorCollection(0xFF5A, {}));
  machine->Plug(VendorCollection(0x0001, {}));
  machine->Plug(VendorCollection(0xFF5A, {})).device.vendor = 0xABCD;
  EXPECT_TRUE(TsHID::GetHIDDeviceHandle(AnyIdentity, is_lighting, found));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].devicePath, L"\\\\?\\hid#test#01");
  EXPECT_EQ(found[1].devicePath, L"\\\\?\\hid#test#03");
  EXPECT_EQ(found[1].vendorId, 0xABCD);
  EXPECT_EQ(found[1].usagePage, 0xFF5A);
  EXPECT_NE(found[0].handle, found[1].handle);
  EXPECT_EQ(TakeLines(), (Lines{"I TsHID::GetHIDDeviceHandle | HID device(1209, 0001) UsagePage find: FF5A:0001",
                                "I TsHID::GetHIDDeviceHandle | HID device(ABCD, 0001) UsagePage find: FF5A:0001"}));
  for (const _HIDDevice& device : found) EXPECT_TRUE(CloseHandle(device.handle));
  EXPECT_TRUE(TsHID::GetHIDDeviceHandle(
      AnyIdentity, [](const HIDP_CAPS&) { return false; }, found));
}

TEST_F(TsHidTest, EveryFailureOfTheEnumerationCostsOneInterface) {
  const char* const kFind = "E TsHID::GetHIDDeviceHandle | ";
  machine->Plug(VendorCollection(0xFF5A, {}));
  machine->Plug(VendorCollection(0xFF5A, {}));
  // By the order of the platform's calls for the first interface.
  const std::pair<std::uint64_t, std::string> failures[] = {{4, "Error getting device interface detail data"},
                                                            {5, ""},
                                                            {6, "Error getting device attributes"},
                                                            {7, "Error getting device preparsed data"},
                                                            {8, "Error getting device capabilities"}};
  for (const auto& [call, text] : failures) {
    SCOPED_TRACE(text);
    std::vector<_HIDDevice> found;
    platform::ArmFaults({.first = call});
    TsHID::GetHIDDeviceHandle(
        AnyIdentity, [](const HIDP_CAPS&) { return false; }, found);
    EXPECT_EQ(text.empty() ? 0 : OpenWhileLogging(), 0);  // all is given back before anything is written of it
    platform::ArmFaults({.first = call});
    TakeLines();
    TsHID::GetHIDDeviceHandle(AnyIdentity, AnyCapability, found);
    EXPECT_EQ(platform::DisarmFaults(), 1U);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].devicePath, L"\\\\?\\hid#test#02");
    EXPECT_TRUE(CloseHandle(found[0].handle));
    Lines lines = TakeLines();
    lines.pop_back();
    EXPECT_EQ(lines, text.empty() ? Lines{} : Lines{kFind + text});
  }
  std::vector<_HIDDevice> one_before(1);
  platform::ArmFaults({.first = 1});
  EXPECT_EQ(OpenFirst(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  platform::ArmFaults({.first = 1});
  EXPECT_FALSE(TsHID::GetHIDDeviceHandle(AnyIdentity, AnyCapability, one_before));
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  EXPECT_EQ(TakeLines(), Lines(2, std::string(kFind) + "Error getting device information set"));
}

TEST_F(TsHidTest, ReportsTakeTheLengthOfTheDevice) {
  Bytes data(70);
  std::iota(data.begin(), data.end(), std::uint8_t{1});
  for (const std::uint8_t length : Hex("08 40 45")) {
    ScriptedHid& device = machine->Plug(VendorCollection(0xFF5A, {}, length));
    Bytes answer = data;
    answer.insert(answer.begin(), 0xA3);
    device.answers[0xA3] = answer;
    const HANDLE handle = OpenFirst();

    EXPECT_TRUE(TsHID::SetHIDFeature(handle, 0xA4, data.data(), 66));
    Bytes sent(1U + length);
    sent[0] = 0xA4;
    std::copy_n(data.begin(), std::min<std::size_t>(length, 66), sent.begin() + 1);
    EXPECT_EQ(device.TakeReports(), std::vector<Bytes>{sent});

    Bytes received(64, 0xEE);
    EXPECT_TRUE(TsHID::GetHIDFeature(handle, 0xA3, received.data()));
    Bytes expected(64, 0xEE);
    std::copy_n(data.begin(), std::min<std::size_t>(length, 64), expected.begin());
    EXPECT_EQ(received, expected);
    EXPECT_TRUE(CloseHandle(handle));
    machine->hid_devices.clear();
  }
}

TEST_F(TsHidTest, ReportsThatFailAreLoggedAndLeaveTheBufferAlone) {
  ScriptedHid& device = machine->Plug(VendorCollection(0xFF5A, {}));
  HANDLE handle = OpenFirst();
  TakeLines();
  Bytes buffer(64, 0xEE);
  device.fail = [](auto) { return ERROR_GEN_FAILURE; };
  EXPECT_FALSE(TsHID::SetHIDFeature(handle, 0xA4, buffer.data(), 64));
  EXPECT_FALSE(TsHID::GetHIDFeature(handle, 0xA3, buffer.data()));
  EXPECT_EQ(GetLastError(), DWORD{31});
  EXPECT_EQ(TakeLines(), (Lines{"E TsHID::SetHIDFeature | Error setting feature on HID device: 31",
                                "E TsHID::GetHIDFeature | Error getting feature from HID device"}));
  for (const std::uint64_t call : {1U, 2U}) {
    platform::ArmFaults({.first = call});
    EXPECT_FALSE(call == 1 ? TsHID::SetHIDFeature(handle, 0xA4, buffer.data(), 64)
                           : TsHID::GetHIDFeature(handle, 0xA3, buffer.data()));
    platform::DisarmFaults();
  }
  EXPECT_EQ(TakeLines(), (Lines{"E TsHID::GetHIDCapability | Error getting device preparsed data",
                                "E TsHID::SetHIDFeature | Error getting device capabilities",
                                "E TsHID::GetHIDCapability | Error getting device capabilities",
                                "E TsHID::GetHIDFeature | Error getting device capabilities"}));
  EXPECT_TRUE(CloseHandle(handle));

  machine->hid_devices.clear();
  machine->Plug(VendorCollection(0xFF5A, {}, 0));
  handle = OpenFirst();
  TakeLines();
  EXPECT_FALSE(TsHID::SetHIDFeature(handle, 0xA4, buffer.data(), 64));
  EXPECT_FALSE(TsHID::GetHIDFeature(handle, 0xA3, buffer.data()));
  EXPECT_EQ(TakeLines(), (Lines{"E TsHID::SetHIDFeature | Error Feature Report Byte Length: 0",
                                "E TsHID::GetHIDFeature | Error Feature Report Byte Length: 0"}));
  EXPECT_TRUE(CloseHandle(handle));
  EXPECT_EQ(buffer, Bytes(64, 0xEE));
}

TEST_F(TsHidTest, ValueCapabilitiesFailToTheErrorStream) {
  machine->Plug(VendorCollection(0xFF5A, {{0xA4, 0x41, 8}}));
  const HANDLE handle = OpenFirst();
  TakeLines();
  std::vector<HIDP_VALUE_CAPS> caps(5);
  EXPECT_TRUE(TsHID::GetHIDValueCapability(handle, caps));
  ASSERT_EQ(caps.size(), 1U);
  EXPECT_EQ(caps[0].NotRange.Usage, 0x41);
  const char* const texts[] = {"Failed to get preparsed data.\n", "Failed to get HID caps.\n",
                               "Failed to get value caps.\n"};
  for (std::uint64_t call = 1; call <= 3; ++call) {
    ::testing::internal::CaptureStderr();
    platform::ArmFaults({.first = call});
    EXPECT_FALSE(TsHID::GetHIDValueCapability(handle, caps));
    platform::DisarmFaults();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), texts[call - 1]);
  }
  EXPECT_EQ(TakeLines(), Lines{});
  EXPECT_TRUE(CloseHandle(handle));
}

}  // namespace
}  // namespace test
