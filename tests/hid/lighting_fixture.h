/// A fixture over scripted HID devices, with the list of lighting devices empty and the logger recording.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hid/lighting_hid.h"
#include "log/logger.h"
#include "platform/standin/text.h"
#include "tests/support/hex.h"
#include "tests/support/machine_fixture.h"

namespace test {

/// Keeps "E Tag | message" for every line, the tag without its namespaces.
class RecordingLogger final : public zarn::WRV520::Logger {
 public:
  void Log(Level level, const std::wstring& function_tag, const std::wstring& message) override {
    SetLastError(4242);  // writing the log changes it, too
    const std::wstring tag = function_tag.substr(function_tag.find(L"WRV520::") + 8);
    EXPECT_EQ(function_tag.find(L"zarn::WRV520::"), 0U);
    const platform::LiveCounts live = platform::CountLive();
    open_while_logging = live.device_handles + live.preparsed_data;
    lines.push_back(std::string(level == Error ? "E " : "I ") + platform::ReadableUtf8(tag + L" | " + message));
  }
  std::vector<std::string> lines;
  std::int64_t open_while_logging = 0;
};

class LightingTest : public MachineTest {
 protected:
  using Lines = std::vector<std::string>;

  void SetUp() override { zarn::WRV520::ReplaceLogger(logger_); }
  void TearDown() override {
    zarn::WRV520::Lighting::LightingHID::CloseLightingDevices();
    g_lightingDevices.clear();
    zarn::WRV520::ReplaceLogger(std::make_shared<zarn::WRV520::DefaultLogger>());
  }

  /// What was logged since the last call.
  Lines TakeLines() { return std::exchange(logger_->lines, {}); }

  /// Plugs in a lighting device that serves the keyboard.
  ScriptedHid& PlugKeyboard(const std::vector<DeclaredField>& fields, std::uint8_t data_bytes = 64) {
    ScriptedHid& device = machine->Plug(VendorCollection(0xFF5A, fields, data_bytes));
    device.answers[0xA1] = {0xA1, 1, 0x21};
    return device;
  }

  /// Builds the list as discovery does, and drops the lines logged by that.
  void BuildList() {
    std::vector<_HIDInfo> ignored;
    zarn::WRV520::Lighting::LightingHID::GetLightingDeviceList(ignored);
    logger_->lines.clear();
  }

  /// How many handles and preparsed data were open at the last logged line.
  std::int64_t OpenWhileLogging() const { return logger_->open_while_logging; }

 private:
  const std::shared_ptr<RecordingLogger> logger_ = std::make_shared<RecordingLogger>();
};

}  // namespace test
