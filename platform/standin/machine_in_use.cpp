#include <mutex>
#include <utility>

#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "platform/standin/no_destructor.h"

namespace platform {
namespace {

struct MachineInUse {
  std::mutex mutex;
  std::shared_ptr<Machine> machine = MakeThisComputer();
};

MachineInUse& InUse() {
  static NoDestructor<MachineInUse> in_use;
  return *in_use;
}

}  // namespace

bool UseMachine(std::shared_ptr<Machine> machine) {
  if (machine == nullptr) return false;
  MachineInUse& in_use = InUse();
  const std::lock_guard lock(in_use.mutex);
  if (CountLive() != LiveCounts{}) return false;
  // What goes is released with the argument, after the lock: its destructor may ask for the machine in use.
  std::swap(in_use.machine, machine);
  return true;
}

std::shared_ptr<Machine> CurrentMachine() {
  MachineInUse& in_use = InUse();
  const std::lock_guard lock(in_use.mutex);
  return in_use.machine;
}

}  // namespace platform
