/// How zarnctl says that something cannot be done: one line, and the exit code that goes with it.
#pragma once

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zarnctl {

enum class ExitCode { Done, Failed, WrongCommandLine, NothingThere, Refused };

/// What each exit code means, for --help and the manual page.
inline constexpr std::array<std::string_view, 5> kExitCodes{
    "done", "the profile, a settings file, the plug-in or the output failed", "wrong command line; nothing was sent",
    "no such device, or nothing to light",
    "the firmware or a keyboard refused, did not answer or got nothing, or a record lacks something"};

/// Ends a command. what() is the line without "zarnctl: ".
class Complaint : public std::runtime_error {
 public:
  Complaint(ExitCode code, const std::string& line) : std::runtime_error(line), code_(code) {}

  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

inline Complaint Wrong(const std::string& line) { return {ExitCode::WrongCommandLine, line}; }

/// Writes "zarnctl: <line>" to stderr, made harmless: it may quote a file or a device.
void Complain(const std::string& line);

/// The same for each line. Whether there were any.
bool Complain(const std::vector<std::string>& lines);

}  // namespace zarnctl
