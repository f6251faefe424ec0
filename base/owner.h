/// One owner for whatever the platform hands out: handles, keys, texts, objects, held locks.
#pragma once

#include <cstdint>
#include <utility>

/// Holds one thing, and gives it back by `kGiveBack` exactly once, whichever way its scope is left. Null and
/// INVALID_HANDLE_VALUE stand for nothing held.
template <typename Pointer, auto kGiveBack>
class Owner {
 public:
  Owner() = default;
  explicit Owner(Pointer held) : held_(held) {}
  Owner(const Owner&) = delete;
  Owner& operator=(const Owner&) = delete;
  ~Owner() { Reset(); }

  explicit operator bool() const { return held_ != nullptr && reinterpret_cast<std::intptr_t>(held_) != -1; }
  Pointer Get() const { return held_; }
  Pointer operator->() const { return held_; }

  /// Hands what is held over to the caller.
  Pointer Release() { return std::exchange(held_, nullptr); }
  void Reset() {
    if (*this) kGiveBack(Release());
  }
  /// Where a platform call puts what it hands out; gives back what was held before.
  Pointer* Put() {
    Reset();
    return &held_;
  }

 private:
  Pointer held_ = nullptr;
};
