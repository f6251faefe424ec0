#include "platform/portable/com_apartment.h"

#include "platform/portable/live_counters.h"
#include "platform/portable/platform_call.h"
#include "platform/portable/wmi_api.h"

namespace platform {
namespace {

/// Without a destructor: a thread that ends in an apartment stays in the counts, as it should.
struct Apartment {
  int attempts = 0;
  bool entered = false;
  DWORD kind = COINIT_MULTITHREADED;
};

constinit thread_local Apartment t_apartment;

constexpr Call<HRESULT> kCoInitializeEx = ComCall("CoInitializeEx", E_OUTOFMEMORY, E_OUTOFMEMORY);
constexpr Call<Nothing> kCoUninitialize = SureCall("CoUninitialize");

HRESULT Enter(DWORD kind) {
  if (t_apartment.entered) return t_apartment.kind == kind ? S_FALSE : RPC_E_CHANGED_MODE;
  t_apartment.entered = true;
  t_apartment.kind = kind;
  return S_OK;
}

void Leave() {
  if (t_apartment.attempts == 0) return Complain("CoUninitialize on a thread without a CoInitializeEx to take back");
  --g_live.com_initializations;
  if (--t_apartment.attempts == 0) t_apartment = {};
}

}  // namespace

bool ComInitializedHere() noexcept { return t_apartment.entered; }

extern "C" {

HRESULT CoInitializeEx(LPVOID /*reserved*/, DWORD apartment) {
  // Other bits are hints that do not tell apartments apart.
  const DWORD kind = apartment & COINIT_APARTMENTTHREADED;
  const HRESULT result = Pass(kCoInitializeEx, Asked(apartment), [&] { return Enter(kind); });
  if (result != RPC_E_CHANGED_MODE) {
    ++t_apartment.attempts;
    ++g_live.com_initializations;
  }
  return result;
}

void CoUninitialize() { Pass(kCoUninitialize, Asked(), Leave); }

}  // extern "C"

}  // namespace platform
