#include "platform/linux/user.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/standin/machine.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

/// Calls `take(entry)` with the user's entry, if there is one.
template <typename Take>
void WithUser(const Take& take) {
  std::vector<char> buffer(1024);
  passwd entry = {};
  passwd* found = nullptr;
  while (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    buffer.resize(2 * buffer.size());
  }
  if (found != nullptr) take(*found);
}

/// `text` as a path, if it begins at the root and is UTF-8: the platform's calls could not name another.
std::optional<std::filesystem::path> Absolute(const char* text) try {
  if (text == nullptr || *text != '/') return std::nullopt;
  WideFromUtf8(text);
  return std::filesystem::path(text);
} catch (const std::system_error&) {
  return std::nullopt;
}

}  // namespace

std::optional<std::filesystem::path> UserFolder(const char* variable, const char* below_home) {
  if (auto named = Absolute(std::getenv(variable))) return named;
  auto home = Absolute(std::getenv("HOME"));
  if (!home) WithUser([&home](const passwd& user) { home = Absolute(user.pw_dir); });
  return home ? std::optional(*home / below_home) : std::nullopt;
}

std::optional<std::string> CurrentUser() {
  std::optional<std::string> name;
  WithUser([&name](const passwd& user) { name = user.pw_name; });
  return name;
}

std::optional<std::wstring> ProcessVariable(std::wstring_view name) {
  const char* const own = std::getenv(ReadableUtf8(name).c_str());
  if (name != L"PROGRAMDATA" || Absolute(own)) return own != nullptr ? std::optional(WideFromUtf8(own)) : std::nullopt;
  const auto states = UserFolder("XDG_STATE_HOME", ".local/state");
  return states ? std::optional(WideFromUtf8((*states / "zarn").string())) : std::nullopt;
}

}  // namespace platform
