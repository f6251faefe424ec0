/// The lighting HID devices of the machine, and the lighting reports.
///
/// A lighting device is an interface with a vendor-defined usage page. Its attribute report 0xA1 lists the lighting
/// device ids that it serves. In the other reports the values stand back to back in a fixed order. Each device declares
/// how wide its fields are; a field that is not declared takes no room. Devices that serve the same id are taken to be
/// alike: the first one that declares a field sets its width for all.
///
/// The list of devices is built once, as soon as there is one. A report opens a closed device again by vendor, product
/// and usage, since it may be plugged in elsewhere by then. Of two devices alike in these, the first one found gets the
/// reports of both.
///
/// Threads: `g_lightingDevicesLock` serialises all lighting traffic of the process, retries and waits included; each
/// operation tells whether it takes the lock. Device errors are logged and answered, never thrown; every operation may
/// throw std::bad_alloc.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "hid/ts_hid.h"

/// One lighting device.
struct _HIDInfo : _HIDDevice {  // NOLINT(bugprone-reserved-identifier): as for its base
  struct DeviceId {
    std::uint8_t id;
  };
  using FieldKey = std::pair<std::uint8_t, std::uint16_t>;  // report id, usage

  std::map<std::uint8_t, DeviceId> deviceIds;  // the lighting device ids it serves
  std::map<FieldKey, HIDP_VALUE_CAPS> fields;  // its feature value fields
};

/// What a lighting device says of itself; a field that it does not declare is 0. Numbers in names are usages of fields
/// whose meaning is not known.
struct LightingDeviceBaseInfo {
  std::uint8_t deviceId = 0;
  std::uint8_t info34 = 0;
  std::uint8_t info32 = 0;
  std::uint16_t zoneCount = 0;
  std::uint16_t info33 = 0;
  std::uint32_t effectMask = 0;  // one bit per effect
};

/// Written under `g_lightingDevicesLock`. Its destruction closes no handle.
extern std::vector<_HIDInfo> g_lightingDevices;
extern std::mutex g_lightingDevicesLock;

namespace zarn::WRV520::Lighting {

/// The top-level usage page of every lighting device.
inline constexpr std::uint16_t kLightingUsagePage = 0xFF5A;

/// The lighting device id of the keyboard.
inline constexpr std::uint8_t kKeyboardId = 0x21;

/// The lighting feature reports.
inline constexpr std::uint8_t kAttributeReport = 0xA1;
inline constexpr std::uint8_t kBaseInfoRequest = 0xA2;
inline constexpr std::uint8_t kBaseInfoReply = 0xA3;
inline constexpr std::uint8_t kUpdateReport = 0xA4;

class LightingHID {
 public:
  /// Rebuilds `g_lightingDevices` from the devices that are present, each with an open handle, and copies the list to
  /// `devices`, unless they are the same. The list owns the handles, in copies too; close them before you rebuild it.
  /// Takes the lock.
  static void GetLightingDeviceList(std::vector<_HIDInfo>& devices);
  /// Reads the lighting device ids that `device` serves. For the building of the list, under the lock.
  static bool GetLightingDeviceAttributeReport(_HIDInfo& device);

  /// The width of a field in bytes, from the first listed device that serves `device_id` and declares the field.
  /// `width` is written on success alone. Takes no lock: the report operations ask while they hold it.
  static bool GetFieldSize(std::uint8_t device_id, std::uint8_t report_id, std::uint8_t usage, std::uint8_t& width);

  /// Finds the first listed device that serves the keyboard. `device` is written on success alone; the list owns its
  /// handle. Builds the list if it is empty, else asks no device: an unplugged one is still found. Takes the lock.
  static bool FindLightingDevice(_HIDInfo& device);
  /// The handle of a device, opened anew when it is closed; INVALID_HANDLE_VALUE when that fails. The caller keeps the
  /// handle in the list. Takes no lock.
  static HANDLE OpenLightingDevice(const _HIDDevice& device);
  /// Closes the handles that listed devices have open. Takes the lock.
  static void CloseLightingDevices();

  /// Asks the listed devices that serve `device_id` in turn, up to five times each, until one answers. False, with
  /// `info` untouched, when none does; false, with `info` all zero, when one answers for another id.
  /// Takes the lock, for up to 5 x (two exchanges + 40 ms) per device.
  static bool GetLightingDeviceBaseInfo(std::uint8_t device_id, LightingDeviceBaseInfo& info);
  /// Sends an update to every listed device that serves `device_id`, with up to five attempts each. Takes the lock, for
  /// up to 5 x (an exchange + 20 ms) per device. `zone_mask` has a bit for each zone that the update is for.
  static void SetLightingDeviceUpdateReport(std::uint8_t device_id, std::uint8_t mode, std::uint8_t speed,
                                            std::uint8_t direction, std::uint8_t brightness, std::uint8_t red,
                                            std::uint8_t green, std::uint8_t blue, std::uint16_t zone_mask);
};

}  // namespace zarn::WRV520::Lighting
