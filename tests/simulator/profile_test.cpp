#include "simulator/profile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

#include "tests/support/temporary_folder.h"

namespace simulator {
namespace {

namespace fs = std::filesystem;

class ProfileTest : public ::testing::Test {
 protected:
  fs::path File(std::string_view text) {
    std::ofstream(file_) << text;
    return file_;
  }
  std::string Complaint(const fs::path& file) {
    try {
      LoadProfile(file);
      return "";
    } catch (const ProfileError& error) {
      EXPECT_TRUE(std::string_view(error.what()).starts_with(file.string() + ":")) << error.what();
      return error.what() + file.string().size() + 1;
    }
  }

  const test::TemporaryFolder folder_;
  const fs::path file_ = folder_.path() / "profile.toml";
};

TEST_F(ProfileTest, EveryKeyReachesTheProfile) {
  const Profile profile = LoadProfile(File(R"(
title = "All"
user = "Jürgen"
firmware = {version = "3.255", instance = 'A\B', latency_ms = 10000, methods = ['2 M(in uint8 b[])']}
keyboard = {zones = 3, rgb = false}
light_bar = {present = true, report = [0, 255], return = 7}
log.enabled = true
registry = {'SOFTWARE\OEM\ZarnLightingService' = {HybridMode = 0xFFFF0001}}
environment.PROGRAMDATA = 'C:\Data'
[[hid_keyboard]]
zones = 65535
[[hid_keyboard]]
zones = 16
effects = 0xFFFFFFFF
vendor = 0xABCD
product = 0x1234
usage_page = 0xFF00
usage = 9
report_length = 8
other_collection = true
plugged = false
answers = false
device_ids = [0x21, 1]
claimed_ids = 200
reply_id = 0x22
base_info = [[0x35, 12], [0x31, 32]]
update = []
)"));
  EXPECT_EQ(profile.title, "All");
  EXPECT_EQ(profile.user_name, L"J\u00FCrgen");
  EXPECT_EQ(profile.firmware_instance, L"A\\B");
  const auto& [zones, light_bar, version, report, returned] = profile.ec;
  EXPECT_TRUE(zones == 3 && light_bar && version == (FirmwareVersion{3, 255}) && returned == 7);
  EXPECT_EQ(report, (std::vector<std::uint8_t>{0, 255}));
  EXPECT_EQ(profile.firmware_methods, std::vector<std::string>{"2 M(in uint8 b[])"});
  EXPECT_TRUE(profile.firmware_record && !profile.rgb_keyboard && profile.firmware_latency_ms == 10000);
  const std::wstring key = L"SOFTWARE\\OEM\\ZarnLightingService";
  EXPECT_EQ(profile.registry, (platform::RegistryValues{{key, {{L"HybridMode", {1, 0, 0xFF, 0xFF}}}},
                                                        {key + L"\\Log", {{L"ZarnLightingService", {1, 0, 0, 0}}}}}));
  EXPECT_EQ(profile.environment, (decltype(profile.environment){{L"PROGRAMDATA", L"C:\\Data"}}));
  ASSERT_EQ(profile.hid_keyboards.size(), 2U);
  EXPECT_EQ(profile.hid_keyboards[0].zones, 65535);
  const HidKeyboard::Settings& all = profile.hid_keyboards[1];
  EXPECT_EQ(std::tuple(all.zones, all.effects, all.vendor, all.product, all.usage_page, all.usage, all.report_length),
            std::tuple(16, 0xFFFFFFFF, 0xABCD, 0x1234, 0xFF00, 9, 8U));
  EXPECT_TRUE(all.other_collection && !all.plugged && !all.answers && all.claimed_ids == 200 && all.reply_id == 0x22);
  EXPECT_EQ(all.device_ids, (std::vector<std::uint8_t>{0x21, 1}));
  ASSERT_TRUE(all.base_info.size() == 2 && all.update.empty());
  EXPECT_TRUE(all.base_info[0].usage == 0x35 && all.base_info[0].bits == 12);
}

TEST_F(ProfileTest, EveryMistakeIsNamedWithItsLineAndRemedy) {
  const std::string title = "title = 'T'\n";
  const std::string firmware = title + "[firmware]\nversion = '2.91'\n";
  const std::string keyboard = firmware + "[keyboard]\n";
  const std::string hid = title + "[[hid_keyboard]]\n";
  std::string keyboards;
  for (int i = 0; i < 17; ++i) keyboards += "[[hid_keyboard]]\nzones = 1\n";
  const std::string user = "text without slashes and control characters, empty for a name that cannot be told";
  const std::string allowed = "text like \"2.91\", both numbers from 0 to 255";
  const std::pair<std::string, std::string> cases[] = {
      {"title = 1\n", "1: title must be text"},
      {title + "usr = 'x'\n",
       "2: \"usr\" is not known here, only: title, user, firmware, keyboard, light_bar, hid_keyboard, log, registry, "
       "environment"},
      {title + "user = '../x'\n", "2: user must be " + user},
      {title + "user = '..\\x'\n", "2: user must be " + user},
      {title + "\n[firmware]\n", "3: version is missing here: " + allowed},
      {title + "[firmware]\nversion = '2.256'\n", "3: version must be " + allowed},
      {title + "[firmware]\nversion = '2.91b'\n", "3: version must be " + allowed},
      {title + "\n[keyboard]\nzones = 4\n", "3: keyboard needs a firmware that drives it: [firmware]"},
      {firmware + "latency_ms = 10001\n", "4: latency_ms must be a whole number from 0 to 10000"},
      {firmware + "methods = ['SetGamingLED()']\n",
       "4: methods must be 1 to 1000 texts like \"2 SetGamingLED(in uint8 gmInput[], out uint32 gmOutput)\""},
      {keyboard + "zones = 2\n", "5: zones must be 0, 1, 3 or 4"},
      {hid + "zones = 1\nreport_length = 2\n", "4: report_length must be a whole number from 3 to 16384"},
      {hid + "zones = 1\nreport_length = 8\n", "2: report_length is too short, base_info and update need 12"},
      {hid + "zones = 1\nbase_info = [[0x31, 8], [0x35, 8]]\n",
       "4: base_info must be pairs of usage and bits, [[0x35, 16]], of 0x34, 0x32, 0x35, 0x33, 0x31 in this order"},
      {title + keyboards, "2: hid_keyboard must be at most 16 tables: [[hid_keyboard]]"},
      {title + "[registry]\nKey = 1\n", "3: Key must be a table: [registry.'KEY\\KEY']"},
      {title + "[environment]\na = '1'\nA = '2'\n", "3: a is there already"},
      {title + "[registry.'K']\nV = 4294967296\n", "3: V must be a whole number from 0 to 4294967295"},
  };
  for (const auto& [text, complaint] : cases) EXPECT_EQ(Complaint(File(text)), complaint) << text;
  // The words are the parser's own, so only the place is tested.
  EXPECT_TRUE(Complaint(File(title + "[log]\nenabled = tr\n")).starts_with("3: "));
  EXPECT_TRUE(Complaint(File("title = '\xFF'\n")).starts_with("1: "));
}

TEST_F(ProfileTest, UnreadableFileIsNamedWithTheReason) {
  EXPECT_EQ(Complaint("/no/such.toml"), " cannot be read: No such file or directory");
  EXPECT_EQ(Complaint("/usr"), " cannot be read: Is a directory");
  EXPECT_EQ(Complaint(File("a" + std::string(1001, '.'))), " more than 1000 dots, so deep no key may be");
  EXPECT_TRUE(Complaint(File("a" + std::string(1000, '.'))).starts_with("1: "));
  EXPECT_EQ(Complaint(File(std::string((1 << 20) + 1, '\n'))), " more than 1 MiB");
}

TEST_F(ProfileTest, EveryShippedProfileLoads) {
  for (const auto& entry : fs::directory_iterator(ZARN_PROFILE_DIR)) {
    EXPECT_FALSE(LoadProfile(entry.path()).title.empty()) << entry.path();
  }
}

}  // namespace
}  // namespace simulator
