#include "platform/standin/instruments.h"

#include <mutex>
#include <utility>

#include "platform/standin/no_destructor.h"
#include "platform/standin/platform_call.h"

namespace platform {

constinit std::atomic<unsigned> g_instruments{0};
constinit LiveCountsOf<std::atomic<std::int64_t>> g_live;

namespace {

struct JournalState {
  std::mutex mutex;
  Journal journal;
};

struct FaultState {
  std::mutex mutex;
  FaultPlan plan;
  bool armed = false;
  std::uint64_t calls = 0;
  std::uint64_t failed = 0;
};

struct Complaints {
  std::mutex mutex;
  std::vector<std::string> list;
};

template <typename State>
State& TheOne() {
  static NoDestructor<State> state;
  return *state;
}

void Switch(unsigned instrument, bool on) {
  if (on) {
    g_instruments.fetch_or(instrument, std::memory_order_relaxed);
  } else {
    g_instruments.fetch_and(~instrument, std::memory_order_relaxed);
  }
}

}  // namespace

void SetJournal(Journal journal) {
  auto& state = TheOne<JournalState>();
  const std::lock_guard lock(state.mutex);
  std::swap(state.journal, journal);
  Switch(kJournalArmed, static_cast<bool>(state.journal));
}

void Deliver(const JournalEntry& entry) {
  auto& state = TheOne<JournalState>();
  const std::lock_guard lock(state.mutex);
  if (state.journal) state.journal(entry);
}

void ArmFaults(const FaultPlan& plan) {
  auto& state = TheOne<FaultState>();
  const std::lock_guard lock(state.mutex);
  state.plan = plan;
  state.armed = true;
  state.calls = 0;
  state.failed = 0;
  Switch(kFaultsArmed, true);
}

std::uint64_t DisarmFaults() {
  auto& state = TheOne<FaultState>();
  const std::lock_guard lock(state.mutex);
  state.armed = false;
  Switch(kFaultsArmed, false);
  return std::exchange(state.failed, 0);
}

Fault NextFault(bool hands_back_object) noexcept {
  auto& state = TheOne<FaultState>();
  const std::lock_guard lock(state.mutex);
  const bool empty = state.plan.kind == FaultPlan::Kind::EmptySuccess;
  if (!state.armed || (empty && !hands_back_object)) return Fault::None;
  ++state.calls;
  const bool reached =
      state.plan.reach == FaultPlan::Reach::Once ? state.calls == state.plan.first : state.calls >= state.plan.first;
  if (!reached) return Fault::None;
  ++state.failed;
  return empty ? Fault::EmptySuccess : Fault::Failure;
}

LiveCounts CountLive() {
  return {g_live.com_initializations, g_live.com_objects, g_live.texts,          g_live.arrays,
          g_live.registry_keys,       g_live.device_sets, g_live.device_handles, g_live.preparsed_data};
}

void Complain(std::string_view what) noexcept {
  try {
    auto& complaints = TheOne<Complaints>();
    const std::lock_guard lock(complaints.mutex);
    complaints.list.emplace_back(what);
  } catch (...) {
    // Lost without memory, as declared.
  }
}

std::vector<std::string> TakeComplaints() {
  auto& complaints = TheOne<Complaints>();
  const std::lock_guard lock(complaints.mutex);
  return std::exchange(complaints.list, {});
}

}  // namespace platform
