/// A fixture that holds the plug-in as a host does, over a scripted machine.
#pragma once

#include <string>
#include <utility>

#include "controller/description_format.h"
#include "controller/packet_formats.h"
#include "tests/support/machine_fixture.h"
#include "tests/support/plugin.h"
#include "tests/support/temporary_folder.h"

namespace test {

class PluginTest : public MachineTest {
 protected:
  /// Loaded once: its log lives as long as the process.
  static Plugin& plugin() {
    static auto& loaded = *new Plugin;
    return loaded;
  }

  /// Turns logging on for the rest of the process.
  void SwitchLogOn() {
    machine->SwitchLogOn(LogFolder().path().string());
    NewLog();
  }
  /// What was logged since the last call.
  static std::string NewLog() {
    static std::size_t read = 0;
    const std::string all =
        ContentOf(LogFolder().path() / "OEM/ZarnLightingService/Log/user1_ZarnECKeyboard_20240131.log");
    return all.substr(std::exchange(read, all.size()));
  }
  static std::string LogLine(const std::string& operation, const std::string& message) {
    return "[INFO]      20240131_14:05:09.042 | ZarnECKeyboard | ZarnECKeyboardController::" + operation + " | " +
           message + "\r\n";
  }

 private:
  static const TemporaryFolder& LogFolder() {
    static const TemporaryFolder folder;
    return folder;
  }
};

}  // namespace test
