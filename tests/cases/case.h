/// The fixture of the cases: what a host and a person do with a notebook, and what they expect to see, on any road.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "controller/packet_formats.h"
#include "simulator/profile.h"
#include "tests/cases/road.h"
#include "tests/support/plugin.h"
#include "tests/support/temporary_folder.h"

namespace test {

using Lines = std::vector<std::string>;
using simulator::HidKeyboard;

/// Settings of a mode that a case changes.
struct Setting {
  std::uint32_t speed = 5;
  std::uint32_t brightness = 50;
  std::uint32_t direction = 0;
  std::vector<PackedColor> colors = {};
};

class Case : public ::testing::Test {
 public:
  Case(const Case&) = delete;
  Case& operator=(const Case&) = delete;

 protected:
  Case() = default;
  ~Case() override { TakeAway(); }

  static simulator::Profile ProfileOf(const std::string& name) {
    return simulator::LoadProfile(std::string(ZARN_PROFILE_DIR) + "/" + name + ".toml");
  }

  /// Starts a notebook and loads a fresh copy of the plug-in on it, with logging on.
  void Start(simulator::Profile profile) {
    TakeAway();
    profile.registry[L"SOFTWARE\\OEM\\ZarnLightingService\\Log"][L"ZarnLightingService"] = {1, 0, 0, 0};
    data_folder_ = std::make_unique<TemporaryFolder>();
    profile.environment[L"PROGRAMDATA"] = data_folder_->path().wstring();
    notebook = std::make_shared<simulator::Notebook>(std::move(profile));
    TheRoad().Place(notebook);
    TheRoad().Settle();
    plugin_ = LoadPlugin();
    logged_ = 0;
  }
  void Start(const std::string& profile) { Start(ProfileOf(profile)); }

  Discovered Discover() const { return plugin_->Discover(); }

  using Device = std::unique_ptr<RGBControllerInterface>;
  Device Create(const std::string& name) const { return plugin_->Create(name); }

  static ControllerRecords Describe(const Device& device) { return DescriptionOf(*device); }
  static Lines ModesOf(const Device& device) {
    Lines labels;
    for (const ModeRecord& mode : Describe(device).mode_list) labels.push_back(mode.label);
    return labels;
  }

  /// Label, code, capabilities, ranges of speed, brightness and colours, settings, colour source, colours.
  static Lines ModesInNumbers(const Device& device) {
    Lines lines;
    for (const ModeRecord& mode : Describe(device).mode_list) {
      std::string line = mode.label;
      for (const std::uint32_t number :
           {static_cast<std::uint32_t>(mode.hw_code), mode.capabilities, mode.speed_lowest, mode.speed_highest,
            mode.brightness_lowest, mode.brightness_highest, mode.color_count_least, mode.color_count_most,
            mode.speed_setting, mode.brightness_setting, mode.direction_setting, mode.color_source}) {
        line += " " + std::to_string(number);
      }
      for (const PackedColor color : mode.mode_colors) line += " #" + std::to_string(color);
      lines.push_back(line);
    }
    return lines;
  }
  /// Title, maker and caption; the other texts must be empty.
  static Lines Names(const ControllerRecords& records) {
    EXPECT_EQ(records.info_text_1 + records.info_text_2 + records.info_text_3, "");
    return {records.title, records.maker_name, records.caption};
  }

  /// Sends a mode packet and applies the mode on this thread.
  static void Choose(const Device& device, const std::string& label, const Setting& setting = {}) {
    ControllerRecords records = Describe(device);
    const auto mode = std::find_if(records.mode_list.begin(), records.mode_list.end(),
                                   [&](const ModeRecord& each) { return each.label == label; });
    ASSERT_NE(mode, records.mode_list.end());
    mode->speed_setting = setting.speed;
    mode->brightness_setting = setting.brightness;
    mode->direction_setting = setting.direction;
    if (!setting.colors.empty()) mode->mode_colors = setting.colors;
    const auto index = static_cast<std::int32_t>(mode - records.mode_list.begin());
    device->UnpackModePacket(PackModePacket(records, index, 3).bytes.get(), 3);
    device->WriteModeToDevice();
    TheRoad().CatchUp();  // before calls by other ways are noted
  }

  /// What crossed the wires since the last call, without zeros at the end: "SetGamingKBBacklight 02 05", or with the
  /// reason of a refusal "SetFeature 0 a4 22: the report is ...".
  Lines Wire() const {
    TheRoad().CatchUp();
    Lines lines;
    for (const simulator::WireRecord& record : notebook->TakeWire()) {
      std::string line = record.method;
      if (record.hid_keyboard) line += " " + std::to_string(*record.hid_keyboard);
      line += InWords(record.input);
      lines.push_back(record.refusal.empty() ? line : line + ": " + record.refusal);
    }
    return lines;
  }

  /// What was logged since the last call: "I CheckDeviceStatus | Enter!!", tags without namespaces.
  Lines Log() {
    Lines lines;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data_folder_->path())) {
      if (!entry.is_regular_file()) continue;
      std::istringstream text(ContentOf(entry.path()));
      for (std::string line; std::getline(text, line);) lines.push_back(Shortened(line));
    }
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::exchange(logged_, lines.size())));
    return lines;
  }
  Lines Log(const std::string& tag) {
    Lines lines = Log();
    std::erase_if(lines, [&](std::string& line) {
      const bool others = line.compare(2, tag.size() + 3, tag + " | ") != 0;
      if (!others) line.erase(0, tag.size() + 5);
      return others;
    });
    return lines;
  }

  simulator::KeyboardLights EcLights() const {
    TheRoad().CatchUp();
    return notebook->Lights();
  }
  std::optional<simulator::LightBarLights> LightBar() const {
    TheRoad().CatchUp();
    return notebook->LightBar();
  }

  HidKeyboard& Keyboard(std::size_t index = 0) const { return notebook->HidKeyboardAt(index); }
  void Unplug(std::size_t index = 0) const {
    Keyboard(index).Unplug();
    TheRoad().Settle();
  }
  void Plug(std::size_t index = 0) const {
    Keyboard(index).Plug();
    TheRoad().Settle();
  }
  static HidKeyboard::Settings HidSettings(std::uint16_t zones, std::uint32_t effects) {
    HidKeyboard::Settings settings;
    settings.zones = zones;
    settings.effects = effects;
    return settings;
  }
  static simulator::Profile HidProfile(std::uint16_t zones, std::uint32_t effects) {
    simulator::Profile profile;
    profile.firmware_record = false;
    profile.user_name = L"player";
    profile.hid_keyboards = {HidSettings(zones, effects)};
    return profile;
  }

  /// Waits for the worker. The test's time limit ends a wait in vain.
  template <typename Condition>
  static void Await(const Condition& condition) {
    while (!condition()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  std::shared_ptr<simulator::Notebook> notebook;

 private:
  void TakeAway() {
    if (notebook == nullptr) return;
    notebook.reset();
    TheRoad().TakeAway();
  }

  /// The copy stays loaded, because the log that it opens lives until the process ends.
  static Plugin* LoadPlugin() {
    static auto& loaded = *new std::vector<std::unique_ptr<FreshPlugin>>;
    return loaded.emplace_back(std::make_unique<FreshPlugin>())->operator->();
  }

  static std::string InWords(const simulator::EcFirmware::Input& input) {
    if (const auto* const text = std::get_if<std::wstring>(&input))
      return " " + std::string(text->begin(), text->end());
    std::vector<std::uint8_t> bytes = std::get<std::vector<std::uint8_t>>(input);
    while (!bytes.empty() && bytes.back() == 0) bytes.pop_back();
    std::string words;
    for (const std::uint8_t byte : bytes) {
      char word[4];
      std::snprintf(word, sizeof(word), " %02x", byte);
      words += word;
    }
    return words;
  }

  static std::string Shortened(const std::string& line) {
    std::string rest = line.substr(line.find(" | ", line.find(" | ") + 3) + 3);
    constexpr std::string_view kNamespace = "zarn::WRV520::";
    if (rest.starts_with(kNamespace)) rest.erase(0, kNamespace.size());
    if (rest.ends_with('\r')) rest.pop_back();
    return line.substr(1, 1) + " " + rest;
  }

  std::unique_ptr<TemporaryFolder> data_folder_;
  std::size_t logged_ = 0;
  const Plugin* plugin_ = nullptr;
};

/// Skips a case that this program's road cannot carry.
#define NEEDS(need) \
  if (const std::string reason = TheRoad().WhyNot(need); !reason.empty()) GTEST_SKIP() << reason

}  // namespace test
