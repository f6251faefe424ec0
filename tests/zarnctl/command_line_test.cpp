#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temporary_folder.h"

namespace {

struct Outcome {
  int exit_code = 0;
  std::string out;
  std::string err;
};

/// Runs the program through the shell, without a terminal.
class CommandLine : public testing::Test {
 protected:
  Outcome Run(const std::string& arguments, const std::string& redirection = "", const std::string& environment = "") {
    const std::string out = (folder_.path() / "out").string();
    const std::string err = (folder_.path() / "err").string();
    const std::string command =
        "ZARN_MACHINE= " + environment + " '" ZARNCTL_PATH "' " + arguments + " >" + out + " 2>" + err + redirection;
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, test::ContentOf(out), test::ContentOf(err)};
  }

  int Record(const std::string& file, const std::string& machine) {
    return Run(std::string("record ").append(file).append(" --machine ").append(machine)).exit_code;
  }

  void ExpectComplaint(const std::string& arguments, int exit_code, const std::string& line) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exit_code, exit_code) << arguments;
    EXPECT_EQ(outcome.err, "zarnctl: " + line + "\n") << arguments;
    EXPECT_EQ(outcome.out, "") << arguments;
  }

  std::string WriteProfile(const std::string& text) {
    const std::filesystem::path file = folder_.path() / "profile.toml";
    std::ofstream(file) << text;
    return file.string();
  }

  test::TemporaryFolder folder_;
};

TEST_F(CommandLine, WrongOnesGetOneLineAndExitWithTwo) {
  const std::string commands = "; use devices, show, set, leds, demo, doctor, config, record or picture";
  const std::string help = "; see 'zarnctl --help'";
  ExpectComplaint("", 2, "a command is missing" + commands);
  ExpectComplaint("paint", 2, "paint: no such command" + commands);
  ExpectComplaint("--machine", 2, "--machine: its value is missing" + help);
  ExpectComplaint("devices --loud", 2, "--loud: not expected here" + help);
  ExpectComplaint("devices show X", 2, "show: not expected here" + help);
  ExpectComplaint("--plugin a --plugin b devices", 2, "--plugin: given more than once" + help);
  ExpectComplaint("record ''", 2, "the name of the file is empty");
  ExpectComplaint("set zarneckeyboard --mode wave --speed 12 --machine four-zone", 2, "--speed 12: WAVE takes 1 to 9");
  ExpectComplaint("leds ZarnECKeyboard ff0000 00ff00 --machine three-zone", 2,
                  "leds: 2 colours given; give one for all, or 3, one for each LED");
}

TEST_F(CommandLine, NothingToLightExitsWithThree) {
  ExpectComplaint("show X --machine four-zone", 3, "X: no such device; there is ZarnECKeyboard");
  ExpectComplaint("devices --machine " + WriteProfile("title = 'Dark'\n"), 3,
                  "discovery reports no lighting device on the notebook \"Dark\"; 'zarnctl doctor' tells why");
  ExpectComplaint(
      "devices --machine " + WriteProfile("title = 'Plain'\nfirmware.version = '2.91'\nkeyboard = {zones = "
                                          "4, rgb = false}\n[[hid_keyboard]]\nzones = 4\nanswers = false\n"),
      3,
      "HID keyboard 1, GetFeature: report 0xa1 cannot be read\nzarnctl: discovery reports no lighting device on the "
      "notebook \"Plain\" (keyboard, HID keyboard); 'zarnctl doctor' tells why");
  const Outcome halved = Run("devices --machine " + WriteProfile("title = 'Halved'\n[[hid_keyboard]]\nzones = 4\n"
                                                                 "[[hid_keyboard]]\nzones = 4\nanswers = false\n"));
  EXPECT_EQ(halved.exit_code, 4);
  EXPECT_EQ(halved.err, "zarnctl: HID keyboard 2, GetFeature: report 0xa1 cannot be read\n");
}

TEST_F(CommandLine, WhatCannotBeLoadedOrWrittenExitsWithOne) {
  EXPECT_EQ(Run("devices --machine nowhere").exit_code, 2);
  const std::string wrong = WriteProfile("title = 1\n");
  ExpectComplaint("devices --machine " + wrong, 1, wrong + ":1: title must be text");
  ExpectComplaint("devices --machine four-zone --plugin /dev/null", 1,
                  "the plug-in cannot be loaded (use --plugin FILE): /dev/null: file too short");
  const Outcome full = Run("devices --machine four-zone", " >/dev/full");
  EXPECT_EQ(full.exit_code, 1);
  EXPECT_EQ(full.err, "zarnctl: the output cannot be written\n");
}

TEST_F(CommandLine, SetAndLedsShowTheLightsThatTheyAskedFor) {
  EXPECT_EQ(Run("set ZarnECKeyboard --mode static --brightness 80 --color 00ff00 --machine one-zone").out,
            "keyboard: brightness 80\nzone 1: #00ff00\n");
  EXPECT_EQ(Run("set ZarnHIDKeyboard --mode snake --speed 7 --brightness 30 --machine hid-keyboard").out,
            "HID keyboard: brightness 30, SNAKE speed 7 direction 2\n");
  EXPECT_EQ(Run("leds ZarnHIDKeyboard ff0000 00ff00 0000ff 000000 --machine two-hid-keyboards").out,
            "HID keyboard: brightness 50\nzone 1: #ff0000\nzone 2: #00ff00\nzone 3: #0000ff\nzone 4: #000000\n"
            "HID keyboard 2\nzone 1: brightness 50, #ff0000\nzone 2: brightness 50, #00ff00\n"
            "zone 3: brightness 50, #0000ff\nzone 4: brightness 50, #000000\nzones 5 to 8: brightness 0, off\n");
}

TEST_F(CommandLine, WholeDeviceLightRunsEffectsAndHasNoColoursPerLed) {
  EXPECT_EQ(Run("set ZarnECGlobal --mode static --color 00ff00 --machine light-bar").out,
            "keyboard: brightness 50\nzone 1: #00ff00\nzone 2: #00ff00\nzone 3: #00ff00\nzone 4: #00ff00\n"
            "light bar: brightness 50, STATIC speed 5 direction 2 colour #00ff00\n");
  ExpectComplaint("leds ZarnECGlobal ff0000 --machine light-bar", 2,
                  "leds: ZarnECGlobal has no colours per LED; use 'zarnctl set'");
  const Outcome direct = Run("set ZarnECGlobal --mode direct --machine light-bar");
  EXPECT_EQ(direct.exit_code, 0);
  EXPECT_EQ(direct.err, "zarnctl: Direct: ZarnECGlobal has no colours per LED, the lights stay as they were\n");
}

TEST_F(CommandLine, TracePrintsFirmwareCallsAndHidReports) {
  EXPECT_EQ(
      Run("--trace set ZarnECKeyboard --mode breathing --speed 7 --brightness 30 --color ff0000 --machine four-zone")
          .err,
      "trace: ZarnGamingFunction.InstanceName=\"ACPI\\\\PNP0C14\\\\ZARN_0\", SetGamingKBBacklight, "
      "gmInput=01 07 1e 00 02 ff 00 00 03 01 00 00 00 00 00 00 -> 0x00000000, gmOutput=0\n");
  const std::string machine = WriteProfile(
      "title = 'Short'\n[[hid_keyboard]]\nzones = 1\nreport_length = 12\nbase_info = [[0x35, 8], [0x31, 8]]\n");
  EXPECT_EQ(Run("--trace leds ZarnHIDKeyboard 0180ff --machine " + machine).err,
            "trace: HidD_GetFeature \\\\?\\hid#vid_1209&pid_0001#0, a1 -> 1, a1 01 21 00 00 00 00 00 00 00 00 00\n"
            "trace: HidD_SetFeature \\\\?\\hid#vid_1209&pid_0001#0, a2 21 00 00 00 00 00 00 00 00 00 00 -> 1\n"
            "trace: HidD_GetFeature \\\\?\\hid#vid_1209&pid_0001#0, a3 -> 1, a3 21 01 00 00 00 00 00 00 00 00 00\n"
            "trace: HidD_SetFeature \\\\?\\hid#vid_1209&pid_0001#0, a4 21 02 32 00 00 01 80 ff 01 00 00 -> 1\n");
}

TEST_F(CommandLine, NothingSentExitsWithFour) {
  const std::string mute =
      WriteProfile("title = 'Mute'\nfirmware = {version = '2.91', instance = ''}\nkeyboard.zones = 1\n");
  const std::string line = "nothing was sent to ZarnECKeyboard; 'zarnctl doctor' tells why";
  ExpectComplaint("demo --machine " + mute, 4, line);
  EXPECT_EQ(Run("set ZarnECKeyboard --mode WAVE --machine " + mute).err, "zarnctl: " + line + "\n");
}

TEST_F(CommandLine, PictureDrawsTheLightsThatSetAndLedsMake) {
  const std::string file = folder_.path() / "lights.svg";
  const Outcome outcome = Run("picture " + file + " ZarnECKeyboard ff0000 00ff00 0000ff --machine three-zone");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  EXPECT_EQ(outcome.out,
            "keyboard: brightness 50\nzone 1: #ff0000\nzone 2: #00ff00\nzone 3: #0000ff\nwritten to " + file + "\n");
  const std::string svg = test::ContentOf(file);
  EXPECT_TRUE(svg.starts_with("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 874 302\"")) << svg;
  EXPECT_NE(svg.find("<text x=\"24\" y=\"38\">keyboard: brightness 50</text>\n"
                     "<rect x=\"24\" y=\"58\" width=\"42\" height=\"34\" rx=\"5\" fill=\"#902020\"/>\n"),
            std::string::npos)
      << svg;
  EXPECT_NE(svg.find("y=\"234\" width=\"70\" height=\"34\" rx=\"5\" fill=\"#202090\"/>\n</svg>\n"), std::string::npos);
  ExpectComplaint("picture " + file + " --machine four-zone", 2, file + " is there already; give another name");
  const std::string elsewhere = folder_.path() / "other.svg";
  ExpectComplaint("picture " + elsewhere, 3, "picture: the lights of this computer cannot be looked at; use --machine");
  ExpectComplaint("picture " + elsewhere + " ZarnECKeyboard ff0000 --mode wave --machine four-zone", 2,
                  "picture: give a mode or colours for the LEDs, not both");
}

TEST_F(CommandLine, DevicesAndShowTellWhatTheDescriptionSays) {
  EXPECT_EQ(Run("devices --machine hid-keyboard").out,
            "ZarnHIDKeyboard: Zarn HID Keyboard Device, 1 zone, 4 LEDs, 14 modes\n"
            "interface type 1, hardware id USB\\VID_1209&PID_0001, usage page FF5A\n");
  EXPECT_EQ(Run("devices --machine hybrid").out,
            "ZarnECGlobal: Zarn Global Device, 1 zone, 1 LED, 9 modes\n"
            "ZarnECKeyboard: Zarn EC Keyboard Device, 1 zone, 4 LEDs, 9 modes\n"
            "ZarnHIDKeyboard: Zarn HID Keyboard Device, 1 zone, 16 LEDs, 14 modes\n"
            "interface type 3\n");
  const std::string shown = Run("show ZarnECKeyboard --machine three-zone").out;
  for (const char* const line :
       {"  maker: Zarn\n", "  zone: Keyboard Backlight zone, 3 LEDs\n", "  LED: Keyboard Backlight zone 3, #000000\n",
        "  mode Direct: code 255, brightness 50 (0 to 100), a colour per LED (active)\n",
        "  mode WAVE: code 3, speed 5 (1 to 9), brightness 50 (0 to 100), direction 0 (0 to 5)\n", "zone 3: off\n"}) {
    EXPECT_NE(shown.find(line), std::string::npos) << line << shown;
  }
}

TEST_F(CommandLine, DoctorTellsWhatIsThereWhatIsMissingAndWhatToDo) {
  const Outcome hybrid = Run("doctor --machine hybrid");
  EXPECT_EQ(hybrid.exit_code, 0);
  EXPECT_EQ(hybrid.out,
            "note     logging: off, not set, the plug-in writes no log; [log] and [registry] in the profile set it\n"
            "fine     hybrid mode: on\n"
            "fine     \\\\?\\hid#vid_1209&pid_0001#0 (1209:0001): a lighting keyboard, serves 21\n"
            "fine     SMBIOS structure of type 172: firmware 2.91, a keyboard with 4 zones in colour, a light bar\n"
            "fine     firmware class ZarnGamingFunction: there\n"
            "fine     discovery: 3 lighting devices ZarnECGlobal ZarnECKeyboard ZarnHIDKeyboard\n");
  const std::string folder = folder_.path().string();
  const Outcome odd = Run("doctor --plugin /nowhere --machine " +
                          WriteProfile("title = 'Odd'\nlog.enabled = true\nenvironment.PROGRAMDATA = '" + folder +
                                       "'\n[[hid_keyboard]]\nzones = 1\ndescriptor = [0xA1, 0x01]\n"));
  EXPECT_EQ(odd.exit_code, 3);
  EXPECT_EQ(odd.err, "");
  EXPECT_EQ(
      odd.out,
      "missing  the plug-in cannot be loaded (use --plugin FILE): /nowhere: cannot open shared object file: No "
      "such file or directory\n"
      "missing  logging: on, but nothing was written to " +
          folder +
          "/OEM/ZarnLightingService/Log; the folder and those above it must be this user's or root's, with nobody "
          "else allowed to write there\n"
          "note     hybrid mode: off, not set, a HID keyboard hides the devices of the embedded controller; "
          "[log] and [registry] in the profile set it\n"
          "note     HID devices: none\n"
          "note     \\\\?\\hid#vid_1209&pid_0001#0 (1209:0001): its report descriptor cannot be read, byte 2: "
          "the descriptor ends inside a collection\n"
          "missing  SMBIOS table: cannot be read; [firmware] in the profile makes one\n"
          "missing  firmware class ZarnGamingFunction: not there (0x80041002), the embedded controller's devices "
          "stay dark; "
          "[firmware] in the profile makes one, unless its instance is empty\n"
          "missing  discovery: 0 lighting devices\n");
}

TEST_F(CommandLine, ConfigShowsWhatIsSetAndWhatIsWrongWithIt) {
  const std::string folder = folder_.path().string();
  const std::string machine = WriteProfile("title = 'Set'\nlog.enabled = true\nenvironment.PROGRAMDATA = '" + folder +
                                           "'\n[registry.'SOFTWARE\\OEM\\ZarnLightingService']\nHybridMode = 2\n");
  EXPECT_EQ(Run("config --machine " + machine).out,
            "logging: on\nlog folder: " + folder +
                "/OEM/ZarnLightingService/Log\nhybrid mode: off, set to 2 (1 turns it on)\n");
  EXPECT_FALSE(std::filesystem::exists(folder + "/OEM")) << "the plug-in was loaded";
  const std::string odd = WriteProfile("title = 'Odd'\nenvironment.PROGRAMDATA = \"/\\u001b[2J\\u009b\"\n");
  EXPECT_EQ(Run("config --machine " + odd).out.find("/?[2J?/OEM/"),
            std::string("logging: off, not set\nlog folder: ").size());

  const std::string settings = folder + "/zarn/settings.toml";
  std::filesystem::create_directory(folder + "/zarn");
  const auto config = [&](const std::string& text) {
    std::ofstream(settings) << "[registry.'SOFTWARE\\OEM\\ZarnLightingService']\n" << text;
    return Run("config", "", "XDG_CONFIG_HOME=" + folder);
  };
  const Outcome sound = config("HybridMode = 1\nHybridmod = 1\n");
  EXPECT_EQ(sound.exit_code, 0);
  EXPECT_NE(sound.out.find("hybrid mode: on\n"), std::string::npos) << sound.out;
  EXPECT_NE(sound.out.find("  " + settings + ": 2 values, of which 1 not known\n"), std::string::npos) << sound.out;
  const Outcome faulty = config("HybridMode = 'on'\n");
  EXPECT_EQ(faulty.exit_code, 1);
  const std::string complaint = settings + ":2: HybridMode must be a whole number from 0 to 4294967295";
  EXPECT_EQ(faulty.err, "zarnctl: " + complaint + "\n");
  EXPECT_NE(faulty.out.find("  " + complaint + "; nothing in it counts\n"), std::string::npos) << faulty.out;
}

TEST_F(CommandLine, ARecordPlaysBackWhatTheMachineWas) {
  const std::pair<std::string, int> kProfiles[] = {
      {"hybrid", 0}, {"light-bar", 0}, {"light-bar-silent", 0}, {"two-hid-keyboards", 4}, {"narrow-fields", 4}};
  for (const auto& [name, exit_code] : kProfiles) {
    const std::string first = folder_.path() / name;
    const std::string second = first + "-again";
    EXPECT_EQ(Record(first, name), exit_code);
    EXPECT_EQ(Record(second, first), exit_code);
    EXPECT_EQ(test::ContentOf(first), test::ContentOf(second));
    EXPECT_EQ(Run("devices --machine " + first).out, Run("devices --machine " + name).out);
  }
  const std::string methods =
      "methods = [ '2 SetGamingLED(in uint8 gmInput[8], out uint32 gmOutput)', '9 Other(out object o)' ]";
  const std::string described =
      WriteProfile("title = 'Described'\n[firmware]\nversion = '2.91'\n" + methods + "\n[keyboard]\nzones = 1\n");
  const std::string file = folder_.path() / "described";
  EXPECT_EQ(Record(file, described), 0);
  EXPECT_NE(test::ContentOf(file).find(methods), std::string::npos) << test::ContentOf(file);
  EXPECT_EQ(Run("leds ZarnECKeyboard ff0000 --machine " + file).err,
            "zarnctl: the firmware has no method SetGamingKBBacklight\n"
            "zarnctl: the firmware has no method SetGamingRgbKb\n");
  EXPECT_EQ(Run("set ZarnECKeyboard --mode wave --machine " + file).err,
            "zarnctl: the firmware has no method SetGamingKBBacklight\n");
  const std::string lit = "set ZarnHIDKeyboard --mode wave --direction 1 --machine ";
  EXPECT_EQ(Run(lit + (folder_.path() / "narrow-fields").string()).out, Run(lit + "narrow-fields").out);
  const std::string there = WriteProfile("title = 'There'\n");
  ExpectComplaint("record " + there + " --machine hybrid", 2, there + " is there already; give another name");
}

TEST_F(CommandLine, ARecordHoldsNoMoreThanThePlugInUnderstands) {
  // Behind the ids and the declared fields a device could put a serial number.
  std::string tail;
  for (int i = 0; i < 40; ++i) tail += ", 0x53";
  const std::string machine = WriteProfile(
      "title = 'Chatty'\n[[hid_keyboard]]\nzones = 4\nbase_info = [[0x35, 24]]\n"
      "attribute_reply = [0xA1, 1, 0x21" +
      tail +
      "]\n"
      "base_info_reply = [0xA3, 0x21, 4, 0, 1" +
      tail +
      "]\n"
      "[[hid_keyboard]]\nzones = 1\nanswers = false\n");
  const std::string file = folder_.path() / "record.toml";
  const Outcome outcome = Run("record " + file + " --machine " + machine);
  EXPECT_EQ(outcome.exit_code, 4);
  EXPECT_EQ(outcome.err,
            "zarnctl: not recorded: the SMBIOS table, which cannot be read\n"
            "zarnctl: not recorded: the device 1209:0001's answers: it does not answer report A1\n");
  const std::string record = test::ContentOf(file);
  EXPECT_EQ(record.find("0x53"), std::string::npos) << record;
  EXPECT_NE(record.find("zones = 4\n"), std::string::npos) << "the zones' low 16 bits";
  ExpectComplaint("record /dev/null/x --machine hybrid", 1, "\"/dev/null/x\" cannot be written: Not a directory");
}

TEST_F(CommandLine, DemoShowsEveryModeAndEndsByItself) {
  const Outcome outcome = Run("demo --machine hid-keyboard");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.err;
  // The lights go by the mode that the keyboard's own code stands for.
  for (const std::string mode : {"BREATHING", "NEON", "OPMODE", "WAVE", "SHIFTING", "ZOOM", "METEOR", "TWINKLING",
                                 "RIPPLE", "SNAKE", "DISCO", "COMBO"}) {
    const std::size_t step = outcome.out.find("ZarnHIDKeyboard: " + mode + "\nHID keyboard: ");
    ASSERT_NE(step, std::string::npos) << mode;
    EXPECT_EQ(outcome.out.find(", " + mode + " speed ", step), outcome.out.find(", ", step)) << mode;
  }
}

TEST(Terminal, CursorIsShownWhileTheDemoIsStoppedAndWhenASignalEndsIt) {
  int terminal = -1;
  termios settings{};
  cfmakeraw(&settings);
  // Otherwise a key that signals makes the terminal drop what was just written.
  settings.c_lflag = ISIG | NOFLSH;
  settings.c_oflag = OPOST | ONLCR;
  settings.c_cc[VINTR] = '\x03';
  settings.c_cc[VSUSP] = '\x1A';
  const pid_t child = forkpty(&terminal, nullptr, &settings, nullptr);
  if (child == 0) {
    unsetenv("NO_COLOR");
    std::signal(SIGINT, SIG_DFL);  // a shell makes its background jobs ignore it
    execl("/bin/sh", "sh", "-mc", "'" ZARNCTL_PATH "' demo --machine four-zone; echo prompt; fg", nullptr);
    _exit(127);
  }
  if (child < 0) GTEST_SKIP() << "there are no pseudo-terminals here";
  // Pairs: what the terminal shows next, and the key that is pressed then, Ctrl-Z or Ctrl-C.
  static constexpr std::pair<const char*, const char*> kSteps[] = {
      {"\033[?25l", ""}, {"▇", "\x1A"}, {"\033[?25h", ""}, {"prompt", ""},
      {"\033[?25l", ""}, {"▇", "\x03"}, {"\033[?25h", ""}};
  const auto* step = std::begin(kSteps);
  std::string screen;
  std::array<char, 4096> block{};
  // When the process has ended, reading its terminal fails.
  for (ssize_t got = 0; (got = read(terminal, block.data(), block.size())) > 0;) {
    screen.append(block.data(), static_cast<std::size_t>(got));
    for (std::size_t place = 0; step != std::end(kSteps) && (place = screen.find(step->first)) != std::string::npos;
         ++step) {
      screen.erase(0, place + std::strlen(step->first));
      EXPECT_EQ(write(terminal, step->second, std::strlen(step->second)), std::strlen(step->second));
    }
  }
  close(terminal);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == SIGINT : WEXITSTATUS(status) == 130) << "as the shell saw it";
  EXPECT_EQ(step, std::end(kSteps)) << "not shown: step " << step - std::begin(kSteps);
}

}  // namespace
