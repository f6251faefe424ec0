#include "controller/update_worker.h"

#include <system_error>
#include <utility>

#include "controller/millisecond_sleep.h"

namespace {

/// Runs a hardware operation. Those catch their errors themselves; what they miss ends here, because it would end the
/// host's process.
void Attempt(const std::function<void()>& operation) {
  try {
    operation();
  } catch (...) {
  }
}

}  // namespace

UpdateWorker::~UpdateWorker() { Stop(); }  // NOLINT(bugprone-exception-escape): see there

void UpdateWorker::Start(std::function<void()> body) {
  worker = std::thread(std::move(body));
  std::unique_lock lock(worker_lock);
  worker_entered.wait(lock, [this] { return entered; });
}

void UpdateWorker::Run(const std::function<void()>& write_mode, const std::function<void()>& write_colors) {
  std::unique_lock lock(worker_lock);
  if (std::exchange(entered, true)) return;
  colors_pending = false;
  mode_pending = false;
  // Whoever hears of it can raise a request only once the wait below has given the lock up.
  worker_entered.notify_one();
  while (worker_alive) {
    worker_wakeup.wait(lock, [this] { return mode_pending || colors_pending || !worker_alive; });
    lock.unlock();
    PushPending(write_mode, write_colors);
    lock.lock();
  }
}

void UpdateWorker::PushPending(const std::function<void()>& write_mode, const std::function<void()>& write_colors) {
  // A flag falls only after its operation: what was requested meanwhile is absorbed.
  if (mode_pending) {
    Attempt(write_mode);
    mode_pending = false;
  }
  if (colors_pending) {
    Attempt(write_colors);
    colors_pending = false;
  } else {
    SleepMilliseconds(1);  // spaces passes that only push a mode
  }
}

void UpdateWorker::RequestModePush() { Request(mode_pending); }

void UpdateWorker::RequestColorPush() { Request(colors_pending); }

void UpdateWorker::Request(std::atomic<bool>& pending) {
  {
    const std::lock_guard lock(worker_lock);
    pending = true;
  }
  worker_wakeup.notify_one();
}

void UpdateWorker::Stop() {
  if (worker.get_id() == std::this_thread::get_id()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  {
    // Under the lock, or a worker between its test and its wait would miss the wake-up and be waited for for ever.
    const std::lock_guard lock(worker_lock);
    worker_alive = false;
  }
  worker_wakeup.notify_one();
  if (worker.joinable()) worker.join();
}
