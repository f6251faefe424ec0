/// What only a real kernel shows: rights, time limits, the computer's own SMBIOS table.

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>

#include "platform/linux/hidraw.h"
#include "tests/cases/case.h"
#include "tests/system/emulated_firmware.h"

namespace test {
namespace {

using Clock = std::chrono::steady_clock;

class KernelCase : public Case {
 protected:
  /// What a command prints, and its exit code, in a process of its own that runs as `user`.
  static std::string Run(const std::string& command, uid_t user = 0) {
    const TemporaryFolder folder;
    const std::string out = folder.path() / "out";
    const pid_t child = fork();
    if (child == 0) {
      if (std::freopen(out.c_str(), "w", stdout) == nullptr || setgid(user) != 0 || setuid(user) != 0) {
        _exit(126);
      }
      execl("/bin/busybox", "sh", "-c", (command + " 2>&1").c_str(), nullptr);
      _exit(127);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return ContentOf(out) + "exit code " + std::to_string(WEXITSTATUS(status)) + "\n";
  }
  static std::string Zarnctl(const std::string& arguments, uid_t user = 0) {
    return Run(std::string(ZARNCTL_PATH) + " " + arguments, user);
  }
  /// The line about the keyboard's node, with N for the node's number.
  static std::string LineAboutTheNode(const std::string& text) {
    const std::string named = std::regex_replace(text, std::regex("hidraw[0-9]+"), "hidrawN");
    std::smatch line;
    std::regex_search(named, line, std::regex(".*/dev/hidrawN.*"));
    return line.str();
  }

  /// Pushes to hung keyboards from this thread and the worker, and tears down. The wire has that alone.
  void PushAndTearDown(std::uint16_t keyboards) {
    simulator::Profile profile = HidProfile(1, 0);
    while (profile.hid_keyboards.size() < keyboards) {
      profile.hid_keyboards.push_back(profile.hid_keyboards.back());
      ++profile.hid_keyboards.back().product;  // of equal keyboards the first one gets all reports
    }
    Start(profile);
    EXPECT_EQ(Discover().count, 1);
    Device device = Create("ZarnHIDKeyboard");
    Wire();
    for (std::size_t i = 0; i < keyboards; ++i)
      Keyboard(i).Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Stall, .stall_ms = 600'000});
    const Clock::time_point began = Clock::now();
    device->ChooseMode(0);
    device->WriteColorsToDevice();
    std::cout << "a push to hung keyboards: " << SecondsSince(began) << " s\n";
    device.reset();
    std::cout << "with the teardown: " << SecondsSince(began) << " s\n";
  }

  /// Udev's database about a node.
  static std::string DatabaseOf(const std::string& node) {
    struct stat entry {};
    EXPECT_EQ(stat(node.c_str(), &entry), 0);
    return "/run/udev/data/c" + std::to_string(major(entry.st_rdev)) + ":" + std::to_string(minor(entry.st_rdev));
  }
  /// Does what udev does for a node with the tag uaccess when user 65534 logs in: puts a right into the node's access
  /// list, and the tags into its database.
  static void GiveToNobody(const std::string& node, const std::string& tags) {
    struct Entry {
      std::uint16_t tag, rights;
      std::uint32_t id;
    };
    const struct {
      std::uint32_t version = 2;
      // The owner, user 65534, the group, the mask, the others.
      Entry entries[5] = {{1, 6, ~0U}, {2, 6, 65534}, {4, 0, ~0U}, {0x10, 6, ~0U}, {0x20, 0, ~0U}};
    } list;
    EXPECT_EQ(setxattr(node.c_str(), "system.posix_acl_access", &list, sizeof(list), 0), 0) << std::strerror(errno);
    std::filesystem::create_directories("/run/udev/data");
    std::ofstream(DatabaseOf(node)) << "I:1\n" << tags << "V:1\n";
  }

  static double SecondsSince(Clock::time_point began) {
    return std::chrono::duration<double>(Clock::now() - began).count();
  }
};

/// The emulated computer's table has version 2.91, four RGB zones and a light bar; the table of the notebook that is
/// placed here has one zone alone. zarnctl runs as a process of its own, which knows nothing of that notebook.
TEST_F(KernelCase, TheRecordComesFromTheComputersOwnTableAndZarnctlDrivesItsFirmware) {
  simulator::Profile profile = ProfileOf("one-zone");
  profile.ec.lights_report = {0, 0, 0, 0, 0, 0, 0, 1, 1};
  Start(profile);
  EXPECT_EQ(Zarnctl("devices"),
            "ZarnECGlobal: Zarn Global Device, 1 zone, 1 LED, 9 modes\n"
            "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 4 LEDs, 9 modes\ninterface type 3\nexit code 0\n");
  EmulatedFirmware firmware;
  EXPECT_EQ(Zarnctl("--trace set ZarnECGlobal --mode neon"),
            R"(trace: ZarnGamingFunction.InstanceName="ACPI\\PNP0C14\\ZGF_0", GetGamingLED, gmInput=16 -> 0x00000000, )"
            "gmOutput=00 00 00 00 00 00 00 01 01 00 00 00 00 00 00, gmReturn=0\n"
            R"(trace: ZarnGamingFunction.InstanceName="ACPI\\PNP0C14\\ZGF_0", SetGamingKBBacklight, )"
            "gmInput=02 05 32 00 02 00 00 00 03 03 00 00 00 00 00 00 -> 0x00000000, gmOutput=0\n"
            "ZarnECGlobal: NEON\nexit code 0\n");
  EXPECT_EQ(firmware.TakeInHex(), (Lines{"4: 10 00 00 00", "20: 02 05 32 00 02 00 00 00 03 03 00 00 00 00 00 00"}));
}

TEST_F(KernelCase, ZarnctlSaysWhatKeepsTheFirmwareFromBeingCalledAndRecordsWhatItDescribes) {
  Start(HidProfile(1, 0));
  Unplug();
  const std::string about = "firmware class ZarnGamingFunction: ";
  const std::string may_not =
      "this user may not read what the firmware describes; run as root: 'sudo zarnctl doctor'\n";
  EXPECT_NE(Zarnctl("doctor").find("fine     " + about + "there\n"), std::string::npos);
  EXPECT_NE(Zarnctl("doctor", 65534).find("missing  " + about + may_not), std::string::npos);
  EXPECT_EQ(
      Zarnctl("set ZarnECKeyboard --mode wave", 65534),
      "zarnctl: discovery reports no lighting device on this computer; 'zarnctl doctor' tells why, --machine drives a "
      "simulated notebook; an embedded controller's lights are shown to root alone: 'sudo zarnctl devices'\n"
      "exit code 3\n");
  Run("rmmod acpi_call");
  EXPECT_NE(
      Zarnctl("doctor").find("missing  " + about + "there, but the module acpi_call, which calls it, is not installed"),
      std::string::npos);
  EXPECT_EQ(Zarnctl("leds ZarnECKeyboard ff0000"),
            "zarnctl: the kernel cannot call the firmware; 'sudo zarnctl doctor' tells what to do\n"
            "ZarnECKeyboard: Direct\nexit code 4\n");
  EXPECT_EQ(Run("insmod /modules/acpi_call.ko"), "exit code 0\n");
  EXPECT_EQ(Zarnctl("record /tmp/recorded"),
            "written; 'zarnctl --machine /tmp/recorded demo' plays it back\nexit code 0\n");
  EXPECT_NE(ContentOf("/tmp/recorded").find("'20 SetGamingKBBacklight(in uint8 gmInput[16], out uint32 gmOutput)'"),
            std::string::npos)
      << ContentOf("/tmp/recorded");
}

TEST_F(KernelCase, WithoutTheRightToOpenANodeThereIsNoKeyboard) {
  Start(HidProfile(4, 0));
  ASSERT_EQ(seteuid(65534), 0);
  EXPECT_EQ(Discover().count, 0);
  ASSERT_EQ(seteuid(0), 0);
  EXPECT_EQ(Discover().count, 1);
  EXPECT_EQ(Wire(), Lines{"GetFeature 0 a1"});
}

TEST_F(KernelCase, ZarnctlDrivesTheKeyboardOfThisComputerAndSaysWhatHoldsItUp) {
  Start("hid-keyboard");
  EXPECT_EQ(Zarnctl("devices"),
            "ZarnHIDKeyboard: Zarn HID Keyboard Device, 1 zone, 4 LEDs, 14 modes\n"
            "interface type 1, hardware id USB\\VID_1209&PID_0001, usage page FF5A\nexit code 0\n");
  EXPECT_EQ(Zarnctl("set ZarnHIDKeyboard --mode static --color ff8000"), "ZarnHIDKeyboard: STATIC\nexit code 0\n");
  EXPECT_EQ(Keyboard().Lights().zones[3].color, (simulator::Color{0xFF, 0x80, 0}));
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor")), "fine     /dev/hidrawN (1209:0001): a lighting keyboard, serves 21");
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor", 65534)),
            "missing  /dev/hidrawN (1209:0001): a lighting device, which this user may not open; plug it in again once "
            "the package's udev rule is installed, or run as root");
  Keyboard().Misbehave({});
  EXPECT_EQ(LineAboutTheNode(Zarnctl("doctor")),
            "missing  /dev/hidrawN (1209:0001): a lighting device, which does not answer report A1 (error 31); plug it "
            "in again");
}

TEST_F(KernelCase, ALateAnswerIsAnAnswer) {
  Start(HidProfile(2, 0));
  Keyboard().Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Late, .stall_ms = 300});
  EXPECT_EQ(Discover().count, 1);
  const Device keyboard = Create("ZarnHIDKeyboard");
  Choose(keyboard, "STATIC", {.colors = {0xFF}});
  EXPECT_EQ(Keyboard().Lights().zones[1].color, (simulator::Color{255, 0, 0}));
}

TEST_F(KernelCase, EachHungKeyboardIsAskedOnceInAPushAndATeardown) {
  PushAndTearDown(1);
  ASSERT_EQ(Wire(), Lines{"SetFeature 0 a4 21 02 32 00 00 00 00 00 01"});
  PushAndTearDown(2);
  EXPECT_EQ(Wire(),
            (Lines{"SetFeature 0 a4 21 02 32 00 00 00 00 00 01", "SetFeature 1 a4 21 02 32 00 00 00 00 00 01"}));
}

TEST_F(KernelCase, AnAnswerOfNoBytesOrOfAnotherReportIsNone) {
  const auto expect_no_answer = [this](const HidKeyboard::Settings& settings) {
    simulator::Profile profile = HidProfile(4, 0);
    profile.hid_keyboards = {settings};
    Start(profile);
    EXPECT_EQ(Discover().count, 0);
    EXPECT_EQ(Log("TsHID::GetHIDFeature"), Lines{"Error getting feature from HID device"});
  };
  HidKeyboard::Settings settings = HidSettings(4, 0);
  settings.attribute_reply = {0xA3, 1, 0x21};
  expect_no_answer(settings);
  settings.descriptor = HidKeyboard(settings).report_descriptor();
  settings.report_length = 0;  // it answers no bytes, against its descriptor
  expect_no_answer(settings);
}

TEST_F(KernelCase, UdevGivesNodesWithLightsToTheUserAtTheMachineAndThoseWithKeysOnlyIfTheOwnerSharesThem) {
  HidKeyboard::Settings combined = HidSettings(4, 0);
  combined.other_collection = true;
  HidKeyboard::Settings plain = combined;
  plain.usage_page = 0xFF00;
  simulator::Profile profile = HidProfile(4, 0);
  profile.hid_keyboards.insert(profile.hid_keyboards.end(), {combined, plain});
  Start(profile);
  const auto given = [] {
    std::vector<bool> answers;
    for (const auto& device : platform::FindHidrawDevices({})) {
      const std::string said = Run("udevadm test /sys/class/hidraw/" + device.node.filename().string());
      answers.push_back(std::regex_search(said, std::regex("\nTAGS=:(uaccess:zarn|zarn:uaccess):\n")));
    }
    return answers;
  };
  EXPECT_EQ(given(), (std::vector{true, false, false}));
  EXPECT_NE(Zarnctl("doctor", 65534)
                .find(R"(&col02 (1209:0001): a lighting device, which this user may not open; what )"
                      "is typed comes out of it, too, so it is root's: run as root, or let whoever "
                      "sits here use it and read every key: 'sudo install -Dm644 /dev/null "
                      "/etc/zarn/shared-keyboards', then plug it in again or restart\n"),
            std::string::npos);
  EXPECT_EQ(Run("mkdir /etc/zarn && touch /etc/zarn/shared-keyboards && chmod 666 /etc/zarn/shared-keyboards"),
            "exit code 0\n");
  EXPECT_EQ(given(), (std::vector{true, false, false})) << "anybody could have written the file";
  EXPECT_EQ(Run("chmod 644 /etc/zarn/shared-keyboards"), "exit code 0\n");
  EXPECT_EQ(given(), (std::vector{true, true, false}));
  EXPECT_NE(Zarnctl("doctor").find("(1209:0001): whoever sits at this computer can also read what is typed on it, as "
                                   "/etc/zarn/shared-keyboards allows\n"),
            std::string::npos);
  EXPECT_EQ(Run("rm -r /etc/zarn"), "exit code 0\n");
}

/// Runs the package's scripts with udev's own tool. No daemon runs here, so the wait for it takes the tags from one
/// node as the daemon would.
TEST_F(KernelCase, ThePackageTakesBackWhatItsRuleHadGiven) {
  HidKeyboard::Settings combined = HidSettings(4, 0);
  combined.other_collection = true;
  simulator::Profile profile = HidProfile(4, 0);
  profile.hid_keyboards.push_back(combined);
  Start(profile);
  std::vector<std::string> nodes;
  for (const auto& device : platform::FindHidrawDevices({})) nodes.push_back(device.node.string());
  ASSERT_EQ(nodes.size(), 2U);
  const auto run = [](const std::string& script, const std::string& loses_its_tags) {
    return Run("ldconfig() { :; }; udevadm() { if [ $1 = settle ]; then sed -i /^Q:/d " + DatabaseOf(loses_its_tags) +
               "; else /bin/udevadm \"$@\"; fi; }; set -- " + script);
  };
  const auto usable = [&] {
    std::vector<bool> answers;
    answers.reserve(nodes.size());
    for (const std::string& node : nodes) answers.push_back(Run(": <" + node, 65534) == "exit code 0\n");
    return answers;
  };
  for (const std::string& node : nodes) GiveToNobody(node, "G:uaccess\nQ:uaccess\n");
  ASSERT_EQ(usable(), (std::vector{true, true}));
  const std::string said = run("configure 0.1.0; . /postinst", nodes[1]);
  EXPECT_NE(said.find("zarn: " + nodes[1] + " is no longer given to the user at the machine, because what is typed"),
            std::string::npos)
      << said;
  EXPECT_EQ(said.find(nodes[0]), std::string::npos) << said;
  EXPECT_EQ(usable(), (std::vector{true, false}));
  for (const std::string& node : nodes) GiveToNobody(node, "G:uaccess\nG:zarn\nQ:uaccess\nQ:zarn\n");
  EXPECT_EQ(run("upgrade 0.2.0; . /postrm", nodes[0]), "exit code 0\n");
  EXPECT_EQ(usable(), (std::vector{true, true}));
  EXPECT_EQ(Run("mkdir -p /etc/modules-load.d && echo acpi_call >/etc/modules-load.d/zarn.conf"), "exit code 0\n");
  run("remove; . /postrm", nodes[0]);
  EXPECT_FALSE(std::filesystem::exists("/etc/modules-load.d/zarn.conf"));
  EXPECT_EQ(usable(), (std::vector{false, true})) << "the second one is another rule's, too";
}

/// Each of many lighting collections answers every question, and then refuses every update.
TEST_F(KernelCase, AHostileKeyboardCostsNoMoreThanItsPatience) {
  HidKeyboard::Settings hostile = HidSettings(16, 0);
  const std::vector<std::uint8_t> one = HidKeyboard(hostile).report_descriptor();
  for (int i = 0; i < 20; ++i) hostile.descriptor.insert(hostile.descriptor.end(), one.begin(), one.end());
  simulator::Profile profile = HidProfile(1, 0);
  profile.hid_keyboards = {hostile};
  Start(profile);
  const Clock::time_point began = Clock::now();
  EXPECT_EQ(Discover().count, 1);
  Device device = Create("ZarnHIDKeyboard");
  std::cout << "discovery of a hostile keyboard: " << SecondsSince(began) << " s\n";
  Wire();
  Keyboard().Misbehave({});
  const Clock::time_point pushed = Clock::now();
  device->WriteColorsToDevice();
  std::cout << "a push to it: " << SecondsSince(pushed) << " s\n";
  EXPECT_LE(Wire().size(), 30U);
}

}  // namespace
}  // namespace test
