/// The counts behind CountLive, and the list behind TakeComplaints. Any thread may use them.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace platform {

struct LiveCounters {
  std::atomic<std::int64_t> com_initializations{0};
  std::atomic<std::int64_t> com_objects{0};
  std::atomic<std::int64_t> texts{0};
  std::atomic<std::int64_t> arrays{0};
  std::atomic<std::int64_t> registry_keys{0};
  std::atomic<std::int64_t> device_sets{0};
  std::atomic<std::int64_t> device_handles{0};
  std::atomic<std::int64_t> preparsed_data{0};
};

extern LiveCounters g_live;

/// Notes a misuse of the layer by its caller. A complaint for which there is no memory is lost.
void Complain(std::string_view what) noexcept;

}  // namespace platform
