#include "platform/standin/machine.h"

#include <chrono>
#include <ctime>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/standin/instruments.h"
#include "platform/standin/no_destructor.h"
#include "platform/standin/wmi_api.h"

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

SYSTEMTIME Machine::LocalTime() {
  using std::chrono::milliseconds;
  const auto since_epoch = std::chrono::system_clock::now().time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(since_epoch);
  const std::time_t time = seconds.count();
  std::tm local = {};
  localtime_r(&time, &local);
  return {.wYear = static_cast<WORD>(local.tm_year + 1900),
          .wMonth = static_cast<WORD>(local.tm_mon + 1),
          .wDayOfWeek = static_cast<WORD>(local.tm_wday),
          .wDay = static_cast<WORD>(local.tm_mday),
          .wHour = static_cast<WORD>(local.tm_hour),
          .wMinute = static_cast<WORD>(local.tm_min),
          .wSecond = static_cast<WORD>(local.tm_sec),
          .wMilliseconds = static_cast<WORD>(std::chrono::floor<milliseconds>(since_epoch - seconds).count())};
}

void Machine::Sleep(std::uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

FirmwareAnswer Machine::CallFirmware(const std::wstring& /*instance_name*/, const std::wstring& /*method*/,
                                     const NamedValues& /*in*/) {
  return {.status = Status(WBEM_E_INVALID_METHOD), .out = {}};
}

bool UseMachine(std::shared_ptr<Machine> machine) {
  if (machine == nullptr) return false;
  MachineInUse& in_use = InUse();
  const std::lock_guard lock(in_use.mutex);
  if (CountLive() != LiveCounts{}) return false;
  // Swapped, so that the old machine goes with the argument, after the lock: it may ask for the machine in use.
  std::swap(in_use.machine, machine);
  return true;
}

std::shared_ptr<Machine> CurrentMachine() {
  MachineInUse& in_use = InUse();
  const std::lock_guard lock(in_use.mutex);
  return in_use.machine;
}

}  // namespace platform
