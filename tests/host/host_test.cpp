#include "zarn_lighting/host.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/notebook.h"
#include "simulator/road/notebook_machine.h"
#include "tests/support/fault_driver.h"
#include "tests/support/machine_fixture.h"

namespace test {
namespace {

namespace host = zarn::host;

/// The real plug-in over a simulated notebook.
class HostTest : public MachineTest {
 protected:
  static std::shared_ptr<simulator::Notebook> Start(const std::string& profile) {
    auto notebook = std::make_shared<simulator::Notebook>(
        simulator::LoadProfile(std::string(ZARN_PROFILE_DIR) + "/" + profile + ".toml"));
    EXPECT_TRUE(platform::UseMachine(simulator::MakeMachine(notebook)));
    return notebook;
  }
  static host::Plugin Loaded() { return *host::Plugin::Load(ZARN_LIGHTING_PATH); }
  static host::Device Keyboard() {
    auto device = Loaded().Create("ZarnECKeyboard");
    return std::move(*device);
  }
};

TEST_F(HostTest, DiscoversDescribesAndSends) {
  const auto notebook = Start("four-zone");
  EXPECT_EQ(Loaded().Discover()->names, std::vector<std::string>{"ZarnECKeyboard"});
  host::Device device = Keyboard();
  const auto records = device.Describe();
  ASSERT_TRUE(records && records->zone_list.size() == 1);
  EXPECT_EQ(records->zone_list[0].color_view, records->color_table.data());  // also after the records were moved

  ModeRecord breathing = records->mode_list.at(2);
  breathing.speed_setting = 7;
  EXPECT_EQ(device.SetMode(2, breathing), std::nullopt);
  EXPECT_EQ(notebook->TakeWire().size(), 0U);  // nothing is sent yet
  EXPECT_EQ(device.WriteMode(), std::nullopt);
  EXPECT_EQ(notebook->Lights().effect->speed, 7);

  EXPECT_EQ(device.SetColors({0x0000FF, 0x00FF00}), std::nullopt);  // the first two of four
  EXPECT_EQ(device.WriteColors(), std::nullopt);
  EXPECT_EQ(notebook->Lights().zones[1].color, (simulator::Color{0, 255, 0}));
  EXPECT_EQ(device.controller().FetchLedColor(2), 0U);
}

TEST_F(HostTest, WhatTheDeviceDoesNotTakeIsSaidAndChangesNothing) {
  Start("four-zone");
  host::Device device = Keyboard();
  const ModeRecord mode = device.Describe()->mode_list[1];
  for (const std::int32_t index : {-1, 9, 0x7FFFFFFF}) {
    const host::Error refused = device.SetMode(index, mode).value();
    EXPECT_EQ(refused.failure, host::Failure::Refused);
    EXPECT_EQ(refused.text, "the device did not take the mode");
  }
  ModeRecord cut = mode;
  cut.mode_colors.resize(65536);
  EXPECT_EQ(device.SetMode(1, cut)->failure, host::Failure::Refused);
  EXPECT_EQ(device.controller().CurrentModeIndex(), 0);
  for (const std::size_t count : {0U, 5U, 65536U, 65537U}) {
    EXPECT_EQ(device.SetColors(std::vector<PackedColor>(count, 7)).value().failure, host::Failure::Refused);
  }
  EXPECT_EQ(device.Describe()->color_table, std::vector<PackedColor>(4, 0));
}

TEST_F(HostTest, WhatIsNoPluginOrDeviceIsSaid) {
  const auto missing = host::Plugin::Load("/nowhere/plugin.so");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error().failure, host::Failure::NotLoaded);
  EXPECT_EQ(missing.error().text, "/nowhere/plugin.so: cannot open shared object file: No such file or directory");

  const auto other = host::Plugin::Load("libdl.so.2");
  ASSERT_TRUE(other);
  ASSERT_FALSE(other->Discover());
  EXPECT_EQ(other->Discover().error().failure, host::Failure::NoExport);
  EXPECT_EQ(other->Discover().error().text, "the plug-in has no export CheckDeviceStatus");
  EXPECT_EQ(other->Create("ZarnECKeyboard").error().failure, host::Failure::NoExport);
  EXPECT_EQ(Loaded().Create("ZarnMouse").error().failure, host::Failure::UnknownDevice);
}

TEST_F(HostTest, MemoryThatRunsOutIsAnErrorAndNeverThrown) {
  Start("four-zone");
  host::Device device = Keyboard();
  const ModeRecord mode = device.Describe()->mode_list[1];
  const std::vector<PackedColor> colors(4, 7);
  const std::filesystem::path file = ZARN_LIGHTING_PATH;
  std::optional<host::Failure> failure;
  const auto note = [&failure](const host::Outcome& error) {
    if (error) failure = error->failure;
  };
  FailInTurn(
      [&] {
        if (const auto records = device.Describe(); !records) note(records.error());
        if (const auto loaded = host::Plugin::Load(file); !loaded) note(loaded.error());
        note(device.SetMode(1, mode));
        note(device.SetColors(colors));
      },
      [&](const FaultRun& run) {
        EXPECT_FALSE(run.threw_bad_alloc);
        EXPECT_EQ(failure, run.met ? std::optional(host::Failure::OutOfMemory) : std::nullopt);
        failure.reset();
      });
}

}  // namespace
}  // namespace test
