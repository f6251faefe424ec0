/// HID devices: enumeration of their interfaces, opening and closing, capabilities, feature reports. Any thread may
/// call; calls that fail set the calling thread's last error, but for the two HidP calls, which answer a status.
///
/// An interface is one top-level collection of a device: a device whose report descriptor has several is enumerated
/// that often, each time with a path, a usage, report lengths and capabilities of its own. A device whose descriptor
/// cannot be read is not enumerated.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/standin/windows_types.h"

using HDEVINFO = void*;
using HWND = void*;
using PCWSTR = const wchar_t*;
using PVOID = void*;
using PDWORD = DWORD*;
using PUSHORT = USHORT*;
using LPGUID = GUID*;
using NTSTATUS = std::int32_t;
using USAGE = std::uint16_t;
using ULONG_PTR = std::uintptr_t;
struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
struct SP_DEVINFO_DATA;
using PSP_DEVINFO_DATA = SP_DEVINFO_DATA*;

inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(~std::uintptr_t{0});

inline constexpr DWORD DIGCF_PRESENT = 0x02;
inline constexpr DWORD DIGCF_DEVICEINTERFACE = 0x10;
inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD OPEN_EXISTING = 3;

inline constexpr LONG ERROR_INVALID_DATA = 13;
inline constexpr LONG ERROR_GEN_FAILURE = 31;
inline constexpr LONG ERROR_SHARING_VIOLATION = 32;
inline constexpr LONG ERROR_SEM_TIMEOUT = 121;
inline constexpr LONG ERROR_NO_MORE_ITEMS = 259;
inline constexpr LONG ERROR_DEVICE_NOT_CONNECTED = 1167;
inline constexpr LONG ERROR_INVALID_USER_BUFFER = 1784;

struct SP_DEVICE_INTERFACE_DATA {
  DWORD cbSize;  // must be set to the record's size
  GUID InterfaceClassGuid;
  DWORD Flags;
  ULONG_PTR Reserved;
};
static_assert(sizeof(SP_DEVICE_INTERFACE_DATA) == 32);
using PSP_DEVICE_INTERFACE_DATA = SP_DEVICE_INTERFACE_DATA*;

struct SP_DEVICE_INTERFACE_DETAIL_DATA_W {
  DWORD cbSize;         // must be set to the record's size
  WCHAR DevicePath[1];  // goes on for as long as the path is, with its terminator
};
static_assert(sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) == 8 &&
              offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) == 4);
using PSP_DEVICE_INTERFACE_DETAIL_DATA_W = SP_DEVICE_INTERFACE_DETAIL_DATA_W*;

struct HIDD_ATTRIBUTES {
  ULONG Size;  // must be set to the record's size
  USHORT VendorID;
  USHORT ProductID;
  USHORT VersionNumber;
};
static_assert(sizeof(HIDD_ATTRIBUTES) == 12);
using PHIDD_ATTRIBUTES = HIDD_ATTRIBUTES*;

/// What an interface's descriptor says of it. Freed by whoever got it.
struct HIDP_PREPARSED_DATA;
using PHIDP_PREPARSED_DATA = HIDP_PREPARSED_DATA*;

enum HIDP_REPORT_TYPE { HidP_Input, HidP_Output, HidP_Feature };

struct HIDP_CAPS {
  USAGE Usage;
  USAGE UsagePage;
  USHORT InputReportByteLength;
  USHORT OutputReportByteLength;
  USHORT FeatureReportByteLength;  // the longest report in bytes, with the byte for the report id; 0 when there is none
  USHORT Reserved[17];
  USHORT NumberLinkCollectionNodes;
  USHORT NumberInputButtonCaps;
  USHORT NumberInputValueCaps;
  USHORT NumberInputDataIndices;
  USHORT NumberOutputButtonCaps;
  USHORT NumberOutputValueCaps;
  USHORT NumberOutputDataIndices;
  USHORT NumberFeatureButtonCaps;
  USHORT NumberFeatureValueCaps;
  USHORT NumberFeatureDataIndices;
};
static_assert(sizeof(HIDP_CAPS) == 64 && offsetof(HIDP_CAPS, NumberFeatureValueCaps) == 60);
using PHIDP_CAPS = HIDP_CAPS*;

struct HidpUsageRange {
  USAGE UsageMin, UsageMax;
  USHORT StringMin, StringMax;
  USHORT DesignatorMin, DesignatorMax;
  USHORT DataIndexMin, DataIndexMax;
};
struct HidpSingleUsage {
  USAGE Usage, Reserved1;
  USHORT StringIndex, Reserved2;
  USHORT DesignatorIndex, Reserved3;
  USHORT DataIndex, Reserved4;
};

/// One value field of a report, or a run of them.
struct HIDP_VALUE_CAPS {
  USAGE UsagePage;
  BYTE ReportID;
  BOOLEAN IsAlias;
  USHORT BitField;  // the main item's flags
  USHORT LinkCollection;
  USAGE LinkUsage;
  USAGE LinkUsagePage;
  BOOLEAN IsRange;
  BOOLEAN IsStringRange;
  BOOLEAN IsDesignatorRange;
  BOOLEAN IsAbsolute;
  BOOLEAN HasNull;
  BYTE Reserved;
  USHORT BitSize;  // of one value
  USHORT ReportCount;
  USHORT Reserved2[5];
  ULONG UnitsExp;
  ULONG Units;
  LONG LogicalMin, LogicalMax;
  LONG PhysicalMin, PhysicalMax;
  union {
    HidpUsageRange Range;      // when IsRange
    HidpSingleUsage NotRange;  // otherwise; its fields lie where a range's firsts do
  };
};
static_assert(sizeof(HIDP_VALUE_CAPS) == 72 && offsetof(HIDP_VALUE_CAPS, BitSize) == 18);
static_assert(offsetof(HIDP_VALUE_CAPS, NotRange.Usage) == 56 && offsetof(HIDP_VALUE_CAPS, NotRange.DataIndex) == 68);
using PHIDP_VALUE_CAPS = HIDP_VALUE_CAPS*;

constexpr NTSTATUS MakeNtStatus(std::uint32_t code) { return static_cast<NTSTATUS>(code); }

inline constexpr NTSTATUS HIDP_STATUS_SUCCESS = MakeNtStatus(0x00110000);
inline constexpr NTSTATUS HIDP_STATUS_INVALID_PREPARSED_DATA = MakeNtStatus(0xC0110001);
inline constexpr NTSTATUS HIDP_STATUS_INVALID_REPORT_TYPE = MakeNtStatus(0xC0110002);
inline constexpr NTSTATUS HIDP_STATUS_INVALID_REPORT_LENGTH = MakeNtStatus(0xC0110003);
inline constexpr NTSTATUS HIDP_STATUS_USAGE_NOT_FOUND = MakeNtStatus(0xC0110004);

extern "C" {

/// The interface class of HID devices.
void HidD_GetHidGuid(LPGUID guid);

/// The interfaces of a class that are present now, in an order that stays as long as they do. The caller destroys the
/// set. INVALID_HANDLE_VALUE when it cannot be made.
HDEVINFO SetupDiGetClassDevsW(const GUID* class_guid, PCWSTR enumerator, HWND parent, DWORD flags);
/// FALSE with ERROR_NO_MORE_ITEMS past the last interface.
BOOL SetupDiEnumDeviceInterfaces(HDEVINFO set, PSP_DEVINFO_DATA device, const GUID* class_guid, DWORD member_index,
                                 PSP_DEVICE_INTERFACE_DATA data);
/// The path that opens an interface. Without a buffer, or with one that is too small, sets `*required_size` in bytes
/// and answers FALSE with ERROR_INSUFFICIENT_BUFFER.
BOOL SetupDiGetDeviceInterfaceDetailW(HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data,
                                      PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD detail_size,
                                      PDWORD required_size, PSP_DEVINFO_DATA device);
BOOL SetupDiDestroyDeviceInfoList(HDEVINFO set);

/// Opens an interface by its path: checks that it is there and that this process may use it, and exchanges nothing
/// with the device. The caller closes what it gets; INVALID_HANDLE_VALUE on failure. A handle stays with the device
/// that was there: after an unplug it fails for good. With `access` 0 anybody may open, but exchange no report.
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share_mode, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE template_file);
/// FALSE with ERROR_INVALID_HANDLE, and a complaint (see instruments.h), for a handle that is not open.
BOOL CloseHandle(HANDLE handle);

/// `attributes->Size` must be set: FALSE with ERROR_INVALID_PARAMETER when it is not the record's size.
BOOLEAN HidD_GetAttributes(HANDLE handle, PHIDD_ATTRIBUTES attributes);
/// The caller frees what it gets, once; the data may outlive the handle. FALSE with the last error on failure.
BOOLEAN HidD_GetPreparsedData(HANDLE handle, PHIDP_PREPARSED_DATA* preparsed);
BOOLEAN HidD_FreePreparsedData(PHIDP_PREPARSED_DATA preparsed);
/// HIDP_STATUS_INVALID_PREPARSED_DATA for data that was freed.
NTSTATUS HidP_GetCaps(PHIDP_PREPARSED_DATA preparsed, PHIDP_CAPS caps);
/// Fills as many records as there are and `*length` has room for, and sets `*length` to their number.
/// HIDP_STATUS_USAGE_NOT_FOUND when there is none. Only feature values exist here: HIDP_STATUS_INVALID_REPORT_TYPE for
/// another type.
NTSTATUS HidP_GetValueCaps(HIDP_REPORT_TYPE type, PHIDP_VALUE_CAPS caps, PUSHORT length,
                           PHIDP_PREPARSED_DATA preparsed);

/// Exchange one feature report, of exactly the interface's FeatureReportByteLength; byte 0 is the report id. They
/// return when the device has answered or failed. What a device leaves out of its answer stays as it was. FALSE with
/// ERROR_INVALID_PARAMETER for another length, else with the device's error: ERROR_GEN_FAILURE where it refused,
/// ERROR_SEM_TIMEOUT where it did not answer, ERROR_DEVICE_NOT_CONNECTED where it is gone.
BOOLEAN HidD_SetFeature(HANDLE handle, PVOID report, ULONG length);
BOOLEAN HidD_GetFeature(HANDLE handle, PVOID report, ULONG length);
}
