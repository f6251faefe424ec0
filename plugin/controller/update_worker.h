/// The thread that turns a controller's push requests into hardware operations, so that the host never waits.
///
/// Each pass sends the mode first and then the colours, at most once each. A request raised while the operation of its
/// kind is running is absorbed by it. Any thread may request; Start, Stop and destruction belong to the owner.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "zarn_lighting/rgb_controller_interface.h"

class UpdateWorker {
 public:
  UpdateWorker() = default;
  UpdateWorker(const UpdateWorker&) = delete;
  UpdateWorker& operator=(const UpdateWorker&) = delete;
  /// Stops. On the worker thread itself this ends the process.
  ~UpdateWorker();  // NOLINT(bugprone-exception-escape): that is how it ends the process

  /// Starts the thread of `device`, whose slot 24 calls Run, and returns when it stands at its wait: no request raised
  /// from then on is lost. Throws std::system_error when no thread can be started.
  void Start(RGBControllerInterface& device);

  /// The worker's loop over the slots 30 and 27 of `device`, until it is stopped. Returns at once when it has been
  /// entered before, so that only the thread of Start ever works.
  void Run(RGBControllerInterface& device);

  void RequestModePush();
  void RequestColorPush();

  /// Stops and joins the thread; no operation runs afterwards. A waiting thread first carries out what is pending. A
  /// busy one ends with that pass, and what was requested meanwhile may be lost. May be called again. On the worker
  /// thread itself it stops nothing, and throws std::system_error (resource_deadlock_would_occur).
  void Stop();

 private:
  /// Sets a flag that the worker tests before it waits.
  void SetAndWake(std::atomic<bool>& flag, bool value);
  void PushPending(RGBControllerInterface& device);

  std::thread worker;
  std::atomic<bool> colors_pending = false;
  std::atomic<bool> mode_pending = false;
  std::atomic<bool> worker_alive = true;
  std::condition_variable worker_wakeup;
  std::mutex worker_lock;  // held to set a flag and to test the flags before waiting; never during an operation

  // Not a std::latch: where the system has no futex for it, libstdc++ can lose the wake-up that Start waits for.
  std::condition_variable worker_entered;
  bool entered = false;  // under worker_lock
};
