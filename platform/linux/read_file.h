/// The kernel's files, which do not tell their size and may fail to be read although they are there.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <utility>

#include "platform/standin/machine.h"

namespace platform {

/// An open file, closed with its owner.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Close(); }

  /// Closes, then opens with the flags of open(2) and the rights of a file that it makes: 0, or the failure's code.
  int Open(const std::filesystem::path& file, int flags, unsigned rights = 0);
  void Close();
  /// Hands the open file over to the caller.
  int Release() { return std::exchange(fd_, -1); }
  /// Negative when none is open.
  int Get() const { return fd_; }

 private:
  int fd_ = -1;
};

constexpr std::size_t kLongestFile = std::size_t{16} << 20;  // in bytes

/// All of a regular file. When it cannot be opened or read to its end, nothing, and errno tells why: ENOENT or ENOTDIR
/// when it is not there, EINVAL when it is no regular file, EFBIG when it is longer than `longest`. Does not block.
std::optional<Bytes> ReadFile(const std::filesystem::path& file, std::size_t longest = kLongestFile);

}  // namespace platform
