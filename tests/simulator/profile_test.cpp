#include "simulator/profile.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

namespace simulator {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class ProfileTest : public ::testing::Test {
 protected:
  void TearDown() override { fs::remove(file_); }

  Profile Load(std::string_view text) {
    std::ofstream(file_) << text;
    return LoadProfile(file_);
  }

  /// The complaint about `text`, without the file's name in front.
  std::string Complaint(std::string_view text) {
    try {
      Load(text);
      return "";
    } catch (const ProfileError& error) {
      const std::string what = error.what();
      EXPECT_TRUE(what.starts_with(file_.string() + ":")) << what;
      EXPECT_EQ(what.find('\n'), std::string::npos) << what;
      return what.substr(file_.string().size() + 1);
    }
  }

  const fs::path file_ = fs::temp_directory_path() / ("profile_test_" + std::to_string(::getpid()) + ".toml");
};

TEST_F(ProfileTest, EveryKeyReachesTheProfile) {
  const Profile profile = Load(R"(
title = "All"
user = "Jürgen"
[firmware]
version = "3.255"
instance = 'A\B'
latency_ms = 10000
[keyboard]
zones = 3
rgb = false
[light_bar]
present = true
[log]
enabled = true
[registry.'SOFTWARE\OEM\ZarnLightingService']
HybridMode = 0xFFFF0001
[environment]
PROGRAMDATA = 'C:\Data'
)");
  EXPECT_EQ(profile.title, "All");
  EXPECT_EQ(profile.user_name, L"J\u00FCrgen");
  EXPECT_EQ(profile.ec.version, (FirmwareVersion{3, 255}));
  EXPECT_EQ(profile.firmware_instance, L"A\\B");
  EXPECT_EQ(profile.firmware_latency_ms, 10000U);
  EXPECT_EQ(profile.ec.keyboard_zones, 3);
  EXPECT_FALSE(profile.rgb_keyboard);
  EXPECT_TRUE(profile.ec.light_bar);
  EXPECT_TRUE(profile.firmware_record);
  EXPECT_EQ(profile.registry,
            (std::map<std::wstring, std::map<std::wstring, Bytes>>{
                {L"SOFTWARE\\OEM\\ZarnLightingService", {{L"HybridMode", {1, 0, 0xFF, 0xFF}}}},
                {L"SOFTWARE\\OEM\\ZarnLightingService\\Log", {{L"ZarnLightingService", {1, 0, 0, 0}}}},
            }));
  EXPECT_EQ(profile.environment, (std::map<std::wstring, std::wstring>{{L"PROGRAMDATA", L"C:\\Data"}}));
}

TEST_F(ProfileTest, WhatIsLeftOutTakesItsDefault) {
  const Profile bare = Load("title = 'Bare'\n");
  EXPECT_FALSE(bare.firmware_record);
  EXPECT_EQ(bare.firmware_instance, L"");
  EXPECT_EQ(bare.user_name, L"player");
  EXPECT_TRUE(bare.registry.empty() && bare.environment.empty());

  const Profile firmware = Load("title = 'Firmware'\n[firmware]\nversion = '2.91'\n");
  EXPECT_EQ(firmware.firmware_instance, L"ACPI\\PNP0C14\\ZARN_0");
  EXPECT_EQ(firmware.ec.keyboard_zones, 0);
  EXPECT_TRUE(firmware.rgb_keyboard);
  EXPECT_FALSE(firmware.ec.light_bar);
}

TEST_F(ProfileTest, EveryMistakeIsNamedWithItsLineAndRemedy) {
  const std::string title = "title = 'T'\n";
  const std::string firmware = title + "[firmware]\nversion = '2.91'\n";
  const std::string keyboard = firmware + "[keyboard]\n";
  const std::string allowed = "text like \"2.91\", both numbers from 0 to 255";
  const std::pair<std::string, std::string> cases[] = {
      {"", "1: title is missing here: text"},
      {"title = 1\n", "1: title must be text"},
      {title + "usr = 'x'\n",
       "2: \"usr\" is not known here, only: title, user, firmware, keyboard, light_bar, log, registry, environment"},
      {title + "user = \"a\\u0000b\"\n", "2: user must be text, empty for a name that cannot be told"},
      {title + "firmware = 2.91\n", "2: firmware must be a table: [firmware]"},
      {title + "\n[firmware]\n", "3: version is missing here: " + allowed},
      {title + "[firmware]\nversion = 2.91\n", "3: version must be " + allowed},
      {title + "[firmware]\nversion = '2.256'\n", "3: version must be " + allowed},
      {title + "[firmware]\nversion = '2'\n", "3: version must be " + allowed},
      {title + "[firmware]\nversion = '2.91b'\n", "3: version must be " + allowed},
      {title + "\n[keyboard]\nzones = 4\n", "3: keyboard needs a firmware that drives it: [firmware]"},
      {firmware + "latency_ms = -1\n", "4: latency_ms must be a whole number from 0 to 10000"},
      {firmware + "latency_ms = 10001\n", "4: latency_ms must be a whole number from 0 to 10000"},
      {firmware + "latency_ms = 1.0\n", "4: latency_ms must be a whole number from 0 to 10000"},
      {keyboard + "zones = 2\n", "5: zones must be 0, 1, 3 or 4"},
      {keyboard + "zones = 5\n", "5: zones must be 0, 1, 3 or 4"},
      {keyboard + "zones = '4'\n", "5: zones must be 0, 1, 3 or 4"},
      {keyboard + "zone = 4\n", "5: \"zone\" is not known here, only: zones, rgb"},
      {keyboard + "rgb = true\n", "4: zones is missing here: 0, 1, 3 or 4"},
      {keyboard + "zones = 4\nrgb = 1\n", "6: rgb must be true or false"},
      {title + "[log]\nenabled = 1\n", "3: enabled must be true or false"},
      {title + "[registry]\nKey = 1\n", "3: Key must be a table: [registry.'KEY\\KEY']"},
      {title + "[registry.'K']\nV = 4294967296\n", "3: V must be a whole number from 0 to 4294967295"},
      {title + "[environment]\nV = 1\n", "3: V must be text"},
  };
  for (const auto& [text, complaint] : cases) EXPECT_EQ(Complaint(text), complaint) << text;
  // The parser's own words about the language are not ours to promise, only the place.
  EXPECT_TRUE(Complaint(title + "user = 'x\n").starts_with("2: "));
  EXPECT_TRUE(Complaint(title + title).starts_with("2: "));
  EXPECT_TRUE(Complaint(title + "[log]\nenabled = tr\n").starts_with("3: "));
  EXPECT_TRUE(Complaint("title = '\xFF'\n").starts_with("1: "));
}

TEST_F(ProfileTest, UnreadableFileIsNamedWithTheReason) {
  const auto expect = [](const fs::path& file, std::string_view complaint) {
    try {
      LoadProfile(file);
      ADD_FAILURE() << file << " was read";
    } catch (const ProfileError& error) {
      EXPECT_EQ(error.what(), complaint);
    }
  };
  expect("/no/such.toml", "/no/such.toml: cannot be read: No such file or directory");
  expect("/usr", "/usr: cannot be read: Is a directory");
}

TEST_F(ProfileTest, EveryShippedProfileLoads) {
  const std::map<std::string, std::pair<int, FirmwareVersion>> shipped = {
      {"one-zone", {1, {2, 91}}},     {"three-zone", {3, {2, 91}}},   {"four-zone", {4, {2, 91}}},
      {"old-firmware", {4, {2, 85}}}, {"mid-firmware", {4, {2, 88}}}, {"no-keyboard", {0, {2, 91}}},
      {"logging", {4, {2, 91}}}};
  std::map<std::string, std::pair<int, FirmwareVersion>> seen;
  for (const auto& entry : fs::directory_iterator(ZARN_PROFILE_DIR)) {
    const std::string name = entry.path().stem().string();
    const Profile profile = LoadProfile(entry.path());
    seen[name] = {profile.ec.keyboard_zones, profile.ec.version};
    EXPECT_EQ(profile.registry.contains(L"SOFTWARE\\OEM\\ZarnLightingService\\Log"), name == "logging") << name;
    EXPECT_EQ(profile.environment.contains(L"PROGRAMDATA"), name == "logging") << name;
  }
  EXPECT_EQ(seen, shipped);
}

}  // namespace
}  // namespace simulator
