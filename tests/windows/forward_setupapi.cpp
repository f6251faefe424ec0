#include "tests/windows/forward.h"

ZARN_FORWARD(HDEVINFO, SetupDiGetClassDevsW, (const GUID* class_guid, PCWSTR enumerator, HWND parent, DWORD flags),
             (class_guid, enumerator, parent, flags))
ZARN_FORWARD(WINBOOL, SetupDiEnumDeviceInterfaces,
             (HDEVINFO set, PSP_DEVINFO_DATA device, const GUID* class_guid, DWORD index,
              PSP_DEVICE_INTERFACE_DATA data),
             (set, device, class_guid, index, data))
ZARN_FORWARD(WINBOOL, SetupDiGetDeviceInterfaceDetailW,
             (HDEVINFO set, PSP_DEVICE_INTERFACE_DATA data, PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD size,
              PDWORD required_size, PSP_DEVINFO_DATA device),
             (set, data, detail, size, required_size, device))
ZARN_FORWARD(WINBOOL, SetupDiDestroyDeviceInfoList, (HDEVINFO set), (set))
