#include "zarnctl/log_watch.h"

#include <algorithm>
#include <fstream>
#include <system_error>

#include "log/ts_log.h"

namespace zarnctl {

namespace fs = std::filesystem;

fs::path LogFolderPath() {
  std::wstring folder = LogFolder().value_or(L"");
  std::ranges::replace(folder, L'\\', L'/');
  return fs::path(folder).make_preferred();
}

std::vector<std::string> FailuresIn(const std::vector<std::string>& lines) {
  std::vector<std::string> failures;
  for (const std::string& line : lines) {
    if (!line.starts_with("[ERROR]") && line.find("fail") == std::string::npos) continue;
    const std::string failure = line.substr(line.rfind(" | ") + 3);
    if (std::ranges::count(failures, failure) == 0) failures.push_back(failure);
  }
  return failures;
}

std::vector<std::string> LogWatch::NewLines() const {
  std::vector<std::string> lines;
  for (const auto& [path, end] : Ends()) {
    const auto before = ends_.find(path);
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(before != ends_.end() ? before->second : 0));
    for (std::string line; std::getline(file, line);) lines.push_back(line.substr(0, line.find('\r')));
  }
  return lines;
}

std::map<fs::path, std::uintmax_t> LogWatch::Ends() {
  std::map<fs::path, std::uintmax_t> ends;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(LogFolderPath(), error)) {
    const std::uintmax_t size = entry.file_size(error);
    if (!error) ends[entry.path()] = size;
  }
  return ends;
}

}  // namespace zarnctl
