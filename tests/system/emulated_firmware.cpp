#include "tests/system/emulated_firmware.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tests/support/hex.h"

namespace test {
namespace {

constexpr char kDevice[] = "\\_SB.WZRN.";
constexpr unsigned long kKeptCalls = 32;
constexpr std::ptrdiff_t kInput = 4;  // of a record, behind instance, method, type and length

unsigned long CallCount() { return std::stoul(CallModule(std::string(kDevice) + "TCNT"), nullptr, 16); }

/// As two digits a byte, with `before` in front of each.
std::string InHex(const std::vector<std::uint8_t>& bytes, const std::string& before) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof(digits), "%02x", byte);
    text += before + digits;
  }
  return text;
}

}  // namespace

std::string CallModule(const std::string& call) {
  std::array<char, 512> answer{};
  const int file = open("/proc/acpi/call", O_RDWR | O_CLOEXEC);
  EXPECT_TRUE(flock(file, LOCK_EX) == 0 && write(file, call.data(), call.size()) >= 0 &&
              read(file, answer.data(), answer.size() - 1) >= 0)
      << call << ": " << std::strerror(errno);
  close(file);
  return answer.data();
}

EmulatedFirmware::EmulatedFirmware() : taken_(CallCount()) {}

std::vector<EmulatedFirmware::Call> EmulatedFirmware::Take() {
  const unsigned long count = CallCount();
  EXPECT_LE(count - taken_, kKeptCalls) << "the oldest calls are lost";
  std::vector<Call> calls;
  for (; taken_ < count; ++taken_) {
    const std::string text = CallModule(std::string(kDevice) + "TGET " + std::to_string(taken_));
    const std::vector<std::uint8_t> record = Hex(text.substr(1));  // behind the brace
    const std::ptrdiff_t length = std::min<std::ptrdiff_t>(record.at(3), 28);
    calls.push_back({record[1], {record.begin() + kInput, record.begin() + kInput + length}});
  }
  return calls;
}

std::vector<std::string> EmulatedFirmware::TakeInHex() {
  std::vector<std::string> lines;
  for (const Call& call : Take()) lines.push_back(std::to_string(call.method) + ":" + InHex(call.input, " "));
  return lines;
}

void EmulatedFirmware::AnswerLights(std::vector<std::uint8_t> answer) {
  answer.resize(16);
  EXPECT_EQ(CallModule(std::string(kDevice) + "TANS b" + InHex(answer, "")), "0x0");
}

}  // namespace test
