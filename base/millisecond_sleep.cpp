#include "base/millisecond_sleep.h"

#include <thread>

void SleepMilliseconds(std::int64_t milliseconds) {
  SleepMilliseconds<std::chrono::steady_clock>(milliseconds,
                                               [](std::chrono::milliseconds nap) { std::this_thread::sleep_for(nap); });
}
