/// VARIANT, BSTR and SAFEARRAY: the values that cross the management service, with the platform's layouts and
/// conversions.
///
/// Ownership: a BSTR or an array belongs to whoever allocated it until it is put into a VARIANT; VariantClear releases
/// what a VARIANT holds. Everything allocated here is counted (see instruments.h). Any thread may call any function;
/// two threads must not use one value at once.
#pragma once

#include "platform/standin/windows_types.h"

using VARTYPE = std::uint16_t;
using OLECHAR = wchar_t;
using BSTR = OLECHAR*;

inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_NULL = 1;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_BSTR = 8;
inline constexpr VARTYPE VT_UI1 = 17;
inline constexpr VARTYPE VT_UI4 = 19;
inline constexpr VARTYPE VT_UI8 = 21;
inline constexpr VARTYPE VT_ARRAY = 0x2000;

inline constexpr HRESULT DISP_E_TYPEMISMATCH = MakeHResult(0x80020005);
inline constexpr HRESULT DISP_E_BADVARTYPE = MakeHResult(0x80020008);
inline constexpr HRESULT DISP_E_OVERFLOW = MakeHResult(0x8002000A);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = MakeHResult(0x8002000D);

struct SAFEARRAYBOUND {
  ULONG cElements;
  LONG lLbound;
};

struct SAFEARRAY {
  USHORT cDims;
  USHORT fFeatures;
  ULONG cbElements;
  ULONG cLocks;
  void* pvData;
  SAFEARRAYBOUND rgsabound[1];
};
static_assert(sizeof(SAFEARRAY) == 32);

struct VARIANT {
  VARTYPE vt;
  WORD wReserved1;
  WORD wReserved2;
  WORD wReserved3;
  union {
    LONG lVal;
    BYTE bVal;
    ULONG ulVal;
    ULONGLONG ullVal;
    BSTR bstrVal;
    SAFEARRAY* parray;
    void* reserved[2];
  };
};
static_assert(sizeof(VARIANT) == 24);
using VARIANTARG = VARIANT;

#define V_VT(variant) ((variant)->vt)
#define V_UI1(variant) ((variant)->bVal)
#define V_UI4(variant) ((variant)->ulVal)
#define V_UI8(variant) ((variant)->ullVal)
#define V_BSTR(variant) ((variant)->bstrVal)
#define V_ARRAY(variant) ((variant)->parray)

extern "C" {

/// A counted copy of `text` with its length in front; null when memory runs out or `text` is null.
BSTR SysAllocString(const OLECHAR* text);
/// Releases `text`; null is allowed.
void SysFreeString(BSTR text);
/// The length of `text` in characters; 0 for null.
UINT SysStringLen(BSTR text);

/// Makes `variant` VT_EMPTY without looking at what it held.
void VariantInit(VARIANTARG* variant);
/// Releases the contents and makes `variant` VT_EMPTY. While the data of its array are accessed, changes nothing and
/// fails with DISP_E_ARRAYISLOCKED.
HRESULT VariantClear(VARIANTARG* variant);
/// Clears `destination` and makes it a deep copy of `source`. A failure leaves `destination` VT_EMPTY. Only
/// DISP_E_ARRAYISLOCKED and a copy onto itself change nothing.
HRESULT VariantCopy(VARIANTARG* destination, VARIANTARG* source);
/// Converts `source` to VT_UI4, VT_UI8, VT_BSTR or an array of bytes, into `destination`, which may be the same
/// VARIANT. On failure (DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, E_OUTOFMEMORY) both stay as they were. `flags` is 0.
HRESULT VariantChangeType(VARIANTARG* destination, VARIANTARG* source, USHORT flags, VARTYPE type);

/// A zeroed one-dimensional array; 0 elements are valid. Null for another type, dimension or lower bound, or when
/// memory runs out. Only VT_UI1 elements, from index 0, exist here.
SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
/// Hands out the data pointer and locks the array until SafeArrayUnaccessData.
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
/// Releases an array that no VARIANT owns. Fails with DISP_E_ARRAYISLOCKED while its data are accessed.
HRESULT SafeArrayDestroy(SAFEARRAY* array);
}
