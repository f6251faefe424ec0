#include <memory>

#include "platform/standin/live_counters.h"
#include "platform/standin/platform_call.h"
#include "platform/standin/variant_value.h"

namespace platform {
namespace {

constexpr Call<SAFEARRAY*> kSafeArrayCreate = ZeroCall<SAFEARRAY*>("SafeArrayCreate");
constexpr Call<HRESULT> kSafeArrayAccessData = ComCall("SafeArrayAccessData", E_FAIL, E_OUTOFMEMORY);
constexpr Call<HRESULT> kSafeArrayUnaccessData = Sure(ComCall("SafeArrayUnaccessData", E_FAIL, E_OUTOFMEMORY));
constexpr Call<HRESULT> kSafeArrayDestroy = Sure(ComCall("SafeArrayDestroy", E_FAIL, E_OUTOFMEMORY));

HRESULT Lock(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  ++array->cLocks;
  *data = array->pvData;
  return S_OK;
}

HRESULT Unlock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks == 0) {
    Complain("SafeArrayUnaccessData of an array that is not accessed");
    return E_FAIL;
  }
  --array->cLocks;
  return S_OK;
}

}  // namespace

SAFEARRAY* AllocateArray(ULONG size) {
  auto data = std::make_unique<std::uint8_t[]>(size);
  auto* const array = new SAFEARRAY{.cDims = 1,
                                    .fFeatures = 0,
                                    .cbElements = 1,
                                    .cLocks = 0,
                                    .pvData = data.release(),
                                    .rgsabound = {{.cElements = size, .lLbound = 0}}};
  ++g_live.arrays;
  return array;
}

HRESULT FreeArray(SAFEARRAY* array) noexcept {
  if (array == nullptr) return S_OK;
  if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
  --g_live.arrays;
  delete[] static_cast<std::uint8_t*>(array->pvData);
  delete array;
  return S_OK;
}

extern "C" {

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  const ULONG size = bounds != nullptr ? bounds->cElements : 0;
  return Pass(kSafeArrayCreate, Asked(type, dimensions, size), [&] {
    const bool known = type == VT_UI1 && dimensions == 1 && bounds != nullptr && bounds->lLbound == 0;
    return known ? AllocateArray(size) : nullptr;
  });
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  return Pass(kSafeArrayAccessData, Asked(), [&] { return Lock(array, data); });
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
  return Pass(kSafeArrayUnaccessData, Asked(), [&] { return Unlock(array); });
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  return Pass(kSafeArrayDestroy, Asked(), [&] { return FreeArray(array); });
}

}  // extern "C"

}  // namespace platform
