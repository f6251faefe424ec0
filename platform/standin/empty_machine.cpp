#include "platform/standin/empty_machine.h"

#include <chrono>
#include <ctime>
#include <thread>

#include "platform/standin/wmi_api.h"

namespace platform {

bool EmptyMachine::HasRegistryKey(std::wstring_view /*key*/) { return false; }

std::optional<Bytes> EmptyMachine::RegistryValue(std::wstring_view /*key*/, std::wstring_view /*name*/) { return {}; }

std::optional<std::wstring> EmptyMachine::EnvironmentVariable(std::wstring_view /*name*/) { return {}; }

std::optional<std::wstring> EmptyMachine::UserName() { return {}; }

SYSTEMTIME EmptyMachine::LocalTime() {
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

void EmptyMachine::Sleep(std::uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

std::optional<SmbiosTable> EmptyMachine::ReadSmbiosTable() { return {}; }

std::optional<FirmwareClass> EmptyMachine::FindFirmwareClass() { return {}; }

FirmwareAnswer EmptyMachine::CallFirmware(const std::wstring& /*instance_name*/, const std::wstring& /*method*/,
                                          const NamedValues& /*in*/) {
  return {.status = Status(WBEM_E_INVALID_METHOD), .out = {}};
}

std::vector<HidDevice> EmptyMachine::HidDevices() { return {}; }

OpenedHidDevice EmptyMachine::OpenHidDevice(const std::wstring& /*path*/) { return {}; }

}  // namespace platform
