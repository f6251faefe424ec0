/// The host's first call: which devices the notebook has.

#include "tests/cases/case.h"

namespace test {
namespace {

constexpr wchar_t kServiceKey[] = L"SOFTWARE\\OEM\\ZarnLightingService";

/// What discovery decides by.
struct Sources {
  bool hid = false;
  bool hybrid = false;
  bool ec = false;
  bool bar = false;
  bool led = false;
};

class DiscoveryCase : public Case {
 protected:
  static simulator::Profile ProfileWith(const Sources& sources) {
    simulator::Profile profile = ProfileOf("hybrid");
    profile.hid_keyboards[0].plugged = sources.hid;
    profile.registry[kServiceKey][L"HybridMode"] = {static_cast<std::uint8_t>(sources.hybrid ? 1 : 0), 0, 0, 0};
    profile.rgb_keyboard = sources.ec;
    profile.ec.light_bar = sources.bar;
    profile.ec.lights_report = {0, 0, 0, 0, 0, 0, 0, static_cast<std::uint8_t>(sources.led ? 7 : 0), 254};
    return profile;
  }

  /// The count on firmware of this version that gives this answer about its lights.
  std::int32_t CountWith(simulator::FirmwareVersion version, std::uint8_t gm_return, std::vector<std::uint8_t> output) {
    simulator::Profile profile = ProfileWith({.ec = true, .bar = true});
    profile.ec.version = version;
    profile.ec.lights_return = gm_return;
    output.resize(15);
    profile.ec.lights_report = std::move(output);
    Start(std::move(profile));
    return Discover().count;
  }
};

TEST_F(DiscoveryCase, FollowsTheDecisionTable) {
  const Discovered kHid{1, L"ZarnHIDKeyboard", 1, L"USB\\VID_1209&PID_0001", L"FF5A"};
  const Lines kHidLog = {"Enter!!", "Number of Device: 1, DeviceName: ZarnHIDKeyboard"};
  const Lines kNoEcLog = {"Enter!!", "Is EC Keyboard: 1", "Is RGB Keyboard: 0", "Number of Device:0, DeviceName:"};
  const auto ec_log = [](bool bar, const std::string& number_and_names) {
    Lines lines = {"Enter!!", "Is EC Keyboard: 1", "Is RGB Keyboard: 1",
                   bar ? "Is EC Lightbar: 1" : "Is EC Lightbar: 0"};
    if (bar) lines.emplace_back("BIOS major version:2 - BIOS minor version::91");
    lines.push_back("Number of Device:" + number_and_names);
    return lines;
  };
  const std::string kOne = "1, DeviceName:ZarnECKeyboard";
  const std::string kTwo = "2, DeviceName:ZarnECGlobal,ZarnECKeyboard";
  struct {
    Sources sources;
    Discovered found;
    Lines log;
  } const rows[] = {
      {{.hid = true}, kHid, kHidLog},
      {{.hid = true, .ec = true, .bar = true, .led = true}, kHid, kHidLog},
      {{.hid = true, .hybrid = true}, {0, L"ZarnHIDKeyboard", 3, L"", L""}, kNoEcLog},
      {{.hid = true, .hybrid = true, .ec = true},
       {2, L"ZarnECKeyboard,ZarnHIDKeyboard", 3, L"", L""},
       ec_log(false, kOne)},
      {{.hid = true, .hybrid = true, .ec = true, .bar = true},
       {2, L"ZarnECKeyboard,ZarnHIDKeyboard", 3, L"", L""},
       ec_log(true, kOne)},
      {{.hid = true, .hybrid = true, .ec = true, .bar = true, .led = true},
       {3, L"ZarnECGlobal,ZarnECKeyboard,ZarnHIDKeyboard", 3, L"", L""},
       ec_log(true, kTwo)},
      {{}, {0, L"as it was", 3, L"", L""}, kNoEcLog},
      {{.hybrid = true}, {0, L"as it was", 3, L"", L""}, kNoEcLog},
      {{.ec = true}, {1, L"ZarnECKeyboard", 3, L"", L""}, ec_log(false, kOne)},
      {{.hybrid = true, .ec = true, .bar = true}, {1, L"ZarnECKeyboard", 3, L"", L""}, ec_log(true, kOne)},
      {{.ec = true, .bar = true, .led = true}, {2, L"ZarnECGlobal,ZarnECKeyboard", 3, L"", L""}, ec_log(true, kTwo)},
  };
  for (const auto& [sources, found, log] : rows) {
    SCOPED_TRACE(::testing::Message() << "hid " << sources.hid << " hybrid " << sources.hybrid << " ec " << sources.ec
                                      << " bar " << sources.bar << " led " << sources.led);
    Start(ProfileWith(sources));
    EXPECT_EQ(Discover(), found);
    EXPECT_EQ(Log("CheckDeviceStatus"), log);
  }
}

TEST_F(DiscoveryCase, WithoutARecordThereIsNoEcDevice) {
  Start(HidProfile(4, 0));
  Unplug();
  EXPECT_EQ(Discover(), (Discovered{0, L"as it was", 3, L"", L""}));
  EXPECT_EQ(Log(), (Lines{"I CheckDeviceStatus | Enter!!", "I CheckDeviceStatus | Get SMBIOS 172 fail!",
                          "I CheckDeviceStatus | Is EC Keyboard: 0", "I CheckDeviceStatus | Is RGB Keyboard: 0",
                          "I CheckDeviceStatus | Number of Device:0, DeviceName:"}));
}

TEST_F(DiscoveryCase, TheFirmwareHasTheLastWordOnTheLightBar) {
  // Byte 0 is what the firmware returns, byte k the output's byte k - 1.
  for (const simulator::FirmwareVersion old : {simulator::FirmwareVersion{2, 90}, {1, 255}}) {
    EXPECT_EQ(CountWith(old, 0, {0, 0, 0, 0, 0, 5}), 2);
    EXPECT_EQ(CountWith(old, 0, {0, 0, 0, 0, 0, 254}), 2);
    EXPECT_EQ(CountWith(old, 1, {0, 0, 0, 0, 0, 5}), 1);
    EXPECT_EQ(CountWith(old, 0, {0, 0, 0, 0, 0, 0xFF}), 1);
    EXPECT_EQ(CountWith(old, 0, {5, 5, 5, 5, 5, 0, 5, 5, 5, 5, 5, 5, 5}), 1);
  }
  for (const simulator::FirmwareVersion current : {simulator::FirmwareVersion{2, 91}, {3, 0}}) {
    EXPECT_EQ(CountWith(current, 1, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x10, 0x20}), 2);
    EXPECT_EQ(CountWith(current, 0, {0, 0, 0, 0, 0, 1, 254}), 2);
    EXPECT_EQ(CountWith(current, 0, {0, 0, 0, 0, 0, 1, 0}), 1);
    EXPECT_EQ(CountWith(current, 0, {0, 0, 0, 0, 0, 0, 7, 7, 0, 0xFF, 7, 7, 0xFF, 7, 7}), 1);
  }
  // A call that fails leaves the light bar out.
  simulator::Profile profile = ProfileWith({.ec = true, .bar = true, .led = true});
  profile.firmware_instance.clear();
  Start(std::move(profile));
  EXPECT_EQ(Discover().count, 1);
}

TEST_F(DiscoveryCase, HybridModeIsTheNumberOneInFourBytes) {
  NEEDS(Need::OddSettings);
  const std::pair<std::vector<std::uint8_t>, std::int32_t> values[] = {
      {{1, 0, 0, 0}, 2}, {{2, 0, 0, 0}, 1}, {{0xFF, 0xFF, 0xFF, 0xFF}, 1}, {{1}, 1}, {{1, 0, 0, 0, 0, 0, 0, 0}, 1}};
  for (const auto& [bytes, count] : values) {
    simulator::Profile profile = ProfileWith({.hid = true, .ec = true});
    profile.registry[kServiceKey][L"HybridMode"] = bytes;
    Start(std::move(profile));
    EXPECT_EQ(Discover().count, count) << bytes.size() << " bytes";
  }
}

TEST_F(DiscoveryCase, KnowsAHidKeyboardByItsUsagePageAndItsAnswer) {
  simulator::Profile profile = HidProfile(4, 0);
  profile.hid_keyboards[0].usage_page = 0xFF59;
  profile.hid_keyboards.push_back(HidSettings(4, 0));
  profile.hid_keyboards[1].answers = false;
  profile.hid_keyboards.push_back(HidSettings(4, 0));
  profile.hid_keyboards[2].device_ids = {0x22};
  Start(profile);
  EXPECT_EQ(Discover().count, 0);
  EXPECT_EQ(Wire(), (Lines{"GetFeature 1 a1: report 0xa1 cannot be read", "GetFeature 2 a1"}));

  profile.hid_keyboards.push_back(HidSettings(4, 0));
  profile.hid_keyboards[3].vendor = 0xABCD;
  profile.hid_keyboards[3].other_collection = true;
  Start(profile);
  EXPECT_EQ(Discover(), (Discovered{1, L"ZarnHIDKeyboard", 1, L"USB\\VID_ABCD&PID_0001", L"FF5A"}));
}

TEST_F(DiscoveryCase, AKeyboardThatDoesNotAnswerIsFoundOnceItDoes) {
  NEEDS(Need::ShortStalls);
  Start(HidProfile(4, 0));
  Keyboard().Misbehave({.kind = HidKeyboard::Misbehaviour::Kind::Stall, .stall_ms = 1});
  EXPECT_EQ(Discover().count, 0);
  EXPECT_EQ(Wire(), Lines{"GetFeature 0 a1: the keyboard did not answer"});
  Keyboard().Misbehave({.first = 0});
  EXPECT_EQ(Discover().count, 1);
}

TEST_F(DiscoveryCase, AKeyboardOnceFoundIsReportedEvenWhenItIsGone) {
  Start("hid-keyboard");
  const Discovered first = Discover();
  EXPECT_EQ(first.count, 1);
  const Lines lines = Log();
  ASSERT_EQ(lines.size(), 20U);
  EXPECT_EQ(lines[1], "I TsHID::GetHIDDeviceHandle | HID device(1209, 0001) UsagePage find: FF5A:0001");
  EXPECT_EQ(lines[2],
            "I Lighting::LightingHID::GetLightingDeviceList | ReportID: A1 Usage: 17 BitSize: 8, DataIndex: 0");
  EXPECT_EQ(lines[18],
            "I Lighting::LightingHID::GetLightingDeviceList | ReportID: A4 Usage: 72 BitSize: 16, DataIndex: 16");
  Unplug();
  EXPECT_EQ(Discover(), first);
  EXPECT_EQ(Log(), (Lines{"I CheckDeviceStatus | Enter!!",
                          "I CheckDeviceStatus | Number of Device: 1, DeviceName: ZarnHIDKeyboard"}));
  EXPECT_EQ(Wire(), Lines{"GetFeature 0 a1"});
}

}  // namespace
}  // namespace test
