/// The switches that the lighting service keeps in the registry.
#pragma once

/// Whether a value below HKEY_LOCAL_MACHINE is the four bytes of a 1, whatever its type. A key or value that is
/// missing, and a value of another length, is a switch that is off. Any thread may call.
bool ServiceSwitchIsOn(const wchar_t* key, const wchar_t* value);
