#include "zarnctl/linux/new_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "zarnctl/complaint.h"

namespace zarnctl {

void WriteNewFile(const std::filesystem::path& path, const std::string& text) {
  if (path.empty()) throw Wrong("the name of the file is empty");
  std::FILE* const file = std::fopen(path.string().c_str(), "wbx");
  if (file == nullptr && errno == EEXIST) {
    throw Wrong(path.string() + " is there already; give another name");
  }
  const bool written = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  if (file != nullptr && std::fclose(file) == 0 && written) return;
  const std::string why = std::generic_category().message(errno);
  if (file != nullptr) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
  throw Complaint(ExitCode::Failed, "\"" + path.string() + "\" cannot be written: " + why);
}

}  // namespace zarnctl
