/// The switches that the lighting service keeps in the registry, below HKEY_LOCAL_MACHINE.
#pragma once

struct ServiceSwitch {
  const wchar_t* key;
  const wchar_t* value;
};

/// Turns the diagnostics log on.
inline constexpr ServiceSwitch kLogSwitch = {L"SOFTWARE\\OEM\\ZarnLightingService\\Log", L"ZarnLightingService"};
/// Lets the HID keyboard be reported beside the EC devices.
inline constexpr ServiceSwitch kHybridSwitch = {L"SOFTWARE\\OEM\\ZarnLightingService", L"HybridMode"};

/// Whether its value, as the platform reads it, is the four bytes of a 1, whatever the type. A key or value that is
/// missing, and a shorter value, is a switch that is off. Of a longer value the platform does not say what it leaves to
/// be read. Any thread may call.
bool IsOn(const ServiceSwitch& service_switch);
