#include "zarnctl/doctor.h"

#include <gtest/gtest.h>

#include "tests/support/scripted_machine.h"

namespace zarnctl {
namespace {

TEST(Doctor, TellsAnEmptyBusAForeignTableAndADeviceThatMayNotBeUsed) {
  test::ScriptedMachine machine;
  machine.SetSmbios({0x7F, 0x04, 0x01, 0x00, 0x00, 0x00});
  std::vector<Finding> findings = Examine(machine);
  ASSERT_EQ(findings.size(), 5U);
  EXPECT_EQ(LineOf(findings[2]),
            "note     HID devices: none; plug the keyboard in; on Linux, look whether /sys/class/hidraw is there");
  EXPECT_EQ(
      LineOf(findings[3]),
      "missing  SMBIOS table: no structure of type 172; this is no notebook of the family; HID keyboards need none");

  machine.Plug(test::VendorCollection(0xFF5A, {})).open_error = ERROR_ACCESS_DENIED;
  machine.Plug({0xA1, 0x01});
  findings = Examine(machine);
  EXPECT_EQ(
      LineOf(findings.at(2)),
      "missing  \\\\?\\hid#test#01 (1209:0001): a lighting device, which this user may not open; plug it in again "
      "once the package's udev rule is installed, or run as root");
  EXPECT_EQ(
      LineOf(findings.at(3)),
      "note     \\\\?\\hid#test#02 (1209:0001): its report descriptor cannot be read, byte 2: the descriptor ends "
      "inside a collection");
}

}  // namespace
}  // namespace zarnctl
