/// What the plug-in has logged in this process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zarnctl {

/// The folder of the log's files. Empty when nobody knows it: the environment lacks what it is made from.
std::filesystem::path LogFolderPath();

/// The messages of those lines that tell of a failure, without time and place, each once.
std::vector<std::string> FailuresIn(const std::vector<std::string>& lines);

/// Remembers where the log ends when the watch is made.
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
