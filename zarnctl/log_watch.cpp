#include "zarnctl/log_watch.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <system_error>

#include "log/ts_log.h"
#include "platform/standin/text.h"
#include "zarnctl/text.h"

namespace zarnctl {

namespace fs = std::filesystem;

fs::path LogFolderPath() {
  std::string folder = platform::ReadableUtf8(LogFolder().value_or(L""));
  std::ranges::replace(folder, '\\', '/');
  return PathFromUtf8(folder).make_preferred();
}

std::vector<std::string> FailuresIn(const std::vector<std::string>& lines) {
  std::vector<std::string> failures;
  for (const std::string& line : lines) {
    if (!line.starts_with("[ERROR]") && line.find("fail") == std::string::npos) continue;
    const std::size_t message = line.rfind(" | ");
    const std::string failure = message != std::string::npos ? line.substr(message + 3) : line;
    if (std::ranges::count(failures, failure) == 0) failures.push_back(failure);
  }
  return failures;
}

std::vector<std::string> LogWatch::NewLines() const {
  std::vector<std::string> lines;
  std::uintmax_t left = std::uintmax_t{1} << 20;  // read no more than so many bytes of all files
  for (const auto& [path, end] : Ends()) {
    const auto before = ends_.find(path);
    const std::uintmax_t begin = before != ends_.end() ? before->second : 0;
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(begin));
    std::string text(std::min(left, end - std::min(begin, end)), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    left -= text.size();
    std::istringstream rest(std::move(text));
    for (std::string line; std::getline(rest, line);) lines.push_back(line.substr(0, line.find('\r')));
  }
  return lines;
}

std::map<fs::path, std::uintmax_t> LogWatch::Ends() {
  std::map<fs::path, std::uintmax_t> ends;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(LogFolderPath(), error)) {
    if (!fs::is_regular_file(entry.symlink_status(error))) continue;
    const std::uintmax_t size = entry.file_size(error);
    if (!error) ends[entry.path()] = size;
  }
  return ends;
}

}  // namespace zarnctl
