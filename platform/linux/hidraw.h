/// The HID devices of a Linux system: its hidraw nodes, as sysfs describes them.
///
/// Finding devices opens none: while one device keeps a request waiting, the kernel lets nobody open another. A node is
/// opened by the first exchange of a connection, and its device is known by its place in sysfs, which no later plugging
/// has again; so a connection never reaches another device that was given the same node.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/standin/machine.h"

namespace platform {

/// Where the system keeps them.
struct HidrawPlaces {
  std::filesystem::path sysfs = "/sys/class/hidraw";
  std::filesystem::path nodes = "/dev";
};

/// Devices that have cost their hosts too much time: they hang, or refuse one attempt after another. For a while they
/// are not asked again and cannot be opened, or a host would wait for each of its attempts. A device that is plugged in
/// again is another one, and asked at once. Any thread may call.
class RestingDevices {
 public:
  using Clock = std::chrono::steady_clock;
  /// A device that owes this much time rests. What it owes shrinks by as much in kRest.
  static constexpr std::chrono::seconds kPatience{2};
  /// Long enough for a host to be done with a push and a teardown while several devices hang one after another.
  static constexpr std::chrono::seconds kRest{60};

  /// Books an exchange. A failed one costs its time and that of another attempt. A slow one costs what it took beyond a
  /// sound device's share for one of so many interfaces.
  void Book(const std::string& device, Clock::duration time, bool failed, std::size_t interfaces = 1);
  bool Contains(const std::string& device);

 private:
  struct Account {
    Clock::duration debt{};
    Clock::time_point booked;
  };

  std::mutex lock_;
  std::map<std::string, Account> accounts_;  // guarded by lock_; of devices in debt
};

/// A node and its device.
struct HidrawDevice {
  std::filesystem::path node;  // "/dev/hidraw0"
  std::string identity;        // its place in sysfs
  HidDevice device;            // the path is the node's
};

/// In the order of their numbers. What sysfs does not tell completely, as of a device that is just being unplugged, is
/// left out.
std::vector<HidrawDevice> FindHidrawDevices(const HidrawPlaces& places);

/// Opens the device at `path`: ERROR_FILE_NOT_FOUND when it is not there, ERROR_ACCESS_DENIED when this process may not
/// open its node, ERROR_SEM_TIMEOUT while it rests.
OpenedHidDevice OpenHidrawDevice(const HidrawPlaces& places, const std::wstring& path,
                                 const std::shared_ptr<RestingDevices>& resting);

}  // namespace platform
