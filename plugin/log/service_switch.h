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

/// True when the value is the four bytes of a 1, whatever its type. Where key or value are missing, or the value is
/// shorter, the switch is off. For a longer value the platform does not say what a reader gets. Any thread may call.
bool IsOn(const ServiceSwitch& service_switch);
