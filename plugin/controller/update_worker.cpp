#include "controller/update_worker.h"

#include <system_error>
#include <utility>

#include "base/millisecond_sleep.h"

namespace {

/// Runs a hardware operation. Device classes let nothing escape from theirs. Should one do so, the error must not leave
/// the thread: that would end the host's process.
void Attempt(RGBControllerInterface& device, void (RGBControllerInterface::*operation)()) {
  try {
    (device.*operation)();
  } catch (...) {
  }
}

}  // namespace

UpdateWorker::~UpdateWorker() { Stop(); }  // NOLINT(bugprone-exception-escape): see there

void UpdateWorker::Start(RGBControllerInterface& device) {
  worker = std::thread([&device] { device.RunWorker(); });
  std::unique_lock lock(worker_lock);
  worker_entered.wait(lock, [this] { return entered; });
}

void UpdateWorker::Run(RGBControllerInterface& device) {
  std::unique_lock lock(worker_lock);
  if (std::exchange(entered, true)) return;
  colors_pending = false;
  mode_pending = false;
  // Start returns only when the wait below gives the lock up, so its caller's first request finds this thread waiting.
  worker_entered.notify_one();
  while (worker_alive) {
    worker_wakeup.wait(lock, [this] { return mode_pending || colors_pending || !worker_alive; });
    lock.unlock();
    PushPending(device);
    lock.lock();
  }
}

void UpdateWorker::PushPending(RGBControllerInterface& device) {
  // A flag is cleared only after its operation, so what was requested meanwhile is absorbed.
  if (mode_pending) {
    Attempt(device, &RGBControllerInterface::WriteModeToDevice);
    mode_pending = false;
  }
  if (colors_pending) {
    Attempt(device, &RGBControllerInterface::WriteColorsToDevice);
    colors_pending = false;
  } else {
    SleepMilliseconds(1);  // spaces passes that only push a mode
  }
}

void UpdateWorker::RequestModePush() { SetAndWake(mode_pending, true); }

void UpdateWorker::RequestColorPush() { SetAndWake(colors_pending, true); }

void UpdateWorker::Stop() {
  if (worker.get_id() == std::this_thread::get_id()) {
    throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
  }
  SetAndWake(worker_alive, false);
  if (worker.joinable()) worker.join();
}

void UpdateWorker::SetAndWake(std::atomic<bool>& flag, bool value) {
  {
    // Under the lock: a worker between its test and its wait would miss the wake-up, and sleep on for ever.
    const std::lock_guard lock(worker_lock);
    flag = value;
  }
  worker_wakeup.notify_one();
}
