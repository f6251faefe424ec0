/// What platform calls have handed out under a number and nobody has given back: registry keys, device sets, handles.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/standin/no_destructor.h"

namespace platform {

/// The next number. Each is handed out once in the process, so no closed thing is taken for a later one or for one of
/// another kind. They begin above the platform's predefined keys.
inline std::uintptr_t NextToken() {
  static constinit std::atomic<std::uintptr_t> next{0x100000000};
  return next++;
}

/// The open things of one kind; copies of `Thing` are handed out, so it is cheap to copy. Any thread may call.
template <typename Thing>
class OpenThings {
 public:
  /// `live` counts them.
  explicit OpenThings(std::atomic<std::int64_t>& live) : live_(live) {}

  void* Add(Thing thing) {
    const std::uintptr_t token = NextToken();
    const std::lock_guard lock(mutex_);
    things_.emplace(token, std::move(thing));
    ++live_;
    return reinterpret_cast<void*>(token);
  }

  std::optional<Thing> Find(const void* token) {
    const std::lock_guard lock(mutex_);
    const auto found = things_.find(reinterpret_cast<std::uintptr_t>(token));
    return found != things_.end() ? std::optional(found->second) : std::nullopt;
  }

  /// Whether it was open. The thing is released after the lock.
  bool Remove(const void* token) {
    typename Things::node_type gone;
    const std::lock_guard lock(mutex_);
    gone = things_.extract(reinterpret_cast<std::uintptr_t>(token));
    if (gone.empty()) return false;
    --live_;
    return true;
  }

 private:
  using Things = std::map<std::uintptr_t, Thing>;

  std::atomic<std::int64_t>& live_;
  std::mutex mutex_;
  Things things_;  // guarded by mutex_
};

}  // namespace platform
