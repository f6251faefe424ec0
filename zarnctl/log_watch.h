/// The plug-in's log as far as this process has just written it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zarnctl {

/// The folder of the log's files; empty when it cannot be told.
std::filesystem::path LogFolderPath();

/// What lines of the log tell of things that went wrong, without time and place, each once.
std::vector<std::string> FailuresIn(const std::vector<std::string>& lines);

/// Remembers where the log ends when it is made.
class LogWatch {
 public:
  LogWatch() : ends_(Ends()) {}

  /// The lines written since then, to any file of the folder.
  std::vector<std::string> NewLines() const;

 private:
  static std::map<std::filesystem::path, std::uintmax_t> Ends();

  std::map<std::filesystem::path, std::uintmax_t> ends_;
};

}  // namespace zarnctl
