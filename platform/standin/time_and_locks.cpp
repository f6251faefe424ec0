#include "platform/standin/machine.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/system_api.h"

namespace platform {
namespace {

constexpr Call<Nothing> kGetLocalTime = SureCall("GetLocalTime");
constexpr Call<Nothing> kSleep = SureCall("Sleep");
constexpr Call<Nothing> kInitializeCriticalSection = SureCall("InitializeCriticalSection");
constexpr Call<Nothing> kEnterCriticalSection = SureCall("EnterCriticalSection");
constexpr Call<Nothing> kLeaveCriticalSection = SureCall("LeaveCriticalSection");

}  // namespace

extern "C" {

void GetLocalTime(LPSYSTEMTIME time) {
  *time = {};
  Pass(kGetLocalTime, Asked(), [&] { *time = CurrentMachine()->LocalTime(); });
}

void Sleep(DWORD milliseconds) {
  Pass(kSleep, Asked(milliseconds), [&] { CurrentMachine()->Sleep(milliseconds); });
}

void InitializeCriticalSection(LPCRITICAL_SECTION /*section*/) {
  // The record's own constructor has made the lock.
  Pass(kInitializeCriticalSection, Asked(), [] {});
}

void EnterCriticalSection(LPCRITICAL_SECTION section) {
  Pass(kEnterCriticalSection, Asked(), [&] { section->mutex.lock(); });
}

void LeaveCriticalSection(LPCRITICAL_SECTION section) {
  Pass(kLeaveCriticalSection, Asked(), [&] { section->mutex.unlock(); });
}

}  // extern "C"

}  // namespace platform
