#include "tests/windows/forward.h"

ZARN_FORWARD(void, HidD_GetHidGuid, (LPGUID guid), (guid))
ZARN_FORWARD(BOOLEAN, HidD_GetAttributes, (HANDLE handle, PHIDD_ATTRIBUTES attributes), (handle, attributes))
ZARN_FORWARD(BOOLEAN, HidD_GetPreparsedData, (HANDLE handle, PHIDP_PREPARSED_DATA* preparsed), (handle, preparsed))
ZARN_FORWARD(BOOLEAN, HidD_FreePreparsedData, (PHIDP_PREPARSED_DATA preparsed), (preparsed))
ZARN_FORWARD(BOOLEAN, HidD_SetFeature, (HANDLE handle, PVOID report, ULONG length), (handle, report, length))
ZARN_FORWARD(BOOLEAN, HidD_GetFeature, (HANDLE handle, PVOID report, ULONG length), (handle, report, length))
ZARN_FORWARD(NTSTATUS, HidP_GetCaps, (PHIDP_PREPARSED_DATA preparsed, PHIDP_CAPS caps), (preparsed, caps))
ZARN_FORWARD(NTSTATUS, HidP_GetValueCaps,
             (HIDP_REPORT_TYPE type, PHIDP_VALUE_CAPS caps, PUSHORT length, PHIDP_PREPARSED_DATA preparsed),
             (type, caps, length, preparsed))
