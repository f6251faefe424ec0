#include "platform/linux/acpi_call.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <optional>
#include <thread>

#include "base/little_endian.h"
#include "platform/linux/read_file.h"
#include "platform/standin/wmi_api.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;  // NOLINT(google-build-using-namespace): what literals are for
using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience{5};
constexpr std::size_t kLongestCall = 511;    // in characters, as the module takes them
constexpr std::size_t kNumberSize = 4;       // in bytes: the module cuts longer numbers
constexpr std::size_t kLongestAnswer = 255;  // in characters, likewise
constexpr std::size_t kAnswerBuffer = 512;   // for all of it at once, or the module hands over nothing

AcpiAnswer Failure(auto code) { return {Status(code), {}}; }

/// Asks again and again, because a wait inside flock has no limit.
bool LockFile(int file) {
  const Clock::time_point end = Clock::now() + kPatience;
  while (flock(file, LOCK_EX | LOCK_NB) != 0) {
    if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= end) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

/// The text that the module keeps, from a place on and without its terminating 0.
std::optional<std::string> ReadText(int file, std::size_t place = 0) {
  std::array<char, kAnswerBuffer> buffer{};
  const ssize_t got = pread(file, buffer.data(), buffer.size(), static_cast<off_t>(place));
  if (got < 0) return std::nullopt;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(got));
  return std::string(text.substr(0, text.find('\0')));
}

/// When the module cannot parse a call, it leaves the last answer in place. It forgets an answer when somebody reads on
/// behind the end.
void Forget(int file) {
  if (const auto text = ReadText(file)) ReadText(file, text->size() + 1);
}

std::string CallText(const std::string& method, std::size_t instance, std::uint32_t id,
                     std::span<const std::uint8_t> input) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text = method + " " + std::to_string(instance) + " " + std::to_string(id) + " b";
  for (const std::uint8_t byte : input) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

/// Reads the text of an answer from left to right.
class AnswerReader {
 public:
  explicit AnswerReader(std::string_view text)
      : rest_(text), is_full_(text.size() >= kLongestAnswer), is_cut_(is_full_ || text.ends_with(',')) {}

  /// The bytes; nothing for what is neither a buffer, a number nor a package of these.
  std::optional<Bytes> Read() && {
    return ReadValue() && rest_.empty() ? std::optional(std::move(bytes_)) : std::nullopt;
  }

 private:
  bool ReadValue() {
    if (Take("[")) {
      if (Take("]")) return true;
      do {
        if (!ReadValue()) return false;
      } while (Take(", "));
      return Take("]") || TakeCut();
    }
    if (Take("{")) return ReadBytes();
    const auto number = ReadNumber();
    // At the end of a full text a number may have lost digits. Bytes are there whole or not at all.
    if (number && !(is_full_ && rest_.empty())) AppendNumber(*number);
    return number || TakeCut();
  }

  /// What the module leaves where it cuts an answer: a comma after bytes, or the beginning of what had no room.
  bool TakeCut() {
    if (!is_cut_ || (!rest_.empty() && rest_ != "," && rest_ != "0" && rest_ != "0x")) return false;
    rest_ = {};
    return true;
  }

  bool Take(std::string_view expected) {
    if (!rest_.starts_with(expected)) return false;
    rest_.remove_prefix(expected.size());
    return true;
  }

  bool ReadBytes() {
    if (Take("}") || TakeCut()) return true;
    do {
      const auto byte = ReadNumber();
      if (!byte || *byte > 0xFF) return false;
      bytes_.push_back(static_cast<std::uint8_t>(*byte));
    } while (Take(", "));
    return Take("}") || TakeCut();
  }

  std::optional<std::uint32_t> ReadNumber() {
    std::uint32_t number = 0;
    if (!Take("0x")) return std::nullopt;
    const char* const begin = rest_.data();
    const auto [end, error] = std::from_chars(begin, begin + rest_.size(), number, 16);
    if (error != std::errc()) return std::nullopt;
    rest_.remove_prefix(static_cast<std::size_t>(end - begin));
    return number;
  }

  void AppendNumber(std::uint32_t number) {
    bytes_.resize((bytes_.size() + kNumberSize - 1) / kNumberSize * kNumberSize + kNumberSize);
    ToLittleEndian(number, std::span(bytes_).last(kNumberSize));
  }

  std::string_view rest_;
  const bool is_full_;
  const bool is_cut_;
  Bytes bytes_;
};

}  // namespace

AcpiAnswer ReadAcpiAnswer(std::string_view text) {
  auto bytes = AnswerReader(text).Read();
  return bytes ? AcpiAnswer{S_OK, *std::move(bytes)} : Failure(WBEM_E_FAILED);
}

bool KernelIsStrict(const fs::path& command_line) {
  const auto options = ReadFile(command_line);
  if (!options) return true;  // who knows
  const std::string words = " " + std::string(options->begin(), options->end());
  return words.find(" acpi=strict") != std::string::npos;
}

AcpiAnswer CallAcpi(const fs::path& call_file, const std::string& method, std::size_t instance, std::uint32_t id,
                    std::span<const std::uint8_t> input) {
  const std::string text = CallText(method, instance, id, input);
  if (text.size() > kLongestCall) return Failure(WBEM_E_INVALID_PARAMETER);
  FileDescriptor file;
  if (const int code = file.Open(call_file, O_RDWR)) {
    return code == EACCES || code == EPERM ? Failure(WBEM_E_ACCESS_DENIED) : Failure(WBEM_E_PROVIDER_LOAD_FAILURE);
  }
  if (!LockFile(file.Get())) return Failure(WBEM_E_SERVER_TOO_BUSY);
  Forget(file.Get());
  if (pwrite(file.Get(), text.data(), text.size(), 0) != static_cast<ssize_t>(text.size())) {
    return Failure(WBEM_E_FAILED);
  }
  const auto answer = ReadText(file.Get());
  return answer ? ReadAcpiAnswer(*answer) : Failure(WBEM_E_FAILED);
}

}  // namespace platform
