/// The switches that the lighting service keeps in the registry.
#pragma once

/// Whether the first four bytes of a value below HKEY_LOCAL_MACHINE read as 1, whatever its type. A key or value that
/// is missing, or does not fit into four bytes, is a switch that is off. Any thread may call.
bool ServiceSwitchIsOn(const wchar_t* key, const wchar_t* value);
