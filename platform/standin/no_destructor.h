/// A thing that lives to the end of the process: constructed in place and never destroyed, since its users' statics and
/// threads may live longer than statics of the layer.
#pragma once

#include <new>
#include <utility>

namespace platform {

template <typename T>
class NoDestructor {
 public:
  template <typename... Arguments>
  explicit NoDestructor(Arguments&&... arguments) {
    new (storage_) T(std::forward<Arguments>(arguments)...);
  }
  NoDestructor(const NoDestructor&) = delete;
  NoDestructor& operator=(const NoDestructor&) = delete;
  ~NoDestructor() = default;

  T& operator*() { return *std::launder(reinterpret_cast<T*>(storage_)); }

 private:
  alignas(T) unsigned char storage_[sizeof(T)] = {};
};

}  // namespace platform
