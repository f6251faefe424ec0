/// How zarnctl says that something cannot be done: one line, and the exit code that goes with it.
#pragma once

#include <stdexcept>
#include <string>

namespace zarnctl {

/// The process's exit codes, as docs/zarnctl.md and --help state them.
enum class ExitCode {
  Done = 0,
  Failed = 1,            // the profile, a settings file, the plug-in or the output failed
  WrongCommandLine = 2,  // nothing was sent
  NothingThere = 3,      // no such device, or nothing to light
  LightsDiffer = 4       // firmware or keyboard refused, the lights did not follow, or a record lacks something
};

/// Thrown by everything that cannot go on; what() is the line without "zarnctl: ".
class Complaint : public std::runtime_error {
 public:
  Complaint(ExitCode code, const std::string& line) : std::runtime_error(line), code_(code) {}

  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

/// Writes "zarnctl: <line>" to stderr, with what the line quotes made harmless.
void Complain(const std::string& line);

}  // namespace zarnctl
