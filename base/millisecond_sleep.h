/// A sleep on the monotonic clock, for waits that are the program's own and not the platform's.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

/// The longest stretch slept at a time, so that no conversion of a far deadline can overflow.
inline constexpr std::chrono::milliseconds kLongestNap{86'400'000};

/// Sleeps until `Clock` has moved on by `milliseconds`, or to the clock's end if that comes first. 0 or less returns at
/// once. `nap` sleeps for as long as its argument says, or less.
template <typename Clock, typename Nap>
void SleepMilliseconds(std::int64_t milliseconds, Nap nap) {
  using std::chrono::ceil;
  using Milliseconds = std::chrono::milliseconds;
  if (milliseconds <= 0) return;

  const auto start = Clock::now();
  const auto longest = std::chrono::floor<Milliseconds>(Clock::time_point::max() - start);
  const auto deadline =
      Milliseconds(milliseconds) > longest ? Clock::time_point::max() : start + Milliseconds(milliseconds);
  for (auto now = start; now < deadline; now = Clock::now()) {
    nap(std::min(ceil<Milliseconds>(deadline - now), kLongestNap));
  }
}

/// The same on the monotonic clock, blocking the calling thread.
void SleepMilliseconds(std::int64_t milliseconds);
