#include "platform/linux/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace platform {
namespace {

/// 0, or the code of the failure.
int Read(const std::filesystem::path& file, std::size_t longest, Bytes& bytes) {
  FileDescriptor descriptor;
  // Opening a FIFO would wait for its writer.
  if (const int code = descriptor.Open(file, O_RDONLY | O_NONBLOCK)) return code;
  struct stat status {};
  if (fstat(descriptor.Get(), &status) != 0) return errno;
  if (!S_ISREG(status.st_mode)) return EINVAL;
  std::array<std::uint8_t, 4096> block{};
  while (const ssize_t got = read(descriptor.Get(), block.data(), block.size())) {
    if (got < 0 && errno != EINTR) return errno;
    if (got > 0) bytes.insert(bytes.end(), block.begin(), block.begin() + got);
    if (bytes.size() > longest) return EFBIG;
  }
  return 0;
}

}  // namespace

int FileDescriptor::Open(const std::filesystem::path& file, int flags, unsigned rights) {
  Close();
  fd_ = open(file.c_str(), flags | O_CLOEXEC, rights);
  return fd_ >= 0 ? 0 : errno;
}

void FileDescriptor::Close() {
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
}

std::optional<Bytes> ReadFile(const std::filesystem::path& file, std::size_t longest) {
  Bytes bytes;
  const int code = Read(file, longest, bytes);
  if (code == 0) return bytes;
  errno = code;
  return std::nullopt;
}

}  // namespace platform
