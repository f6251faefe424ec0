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
    SetLastError(4242);  // as logging does, on its way to the file
    const std::wstring tag = function_tag.substr(function_tag.find(L"WRV520::") + 8);
    EXPECT_EQ(function_tag.find(L"zarn::WRV520::"), 0U);
    const platform::LiveCounts live = platform::CountLive();
    open_while_logging = live.device_handles + live.preparsed_data;
    lines.push_back(std::string(level == Error ? "E " : "I ") + platform::ReadableUtf8(tag + L" | " + message));
  }
  std::vector<std::string> lines;
  std::int64_t open_while_logging = 0;  // handles and preparsed data, at the last line
};

class LightingTest : public MachineTest {
 public:
  LightingTest(const LightingTest&) = delete;
  LightingTest& operator=(const LightingTest&) = delete;

 protected:
  using Lines = std::vector<std::string>;

  LightingTest() { zarn::WRV520::ReplaceLogger(logger_); }
  ~LightingTest() override {
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

  /// Builds the list as discovery does, and forgets what was logged on the way.
  void BuildList() {
    std::vector<_HIDInfo> ignored;
    zarn::WRV520::Lighting::LightingHID::GetLightingDeviceList(ignored);
    logger_->lines.clear();
  }

  /// How much of the platform's was held when the last line was logged.
  std::int64_t OpenWhileLogging() const { return logger_->open_while_logging; }

 private:
  const std::shared_ptr<RecordingLogger> logger_ = std::make_shared<RecordingLogger>();
};

}  // namespace test
