#include "simulator/profile.h"

#include <gtest/gtest.h>

#include <fstream>

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
firmware = {version = "3.255", instance = 'A\B', latency_ms = 10000}
keyboard = {zones = 3, rgb = false}
light_bar.present = true
log.enabled = true
registry = {'SOFTWARE\OEM\ZarnLightingService' = {HybridMode = 0xFFFF0001}}
environment.PROGRAMDATA = 'C:\Data'
)"));
  EXPECT_EQ(profile.title, "All");
  EXPECT_EQ(profile.user_name, L"J\u00FCrgen");
  EXPECT_EQ(profile.firmware_instance, L"A\\B");
  EXPECT_EQ(profile.firmware_latency_ms, 10000U);
  const auto& [zones, light_bar, version] = profile.ec;
  EXPECT_TRUE(zones == 3 && light_bar && version == (FirmwareVersion{3, 255}));
  EXPECT_TRUE(profile.firmware_record && !profile.rgb_keyboard);
  const std::wstring key = L"SOFTWARE\\OEM\\ZarnLightingService";
  EXPECT_EQ(profile.registry, (decltype(profile.registry){{key, {{L"HybridMode", {1, 0, 0xFF, 0xFF}}}},
                                                          {key + L"\\Log", {{L"ZarnLightingService", {1, 0, 0, 0}}}}}));
  EXPECT_EQ(profile.environment, (decltype(profile.environment){{L"PROGRAMDATA", L"C:\\Data"}}));
}

TEST_F(ProfileTest, WhatIsLeftOutTakesItsDefault) {
  const Profile bare = LoadProfile(File("title = 'Bare'\n"));
  EXPECT_TRUE(!bare.firmware_record && bare.firmware_instance.empty() && bare.user_name == L"player");
  const Profile firmware = LoadProfile(File("title = 'Firmware'\n[firmware]\nversion = '2.91'\n"));
  EXPECT_EQ(firmware.firmware_instance, L"ACPI\\PNP0C14\\ZARN_0");
  EXPECT_TRUE(firmware.rgb_keyboard && firmware.ec.keyboard_zones == 0 && !firmware.ec.light_bar);
}

TEST_F(ProfileTest, EveryMistakeIsNamedWithItsLineAndRemedy) {
  const std::string title = "title = 'T'\n";
  const std::string firmware = title + "[firmware]\nversion = '2.91'\n";
  const std::string keyboard = firmware + "[keyboard]\n";
  const std::string allowed = "text like \"2.91\", both numbers from 0 to 255";
  const std::pair<std::string, std::string> cases[] = {
      {"title = 1\n", "1: title must be text"},
      {title + "usr = 'x'\n",
       "2: \"usr\" is not known here, only: title, user, firmware, keyboard, light_bar, log, registry, environment"},
      {title + "\n[firmware]\n", "3: version is missing here: " + allowed},
      {title + "[firmware]\nversion = 2.91\n", "3: version must be " + allowed},
      {title + "[firmware]\nversion = '2.256'\n", "3: version must be " + allowed},
      {title + "[firmware]\nversion = '2.91b'\n", "3: version must be " + allowed},
      {title + "\n[keyboard]\nzones = 4\n", "3: keyboard needs a firmware that drives it: [firmware]"},
      {firmware + "latency_ms = 10001\n", "4: latency_ms must be a whole number from 0 to 10000"},
      {keyboard + "zones = 2\n", "5: zones must be 0, 1, 3 or 4"},
      {keyboard + "rgb = true\n", "4: zones is missing here: 0, 1, 3 or 4"},
      {keyboard + "zones = 4\nrgb = 1\n", "6: rgb must be true or false"},
      {title + "[registry]\nKey = 1\n", "3: Key must be a table: [registry.'KEY\\KEY']"},
      {title + "[registry.'K']\nV = 4294967296\n", "3: V must be a whole number from 0 to 4294967295"},
  };
  for (const auto& [text, complaint] : cases) EXPECT_EQ(Complaint(File(text)), complaint) << text;
  // The parser's own words about the language are not ours to promise, only the place.
  EXPECT_TRUE(Complaint(File(title + "user = 'x\n")).starts_with("2: "));
  EXPECT_TRUE(Complaint(File(title + "[log]\nenabled = tr\n")).starts_with("3: "));
  EXPECT_TRUE(Complaint(File("title = '\xFF'\n")).starts_with("1: "));
}

TEST_F(ProfileTest, UnreadableFileIsNamedWithTheReason) {
  EXPECT_EQ(Complaint("/no/such.toml"), " cannot be read: No such file or directory");
  EXPECT_EQ(Complaint("/usr"), " cannot be read: Is a directory");
}

TEST_F(ProfileTest, EveryShippedProfileLoads) {
  std::map<std::string, std::pair<int, FirmwareVersion>> expected = {
      {"one-zone", {1, {2, 91}}},     {"three-zone", {3, {2, 91}}},   {"four-zone", {4, {2, 91}}},
      {"old-firmware", {4, {2, 85}}}, {"mid-firmware", {4, {2, 88}}}, {"no-keyboard", {0, {2, 91}}},
      {"logging", {4, {2, 91}}}};
  for (const auto& entry : fs::directory_iterator(ZARN_PROFILE_DIR)) {
    const std::string name = entry.path().stem().string();
    const Profile profile = LoadProfile(entry.path());
    EXPECT_EQ(std::pair(profile.ec.keyboard_zones, profile.ec.version), expected[name]) << name;
    EXPECT_EQ(profile.registry.size() + profile.environment.size(), name == "logging" ? 2U : 0U) << name;
    expected.erase(name);
  }
  EXPECT_TRUE(expected.empty()) << expected.begin()->first;
}

}  // namespace
}  // namespace simulator
