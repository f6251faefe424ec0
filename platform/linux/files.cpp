/// The calls of system_api.h for the log's folders and files. The process may be root's, so other users must have no
/// say in where it writes. No link of theirs is followed, nothing that they could have put there is taken, and nothing
/// is waited for.

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <ext/stdio_filebuf.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/read_file.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/system_api.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPrivateFolder = 0700;
constexpr mode_t kPrivateFile = 0600;
constexpr int kMostLinks = 40;  // on the way to a file, as in the kernel

bool IsOurs(const struct stat& entry) { return entry.st_uid == 0 || entry.st_uid == geteuid(); }

/// Whether others than root and this user can write in the folder. A private group, which has this user's own number,
/// is not others, unless the folder has an access list: then the group's rights are the list's mask.
bool IsForOthers(const fs::path& folder, const struct stat& entry) {
  if ((entry.st_mode & S_IWOTH) != 0) return true;
  if ((entry.st_mode & S_IWGRP) == 0) return false;
  const bool has_list = getxattr(folder.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
  return has_list || entry.st_gid != geteuid();
}

/// Makes a folder for this user alone, whatever the process's umask: 0, or the code of the failure. Leaves alone what
/// somebody else put there meanwhile.
int MakeFolder(const fs::path& folder) {
  if (mkdir(folder.c_str(), kPrivateFolder) != 0) return errno == EEXIST ? 0 : errno;
  return chmod(folder.c_str(), kPrivateFolder) == 0 ? 0 : errno;
}

/// Goes a path name by name, and follows links of root's and of this user's alone. With `make` it makes missing
/// folders, but none at the root of the file system.
class FolderWalk {
 public:
  FolderWalk(const fs::path& folder, bool make) : make_(make) { Push(fs::absolute(folder)); }

  /// 0, or the code of the failure: EACCES where another user could interfere.
  int Run() {
    while (!names_.empty()) {
      const fs::path name = std::move(names_.back());
      names_.pop_back();
      if (const int code = Step(name)) return code;
    }
    return 0;
  }
  /// Where it has come to: a path without links.
  const fs::path& reached() const { return reached_; }
  /// Whether others can make files there.
  bool is_for_others() const { return is_for_others_; }

 private:
  /// Puts the names of a path on the stack, the first one on top.
  void Push(const fs::path& path) {
    const std::vector<fs::path> forward(path.begin(), path.end());
    names_.insert(names_.end(), forward.rbegin(), forward.rend());
  }

  int Step(const fs::path& name) {
    if (name.empty() || name == ".") return 0;
    if (name == "/" || name == "..") {
      reached_ = name == "/" ? name : reached_.parent_path();
      is_for_others_ = true;  // no place for a file, but a name behind it decides anew
      return 0;
    }
    const fs::path here = reached_ / name;
    struct stat entry {};
    if (const int code = Find(here, entry)) return code;
    if (S_ISLNK(entry.st_mode)) return Follow(here, entry);
    if (!S_ISDIR(entry.st_mode)) return ENOTDIR;
    is_for_others_ = IsForOthers(here, entry);
    // In a sticky folder, as /tmp is, each entry is its owner's alone.
    if (!IsOurs(entry) || (is_for_others_ && (entry.st_mode & S_ISVTX) == 0)) return EACCES;
    reached_ = here;
    return 0;
  }

  int Find(const fs::path& here, struct stat& entry) const {
    if (lstat(here.c_str(), &entry) == 0) return 0;
    if (errno != ENOENT || !make_) return errno;
    if (reached_ == "/") return EACCES;
    if (const int code = MakeFolder(here)) return code;
    return lstat(here.c_str(), &entry) == 0 ? 0 : errno;
  }

  int Follow(const fs::path& link, const struct stat& entry) {
    if (!IsOurs(entry) || ++links_ > kMostLinks) return EACCES;
    std::error_code error;
    Push(fs::read_symlink(link, error));
    return error.value();
  }

  const bool make_;
  std::vector<fs::path> names_;  // still to go, the next one on top
  fs::path reached_;
  bool is_for_others_ = false;
  int links_ = 0;
};

/// Opens a file of this user's that has no other name, or makes it: 0, or the code of the failure.
int OpenOwn(const fs::path& file, FileDescriptor& opened) {
  constexpr int kFlags = O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK;
  int code = opened.Open(file, kFlags);
  if (code == ENOENT) {
    if (file.parent_path() == "/") return EACCES;
    code = opened.Open(file, kFlags | O_CREAT | O_EXCL, kPrivateFile);
    if (code == EEXIST) code = opened.Open(file, kFlags);  // another process of this user's made it meanwhile
  }
  if (code != 0) return code;
  struct stat entry {};
  if (fstat(opened.Get(), &entry) != 0) return errno;
  if (!S_ISREG(entry.st_mode) || entry.st_uid != geteuid() || entry.st_nlink != 1) return EACCES;
  // The umask, or whoever made the file, may have given it other rights.
  if ((entry.st_mode & ALLPERMS) != kPrivateFile && fchmod(opened.Get(), kPrivateFile) != 0) return errno;
  return 0;
}

std::string WithSlashes(std::string path) {
  std::ranges::replace(path, '\\', '/');
  return path;
}

/// Sets the thread's last error from a value of errno; whether there was none.
bool Succeeded(int code) {
  using Row = std::pair<int, LONG>;
  static constexpr Row kErrors[] = {{0, ERROR_SUCCESS},
                                    {ENOENT, ERROR_FILE_NOT_FOUND},
                                    {ENOTDIR, ERROR_PATH_NOT_FOUND},
                                    {EACCES, ERROR_ACCESS_DENIED},
                                    {EPERM, ERROR_ACCESS_DENIED},
                                    {EROFS, ERROR_ACCESS_DENIED},
                                    {EISDIR, ERROR_ACCESS_DENIED},
                                    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY}};
  const auto* const known = std::ranges::find(kErrors, code, &Row::first);
  SetThreadError(known != std::end(kErrors) ? known->second : ERROR_INVALID_PARAMETER);
  return code == 0;
}

BOOL MakeFolders(PCSTR path) {
  return Succeeded(FolderWalk(fs::path(WithSlashes(path)).parent_path(), true).Run()) ? TRUE : FALSE;
}

int Open(std::wofstream& stream, const fs::path& file) {
  FolderWalk folder(file.parent_path(), false);
  if (const int code = folder.Run()) return code;
  if (folder.is_for_others()) return EACCES;
  FileDescriptor opened;
  if (const int code = OpenOwn(folder.reached() / file.filename(), opened)) return code;
  // The standard cannot make a stream of an open file. GCC's library has a buffer that can, and that moves into the
  // stream's own.
  __gnu_cxx::stdio_filebuf<wchar_t> buffer(opened.Get(), std::ios_base::out | std::ios_base::app);
  if (!buffer.is_open()) return ENOMEM;
  opened.Release();  // it is the buffer's now
  *stream.rdbuf() = std::move(buffer);
  stream.clear();
  return 0;
}

bool OpenByWidePath(std::wofstream& stream, const wchar_t* path) {
  std::string file;
  if (path == nullptr || !AppendUtf8(path, file)) {
    SetThreadError(ERROR_NO_UNICODE_TRANSLATION);
    return false;
  }
  return Succeeded(Open(stream, WithSlashes(std::move(file))));
}

}  // namespace

void OpenToAppend(std::wofstream& stream, const wchar_t* path) {
  if (Pass(ZeroCall<bool>("OpenToAppend", ERROR_ACCESS_DENIED), Asked(path),
           [&] { return OpenByWidePath(stream, path); }))
    return;
  try {
    stream.setstate(std::ios_base::failbit);
  } catch (const std::ios_base::failure&) {
    // Set all the same. The stream throws when its owner asked for that, but platform calls never do.
  }
}

extern "C" {

BOOL MakeSureDirectoryPathExists(PCSTR path) {
  return Pass(ZeroCall<BOOL>("MakeSureDirectoryPathExists", ERROR_ACCESS_DENIED), Asked(path),
              [&] { return path != nullptr ? MakeFolders(path) : FailWith(ERROR_INVALID_PARAMETER); });
}

}  // extern "C"

}  // namespace platform
