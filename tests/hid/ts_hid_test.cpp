#include "hid/ts_hid.h"

#include <numeric>

#include "platform/system.h"
#include "tests/hid/lighting_fixture.h"

namespace test {
namespace {

using zarn::WRV520::TsHID;

bool AnyIdentity(std::uint16_t /*vendor*/, std::uint16_t /*product*/) { return true; }
bool AnyCapability(const HIDP_CAPS& /*caps*/) { return true; }
bool IsLighting(const HIDP_CAPS& caps) { return caps.UsagePage == 0xFF5A; }

class TsHidTest : public LightingTest {
 protected:
  static HANDLE OpenFirst() { return TsHID::GetHIDDeviceHandle(AnyIdentity, AnyCapability); }
};

TEST_F(TsHidTest, OneFormOpensTheFirstMatchAndAnotherAppendsAllOfThem) {
  std::vector<_HIDDevice> found;
  EXPECT_FALSE(TsHID::GetHIDDeviceHandle(AnyIdentity, IsLighting, found));
  machine->Plug(VendorCollection(0x0001, {}));
  machine->Plug(VendorCollection(0xFF5A, {}, 64, 7));
  machine->Plug(VendorCollection(0xFF5A, {}, 64, 7)).device.vendor = 0xABCD;
  EXPECT_EQ(TsHID::GetHIDDeviceHandle(0x1209, 3, 0xFF5A, 7), INVALID_HANDLE_VALUE);
  EXPECT_EQ(TsHID::GetHIDDeviceHandle(0x1209, 1, 0xFF5A, 8), INVALID_HANDLE_VALUE);
  EXPECT_EQ(TakeLines(), Lines{});
  const HANDLE handle = TsHID::GetHIDDeviceHandle(0x1209, 1, 0xFF5A, 7);
  EXPECT_EQ(platform::CountLive().device_handles, 1);
  EXPECT_TRUE(CloseHandle(handle));
  EXPECT_TRUE(TsHID::GetHIDDeviceHandle(AnyIdentity, IsLighting, found));
  EXPECT_EQ(TakeLines(), (Lines{"I TsHID::GetHIDDeviceHandle | HID device UsagePage find: FF5A, 0007",
                                "I TsHID::GetHIDDeviceHandle | HID device(1209, 0001) UsagePage find: FF5A:0007",
                                "I TsHID::GetHIDDeviceHandle | HID device(ABCD, 0001) UsagePage find: FF5A:0007"}));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].devicePath, L"\\\\?\\hid#test#02");
  EXPECT_EQ(found[1].vendorId, 0xABCD);
  EXPECT_EQ(found[1].usage, 7);
  for (const _HIDDevice& device : found) EXPECT_TRUE(CloseHandle(device.handle));
  machine->hid_devices.clear();
  EXPECT_TRUE(TsHID::GetHIDDeviceHandle(AnyIdentity, IsLighting, found));  // true: the list is not empty
}

TEST_F(TsHidTest, EveryFailureOfTheEnumerationCostsOneInterface) {
  const std::string kFind = "E TsHID::GetHIDDeviceHandle | ";
  machine->Plug(VendorCollection(0xFF5A, {}));
  machine->Plug(VendorCollection(0xFF5A, {}));
  // The first interface's platform calls in their order.
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
    EXPECT_EQ(TakeLines(), text.empty() ? Lines{} : Lines{kFind + text});
    EXPECT_EQ(text.empty() ? 0 : OpenWhileLogging(), 0);  // all was closed before the line was logged
    platform::ArmFaults({.first = call});
    const HANDLE second = OpenFirst();
    EXPECT_EQ(platform::DisarmFaults(), 1U);
    EXPECT_TRUE(CloseHandle(second));
    TakeLines();
  }
  std::vector<_HIDDevice> one_before(1);
  platform::ArmFaults({.first = 1});
  EXPECT_FALSE(TsHID::GetHIDDeviceHandle(AnyIdentity, AnyCapability, one_before));
  EXPECT_EQ(platform::DisarmFaults(), 1U);
  EXPECT_EQ(TakeLines(), Lines{kFind + "Error getting device information set"});
}

TEST_F(TsHidTest, ReportsTakeTheLengthOfTheDevice) {
  Bytes data(71, 0xA3);
  std::iota(data.begin() + 1, data.end(), std::uint8_t{1});
  for (const std::uint8_t length : Hex("08 40 45")) {
    ScriptedHid& device = machine->Plug(VendorCollection(0xFF5A, {}, length));
    device.answers[0xA3] = data;
    const HANDLE handle = OpenFirst();
    EXPECT_TRUE(TsHID::SetHIDFeature(handle, 0xA3, data.data() + 1, 66));
    Bytes sent(data.begin(), data.begin() + 1 + std::min<int>(length, 66));
    sent.resize(1U + length);
    EXPECT_EQ(device.TakeReports(), std::vector<Bytes>{sent});

    Bytes received(64, 0xEE);
    EXPECT_TRUE(TsHID::GetHIDFeature(handle, 0xA3, received.data()));
    Bytes expected(data.begin() + 1, data.begin() + 1 + std::min<int>(length, 64));
    expected.resize(64, 0xEE);
    EXPECT_EQ(received, expected);
    EXPECT_TRUE(CloseHandle(handle));
    machine->hid_devices.clear();
  }
}

TEST_F(TsHidTest, ReportsThatFailAreLoggedAndLeaveTheBufferAlone) {
  Bytes buffer(64, 0xEE);
  const auto exchange_both = [&](const HANDLE handle) {
    TakeLines();
    EXPECT_FALSE(TsHID::SetHIDFeature(handle, 0xA4, buffer.data(), 64));
    EXPECT_FALSE(TsHID::GetHIDFeature(handle, 0xA3, buffer.data()));
    return TakeLines();
  };
  ScriptedHid& device = machine->Plug(VendorCollection(0xFF5A, {}));
  HANDLE handle = OpenFirst();
  device.fail = [](auto) { return ERROR_GEN_FAILURE; };
  EXPECT_EQ(exchange_both(handle), (Lines{"E TsHID::SetHIDFeature | Error setting feature on HID device: 31",
                                          "E TsHID::GetHIDFeature | Error getting feature from HID device"}));
  EXPECT_EQ(GetLastError(), DWORD{31});
  platform::ArmFaults({.first = 1, .reach = platform::FaultPlan::Reach::FromThere});
  EXPECT_EQ(exchange_both(handle), (Lines{"E TsHID::GetHIDCapability | Error getting device preparsed data",
                                          "E TsHID::SetHIDFeature | Error getting device capabilities",
                                          "E TsHID::GetHIDCapability | Error getting device preparsed data",
                                          "E TsHID::GetHIDFeature | Error getting device capabilities"}));
  platform::DisarmFaults();
  EXPECT_TRUE(CloseHandle(handle));

  machine->hid_devices.clear();
  machine->Plug(VendorCollection(0xFF5A, {}, 0));
  handle = OpenFirst();
  EXPECT_EQ(exchange_both(handle), (Lines{"E TsHID::SetHIDFeature | Error Feature Report Byte Length: 0",
                                          "E TsHID::GetHIDFeature | Error Feature Report Byte Length: 0"}));
  EXPECT_TRUE(CloseHandle(handle));
  EXPECT_EQ(buffer, Bytes(64, 0xEE));
}

}  // namespace
}  // namespace test
