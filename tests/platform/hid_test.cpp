/// HID interfaces as the platform shows them: enumeration, handles, capabilities, feature reports.

#include "platform/hid.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/standin/hid_interfaces.h"
#include "platform/system.h"
#include "tests/support/hex.h"
#include "tests/support/machine_fixture.h"

namespace test {
namespace {

using Hid = MachineTest;
using Paths = std::vector<std::wstring>;

HANDLE Open(const std::wstring& path) {
  return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                     OPEN_EXISTING, 0, nullptr);
}

TEST_F(Hid, EachTopLevelCollectionIsAnInterfaceOfItsOwn) {
  // A keyboard's collection with an input report of 8 bytes, and a vendor's with a feature report of as many.
  machine->Plug(
      Hex("05 01 09 06 a1 01 85 01 05 07 19 e0 29 e7 15 00 25 01 75 01 95 08 81 02 75 08 95 07 81 03 c0 "
          "06 5a ff 09 01 a1 01 85 a4 75 08 95 01 09 41 b1 02 95 07 b1 03 c0"));
  machine->Plug({0xA1, 0x01});  // never closed: not a device that works
  machine->Plug(VendorCollection(0xFF5A, {}, 64, 2));
  const Paths paths = {L"\\\\?\\hid#test#01&col01", L"\\\\?\\hid#test#01&col02", L"\\\\?\\hid#test#03"};
  ASSERT_EQ(platform::HidInterfacePaths(), paths);
  const std::vector<int> expected[] = {{1, 6, 0, 0}, {0xFF5A, 1, 9, 1}, {0xFF5A, 2, 65, 0}};
  for (std::size_t i = 0; i < 3; ++i) {
    const HIDP_CAPS caps = platform::OpenHidInterface(paths[i])->collection.caps;
    EXPECT_EQ((std::vector<int>{caps.UsagePage, caps.Usage, caps.FeatureReportByteLength, caps.NumberFeatureValueCaps}),
              expected[i]);
  }
  for (const wchar_t* const stranger : {L"\\\\?\\hid#test#01", L"\\\\?\\hid#test#01&col03", L"\\\\?\\hid#test#02",
                                        L"\\\\?\\hid#test#03&col01", L"&col01", L""}) {
    EXPECT_EQ(Open(stranger), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{2});
  }
}

TEST_F(Hid, ADeviceHasNoMoreThanSixteenInterfaces) {
  platform::Bytes& descriptor = machine->Plug({}).device.report_descriptor;
  const platform::Bytes collection = Hex("06 5a ff 09 01 a1 01 c0");
  for (int i = 0; i < 17; ++i) descriptor.insert(descriptor.end(), collection.begin(), collection.end());
  ASSERT_EQ(platform::HidInterfacePaths().size(), 16U);
  EXPECT_TRUE(CloseHandle(Open(LR"(\\?\hid#test#01&col16)")));
  EXPECT_EQ(Open(LR"(\\?\hid#test#01&col17)"), INVALID_HANDLE_VALUE);
}

TEST_F(Hid, ReportsOfTheRightLengthReachTheDeviceAndNoOthers) {
  ScriptedHid& device = machine->Plug(VendorCollection(0xFF5A, {}, 3));
  const HANDLE handle = Open(device.device.path);
  Bytes report = {0xA4, 1, 2, 3, 4};
  for (const ULONG length : {3U, 5U}) {
    EXPECT_FALSE(HidD_SetFeature(handle, report.data(), length));
    EXPECT_FALSE(HidD_GetFeature(handle, report.data(), length));
    EXPECT_EQ(GetLastError(), DWORD{87});
  }
  EXPECT_TRUE(HidD_SetFeature(handle, report.data(), 4));
  EXPECT_EQ(device.TakeReports(), (std::vector<Bytes>{{0xA4, 1, 2, 3}}));

  device.answers[0xA4] = {0xA4, 9};  // a short answer leaves the rest alone
  EXPECT_TRUE(HidD_GetFeature(handle, report.data(), 4));
  EXPECT_EQ(report, (Bytes{0xA4, 9, 2, 3, 4}));

  device.fail = [](auto) { return ERROR_SEM_TIMEOUT; };
  EXPECT_FALSE(HidD_SetFeature(handle, report.data(), 4));
  EXPECT_EQ(GetLastError(), DWORD{121});
  machine->hid_devices.clear();
  EXPECT_FALSE(HidD_GetFeature(handle, report.data(), 4));
  EXPECT_EQ(GetLastError(), DWORD{1167});
  EXPECT_TRUE(CloseHandle(handle));
  EXPECT_EQ(GetLastError(), DWORD{0});  // so that a code read too late is seen
}

TEST_F(Hid, WhatIsClosedCannotBeUsedOrClosedAgain) {
  const std::wstring path = machine->Plug(VendorCollection(0xFF5A, {})).device.path;
  const HANDLE first = Open(path);
  const HANDLE second = Open(path);
  EXPECT_NE(first, second);
  EXPECT_TRUE(CloseHandle(first));
  EXPECT_NE(Open(L"nowhere"), first);
  Bytes report(65);
  EXPECT_FALSE(HidD_SetFeature(first, report.data(), 65));
  EXPECT_FALSE(CloseHandle(first));
  EXPECT_EQ(GetLastError(), DWORD{6});
  EXPECT_FALSE(SetupDiDestroyDeviceInfoList(second));
  EXPECT_EQ(platform::TakeComplaints(),
            (std::vector<std::string>{"HidD_SetFeature of a handle that is not open",
                                      "CloseHandle of a handle that is not open",
                                      "SetupDiDestroyDeviceInfoList of a device set that is not there"}));
  EXPECT_EQ(platform::CountLive().device_handles, 1);
  EXPECT_TRUE(CloseHandle(second));
}

}  // namespace
}  // namespace test
