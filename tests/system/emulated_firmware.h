/// The firmware of the emulated machine, by the methods through which tests look into it: see firmware.dsl.in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

/// Calls a method through the kernel's module as any other program does that takes the module's lock: "\_SB.WZRN.TCNT".
/// The module's answer. Blocks while somebody else holds the lock.
std::string CallModule(const std::string& call);

/// What has reached the lights' methods since it was made. Needs root.
class EmulatedFirmware {
 public:
  struct Call {
    int method = 0;
    /// The firmware keeps 28 bytes at most.
    std::vector<std::uint8_t> input;
  };

  EmulatedFirmware();

  /// The calls since the last time, oldest first. The firmware keeps 32 of them; more are a test's failure.
  std::vector<Call> Take();
  /// The same as text, "20: 00 05 32" with every byte.
  std::vector<std::string> TakeInHex();

  /// Sets the answer of GetGamingLED: gmReturn, then 15 bytes. What is missing becomes zeros.
  static void AnswerLights(std::vector<std::uint8_t> answer);

 private:
  unsigned long taken_;
};

}  // namespace test
