#include "zarnctl/commands/doctor.h"

#include <sys/utsname.h>

#include <set>

#include "tests/support/machine_fixture.h"
#include "tests/support/temporary_folder.h"
#include "zarnctl/linux/firmware_trouble.h"

namespace zarnctl {
namespace {

using platform::Bytes;

class Doctor : public test::MachineTest {
 protected:
  /// The lines about a machine on which the plug-in finds `discovered`.
  std::vector<std::string> Lines(const std::vector<std::string>& discovered = {}) {
    std::vector<std::string> lines;
    for (const Finding& finding : Examine({.discovered = discovered}, kRemedies)) lines.push_back(LineOf(finding));
    return lines;
  }

  /// The lines about the devices on the bus.
  std::vector<std::string> HidLines() {
    const std::vector<std::string> lines = Lines();
    return {lines.begin() + 2, lines.end() - 3};
  }

  test::ScriptedHid& PlugLighting(std::uint16_t product = 1) {
    test::ScriptedHid& device = machine->Plug(test::VendorCollection(0xFF5A, {}));
    device.device.product = product;
    return device;
  }

  const Remedies kRemedies = {
      .may_not_open = "(rights)", .no_node = "(node)", .no_answer = "(answer)", .no_record = "(record)"};
};

TEST_F(Doctor, WhatKeepsAKeyboardFromBeingUsed) {
  PlugLighting().open_error = ERROR_ACCESS_DENIED;
  PlugLighting().open_error = ERROR_FILE_NOT_FOUND;
  PlugLighting().fail = [](auto) { return ERROR_ACCESS_DENIED; };
  PlugLighting(4).fail = [](auto) { return ERROR_SEM_TIMEOUT; };
  machine->Plug(test::VendorCollection(0xFF5A, {}, 0));
  machine->Plug(test::VendorCollection(0xFF00, {}));
  PlugLighting(7).answers[0xA1] = {0xA1, 2, 0x20, 0x22};
  PlugLighting(8).answers[0xA1] = {0xA1, 0xFF, 0x21};
  PlugLighting(8).answers[0xA1] = {0xA1, 1, 0x21};
  const std::string mute =
      "missing  \\\\?\\hid#test#04 (1209:0004): a lighting device, which does not answer report A1 (error 121); "
      "(answer)";
  const std::string twin =
      "note     \\\\?\\hid#test#09 (1209:0008): the same vendor, product and usage as another one, which may get its "
      "reports";
  EXPECT_EQ(HidLines(),
            (std::vector<std::string>{
                "missing  \\\\?\\hid#test#01 (1209:0001): a lighting device, which this user may not open; (rights)",
                "missing  \\\\?\\hid#test#02 (1209:0001): a lighting device, which cannot be opened (error 2); (node)",
                "missing  \\\\?\\hid#test#03 (1209:0001): a lighting device, which this user may not open; (rights)",
                mute,
                "missing  \\\\?\\hid#test#05 (1209:0001): a lighting device without feature reports",
                "note     \\\\?\\hid#test#06 (1209:0001): no lighting device, its usage page is FF00, not FF5A",
                "note     \\\\?\\hid#test#07 (1209:0007): a lighting device, but no keyboard, serves 20 22",
                "fine     \\\\?\\hid#test#08 (1209:0008): a lighting keyboard, serves 00 21",
                "fine     \\\\?\\hid#test#09 (1209:0008): a lighting keyboard, serves 21",
                twin,
            }));
}

TEST_F(Doctor, WhatTheFirmwareLacks) {
  const auto about_firmware = [this](const std::vector<std::string>& discovered) {
    const std::vector<std::string> lines = Lines(discovered);
    return std::vector<std::string>(lines.begin() + 3, lines.end() - 1);
  };
  const std::string there = "fine     firmware class ZarnGamingFunction: there";
  machine->SetSmbios({0x7F, 0x04, 0x01, 0x00, 0x00, 0x00});
  EXPECT_EQ(about_firmware({}),
            (std::vector<std::string>{"missing  SMBIOS table: no structure of type 172; (record)", there}));
  // Later items override earlier ones, up to the light bar's.
  const std::string colourless =
      "missing  SMBIOS structure of type 172: firmware 2.91, a keyboard with 4 zones, no colours, a light bar: the "
      "embedded controller's devices are reported only with a keyboard in colour";
  machine->SetSmbios({0xAC, 18, 1, 0, 2, 91, 8, 4, 0, 10, 2, 0, 10, 1, 0, 23, 1, 0, 0, 0});
  EXPECT_EQ(about_firmware({}), (std::vector<std::string>{colourless, there}));
  machine->SetSmbios({0xAC, 15, 1, 0, 2, 91, 8, 4, 0, 10, 2, 0, 23, 1, 0, 0, 0});
  machine->firmware.instance_names.clear();
  const std::string colours =
      "fine     SMBIOS structure of type 172: firmware 2.91, a keyboard with 4 zones in colour, a light bar";
  const std::string about_class = "firmware class ZarnGamingFunction: there, but ";
  EXPECT_EQ(about_firmware({"ZarnECKeyboard"}),
            (std::vector<std::string>{colours, "missing  " + about_class + "without an instance to call"}));
  machine->firmware.instance_names = {L"A"};
  EXPECT_EQ(about_firmware({"ZarnECKeyboard"}),
            (std::vector<std::string>{
                colours, there,
                "missing  light bar: announced, but the firmware's answer to GetGamingLED does not confirm it"}));
  const std::vector<Finding> findings =
      Examine({.firmware = {"its module is missing", "get it"}, .firmware_note = "somebody else uses it"}, {});
  EXPECT_EQ(LineOf(findings.at(4)), "note     firmware class ZarnGamingFunction: somebody else uses it");
  EXPECT_EQ(LineOf(findings.at(5)), "missing  " + about_class + "its module is missing; get it");
  std::erase_if(machine->firmware.methods, [](const auto& method) { return method.name == L"SetGamingRgbKb"; });
  EXPECT_EQ(about_firmware({}),
            (std::vector<std::string>{colours, "missing  " + about_class + "without the method SetGamingRgbKb"}));
}

TEST(FirmwareTrouble, EachModuleThatIsMissingHasItsReasonAndRemedy) {
  const test::TemporaryFolder folder;
  const ModulePlaces places = {
      {folder.path() / "call", folder.path() / "options"}, folder.path(), folder.path() / "lockdown"};
  const auto write = [&](const std::string& name, const std::string& text) {
    test::WriteFile(folder.path() / name, text);
  };
  const auto expect_trouble = [&](const char* what, const char* remedy) {
    const Trouble trouble = TroubleWith({platform::FirmwareSearch::Found}, places);
    EXPECT_NE(trouble.what.find(what), std::string::npos) << trouble.what;
    EXPECT_NE(trouble.remedy.find(remedy), std::string::npos) << trouble.remedy;
  };
  expect_trouble("acpi_call, which calls it, is not installed", "sudo apt install acpi-call-dkms");
  utsname kernel = {};
  uname(&kernel);
  write(std::string(kernel.release) + "/modules.dep", "kernel/a.ko:\nupdates/dkms/acpi_call.ko.xz:\n");
  expect_trouble("acpi_call, which calls it, is not loaded", "'sudo modprobe acpi_call'");
  write("lockdown", "none [integrity] confidentiality\n");
  expect_trouble("Secure Boot", "mokutil --import");
  write("call", "");
  write("options", "quiet acpi=strict\n");
  expect_trouble("acpi=strict", "without that option");
  write("options", "quiet\n");
  EXPECT_EQ(TroubleWith({platform::FirmwareSearch::Found}, places).what, "");
  EXPECT_EQ(TroubleWith({platform::FirmwareSearch::NotAllowed}, places).remedy, "run as root: 'sudo zarnctl doctor'");
  std::set<std::string> told;
  for (auto end = platform::FirmwareSearch::NoBus; end != platform::FirmwareSearch::Found;
       end = static_cast<platform::FirmwareSearch>(static_cast<int>(end) + 1)) {
    const auto [what, remedy] = TroubleWith({end, "DETAIL"}, places);
    EXPECT_TRUE(told.insert(what).second && !remedy.empty()) << what;
  }
}

}  // namespace
}  // namespace zarnctl
