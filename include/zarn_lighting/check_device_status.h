/// The exported discovery: the host's first call.
#pragma once

#include <cstdint>
#include <string>

#include "zarn_lighting/export.h"

extern "C" {

/// Tells which lighting devices the machine has, and answers their number, 0 to 3.
///
/// `deviceNames` becomes a list drawn from ZarnECGlobal, ZarnECKeyboard and ZarnHIDKeyboard, with commas between them;
/// for each name there is a pair of factories. When the HID keyboard is reported alone, `interfaceType` becomes 1,
/// `hardwareId` and `usagePageHex` its identity ("USB\VID_1209&PID_0001", "FF5A"). Otherwise the embedded controller
/// was asked: `interfaceType` becomes 3, and the two texts empty. When it then has no lighting device, the answer is 0;
/// `deviceNames` may still hold text, so read no more names than the answer counts.
///
/// Makes the HID code write to the plug-in's log, if logging is on by then, and builds the list of HID lighting
/// devices as soon as there is one. That list stays, so a keyboard that is unplugged later is still reported. Every
/// call asks everything else anew.
///
/// Call it before creating controllers. Any thread may call; while a HID keyboard is driven the call waits for the
/// report that is under way. It may take as long as the management service and the HID devices do. Throws nothing:
/// failures show in the number alone, and when memory runs out the answer is 0 and the arguments are as they were. Host
/// and plug-in share the strings, so they need the same standard library. With Microsoft's compiler they also need the
/// same runtime library, /MD, and no debug build beside a release build. What the strings hold is the host's.
ZARN_EXPORT std::int32_t CheckDeviceStatus(std::wstring& deviceNames, std::uint32_t& interfaceType,
                                           std::wstring& hardwareId, std::wstring& usagePageHex) noexcept;
}
