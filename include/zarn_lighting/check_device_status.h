/// The exported discovery: the host's first call.
#pragma once

#include <cstdint>
#include <string>

#include "zarn_lighting/export.h"

extern "C" {

/// Tells which lighting devices the machine has, and answers their number, 0 to 3.
///
/// `deviceNames` becomes a list out of ZarnECGlobal, ZarnECKeyboard and ZarnHIDKeyboard, with commas between them. Each
/// name has a pair of factories. With a HID keyboard alone, `interfaceType` becomes 1, `hardwareId` and `usagePageHex`
/// its identity ("USB\VID_1209&PID_0001", "FF5A"). Otherwise the embedded controller was asked: `interfaceType` becomes
/// 3, and the two texts empty. With an answer of 0, `deviceNames` may hold text: read no more names than are counted.
///
/// The list of HID lighting devices stays once it has one, so a keyboard that is unplugged later is still reported.
/// Every call asks everything else anew. From this call on the HID code writes to the plug-in's log, if that is on.
///
/// Call it before creating controllers, on any thread. It waits for the management service, the HID devices and a HID
/// report under way. It throws nothing: failures show in the number alone. When memory runs out the answer is 0 and the
/// arguments are as they were. The host owns what the strings hold. Host and plug-in share the strings, so they need
/// the same standard library. With Microsoft's compiler they also need the same runtime library, /MD, and no debug
/// build beside a release build.
ZARN_EXPORT std::int32_t CheckDeviceStatus(std::wstring& deviceNames, std::uint32_t& interfaceType,
                                           std::wstring& hardwareId, std::wstring& usagePageHex) noexcept;
}
