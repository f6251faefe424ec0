/// The HID devices of a Linux system: its hidraw nodes, as sysfs describes them.
///
/// Finding devices opens none: while one device keeps a request waiting, the kernel lets nobody open another. The first
/// exchange of a connection opens the node. A device is known by its place in sysfs, which no later plugging gets
/// again. So a connection never reaches another device that got the same node.
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

/// Where the system keeps hidraw nodes and what it tells of them.
struct HidrawPlaces {
  std::filesystem::path sysfs = "/sys/class/hidraw";
  std::filesystem::path nodes = "/dev";
};

/// Devices that have cost their hosts too much time: they hang, or refuse one attempt after another. For a while they
/// are not asked and cannot be opened, or a host would wait for each of its attempts. A device that is plugged in again
/// counts as another one. Any thread may call.
class RestingDevices {
 public:
  using Clock = std::chrono::steady_clock;
  /// A device that owes this much time rests. The debt shrinks by as much in kRest.
  static constexpr std::chrono::seconds kPatience{2};
  /// Enough for a host to finish a push and a teardown while several devices hang one after another.
  static constexpr std::chrono::seconds kRest{60};

  /// Books an exchange of a device with so many interfaces. A failed one costs its time and that of another attempt. A
  /// slow one costs its time above that of a sound device's interface.
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

/// In the order of their numbers. Leaves out what sysfs does not tell completely: a device that is being unplugged.
std::vector<HidrawDevice> FindHidrawDevices(const HidrawPlaces& places);

/// Opens the device at `path`: ERROR_FILE_NOT_FOUND when it is not there, ERROR_ACCESS_DENIED when this process may not
/// open its node, ERROR_SEM_TIMEOUT while it rests.
OpenedHidDevice OpenHidrawDevice(const HidrawPlaces& places, const std::wstring& path,
                                 const std::shared_ptr<RestingDevices>& resting);

}  // namespace platform
