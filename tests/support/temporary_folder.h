/// A new folder for a test, removed at the end; and files written and read whole.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace test {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("zarn_test_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Makes the folders above the file, too.
inline void WriteFile(const std::filesystem::path& file, const std::string& content) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}

inline std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

}  // namespace test
