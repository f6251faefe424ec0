#include "tests/support/allocation_faults.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> armed = false;
std::atomic<bool> goes_on = false;
std::atomic<std::int64_t> until_fault = 0;
std::atomic<std::uint64_t> failed = 0;
std::atomic<std::uint64_t> bytes_requested = 0;

[[maybe_unused]] bool FailsNow(std::size_t size) {
  if (!armed.load(std::memory_order_relaxed)) return false;
  bytes_requested += size;
  const std::int64_t left = --until_fault;
  if (left > 0 || (left < 0 && !goes_on)) return false;
  ++failed;
  return true;
}

}  // namespace

// ThreadSanitizer needs its own operator new, so there no allocation fails on demand.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZARN_KEEP_OPERATOR_NEW
#endif
#endif

#ifndef ZARN_KEEP_OPERATOR_NEW
// NOLINTBEGIN(cppcoreguidelines-no-malloc): these operators are what others use instead
void* operator new(std::size_t size) {
  if (!FailsNow(size)) {
    if (void* const block = std::malloc(size == 0 ? 1 : size)) return block;
  }
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
// NOLINTEND(cppcoreguidelines-no-malloc)
#endif

namespace test {

void ArmAllocationFaults(std::uint64_t n, bool and_after) {
  until_fault = static_cast<std::int64_t>(n);
  goes_on = and_after;
  failed = 0;
  bytes_requested = 0;
  armed = true;
}

std::uint64_t DisarmAllocationFaults() {
  armed = false;
  return failed.exchange(0);
}

std::uint64_t BytesRequestedWhileArmed() { return bytes_requested; }

}  // namespace test
