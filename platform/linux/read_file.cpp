#include "platform/linux/read_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace platform {

std::optional<Bytes> ReadFile(const std::filesystem::path& file) {
  const int fd = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  Bytes bytes;
  std::array<std::uint8_t, 4096> block{};
  ssize_t got = 0;
  do {
    got = read(fd, block.data(), block.size());
    if (got > 0) bytes.insert(bytes.end(), block.begin(), block.begin() + got);
  } while (got > 0 || (got < 0 && errno == EINTR));
  close(fd);
  return got == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace platform
