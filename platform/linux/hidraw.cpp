#include "platform/linux/hidraw.h"

#include <fcntl.h>
#include <linux/hidraw.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <optional>

#include "platform/linux/read_file.h"
#include "platform/standin/hid_api.h"
#include "platform/standin/hid_interfaces.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using Clock = RestingDevices::Clock;
using std::chrono::milliseconds;

constexpr std::string_view kNodePrefix = "hidraw";
/// After a failed exchange hosts pause 20 ms and open the device anew, which takes a USB keyboard 50 ms.
constexpr milliseconds kRetry{70};
/// A sound device needs no longer for all its interfaces together; hosts ask them one after the other.
constexpr milliseconds kSlow{100};

std::optional<unsigned> Number(std::string_view text, int base) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size() && !text.empty() ? std::optional(number)
                                                                                   : std::nullopt;
}

/// Vendor and product out of the line "HID_ID=0003:00001209:00000001": bus, vendor, product.
std::optional<std::pair<std::uint16_t, std::uint16_t>> IdentityIn(std::string_view uevent) {
  constexpr std::string_view kKey = "HID_ID=";
  const std::size_t begin = uevent.starts_with(kKey) ? 0 : uevent.find("\n" + std::string(kKey)) + 1;
  if (begin == 0 && !uevent.starts_with(kKey)) return std::nullopt;
  const std::string_view line = uevent.substr(begin, uevent.find('\n', begin) - begin);
  const std::size_t product = line.rfind(':');
  const std::size_t vendor = line.rfind(':', product - 1);
  if (product == std::string_view::npos || vendor == std::string_view::npos) return std::nullopt;
  const auto vendor_id = Number(line.substr(vendor + 1, product - vendor - 1), 16);
  const auto product_id = Number(line.substr(product + 1), 16);
  if (!vendor_id || !product_id || *vendor_id > 0xFFFF || *product_id > 0xFFFF) return std::nullopt;
  return std::pair(static_cast<std::uint16_t>(*vendor_id), static_cast<std::uint16_t>(*product_id));
}

/// Where the node's device stands in sysfs; empty when it is gone.
std::string IdentityOf(const HidrawPlaces& places, const std::string& name) {
  std::error_code error;
  return fs::read_symlink(places.sysfs / name, error).string();
}

std::optional<HidrawDevice> ReadDevice(const HidrawPlaces& places, const std::string& name) {
  HidrawDevice found;
  found.node = places.nodes / name;
  found.identity = IdentityOf(places, name);
  const auto uevent = ReadFile(places.sysfs / name / "device/uevent");
  auto descriptor = ReadFile(places.sysfs / name / "device/report_descriptor");
  const auto ids = uevent ? IdentityIn(std::string(uevent->begin(), uevent->end())) : std::nullopt;
  if (found.identity.empty() || !ids || !descriptor || descriptor->empty()) return std::nullopt;
  found.device = {WideFromUtf8(found.node.string()), ids->first, ids->second, 0, *std::move(descriptor)};
  return found;
}

LONG ErrorOf(int code) {
  switch (code) {
    case EACCES:
    case EPERM:
      return ERROR_ACCESS_DENIED;
    case ENODEV:
    case ENOENT:
    case ENXIO:
      return ERROR_DEVICE_NOT_CONNECTED;
    case ETIMEDOUT:
      return ERROR_SEM_TIMEOUT;
    case ENOMEM:
      return ERROR_NOT_ENOUGH_MEMORY;
    default:
      return ERROR_GEN_FAILURE;
  }
}

class HidrawConnection final : public HidConnection {
 public:
  HidrawConnection(HidrawPlaces places, HidrawDevice device, std::shared_ptr<RestingDevices> resting)
      : places_(std::move(places)), device_(std::move(device)), resting_(std::move(resting)) {}

  LONG SetFeature(std::span<const std::uint8_t> report) override {
    Bytes copy(report.begin(), report.end());  // the kernel's interface takes no constant one
    return Exchange([&copy](int fd) { return ioctl(fd, HIDIOCSFEATURE(copy.size()), copy.data()); });
  }

  LONG GetFeature(std::span<std::uint8_t> report) override {
    Bytes answer(report.size());
    answer.front() = report.front();
    return Exchange([&](int fd) {
      const int received = ioctl(fd, HIDIOCGFEATURE(answer.size()), answer.data());
      if (received < 0) return received;
      // A driver hands on what the device says, even nothing or another report.
      if (received < 1 || answer.front() != report.front()) {
        errno = EIO;
        return -1;
      }
      std::copy_n(answer.begin(), received, report.begin());
      return received;
    });
  }

 private:
  template <typename Call>
  LONG Exchange(const Call& call) {
    if (resting_->Contains(device_.identity)) return IsPresent() ? ERROR_SEM_TIMEOUT : ERROR_DEVICE_NOT_CONNECTED;
    int code = Open();
    // Opening may wait for another device, which says nothing about this one.
    const Clock::time_point began = Clock::now();
    if (code == 0 && call(file_.Get()) < 0) code = errno;
    const Clock::duration time = Clock::now() - began;
    resting_->Book(device_.identity, time, code != 0, time > kSlow / kMostInterfaces ? Interfaces() : 1);
    if (code == 0) return ERROR_SUCCESS;
    if (!IsPresent()) return ERROR_DEVICE_NOT_CONNECTED;
    // Drivers have different errors for their time limit of 5 s.
    return time < RestingDevices::kPatience ? ErrorOf(code) : ERROR_SEM_TIMEOUT;
  }

  /// Opens the node for the first exchange: 0, or the code of the failure.
  int Open() {
    const std::lock_guard lock(lock_);
    if (file_.Get() >= 0) return 0;
    if (!IsPresent()) return ENODEV;
    // Reading rights are enough for feature reports in both directions.
    if (const int code = file_.Open(device_.node, O_RDONLY)) return code;
    // Asked again: before the opening the node could have gone to another device.
    if (IsPresent()) return 0;
    file_.Close();
    return ENODEV;
  }

  std::size_t Interfaces() const { return ParseReportDescriptor(device_.device.report_descriptor).collections.size(); }

  bool IsPresent() const { return IdentityOf(places_, device_.node.filename()) == device_.identity; }

  const HidrawPlaces places_;
  const HidrawDevice device_;
  const std::shared_ptr<RestingDevices> resting_;
  std::mutex lock_;
  FileDescriptor file_;  // opened under lock_, once
};

}  // namespace

void RestingDevices::Book(const std::string& device, Clock::duration time, bool failed, std::size_t interfaces) {
  const Clock::duration needed = Clock::duration(kSlow) / std::clamp<std::size_t>(interfaces, 1, kMostInterfaces);
  const Clock::duration cost = failed ? time + kRetry : std::max(time - needed, Clock::duration());
  const Clock::time_point now = Clock::now();
  const std::lock_guard lock(lock_);
  // Accounts are closed kRest after the last booking, so those of unplugged devices go, too.
  std::erase_if(accounts_, [now](const auto& entry) { return now - entry.second.booked >= kRest; });
  Account& account = accounts_.try_emplace(device, Account{{}, now}).first->second;
  account.debt += cost - (now - account.booked) * kPatience.count() / kRest.count();
  account.booked = now;
  if (account.debt <= Clock::duration()) accounts_.erase(device);
}

bool RestingDevices::Contains(const std::string& device) {
  const std::lock_guard lock(lock_);
  const auto found = accounts_.find(device);
  return found != accounts_.end() && found->second.debt >= kPatience && Clock::now() - found->second.booked < kRest;
}

std::vector<HidrawDevice> FindHidrawDevices(const HidrawPlaces& places) {
  std::map<unsigned, std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(places.sysfs, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = entry->path().filename();
    if (!name.starts_with(kNodePrefix)) continue;
    if (const auto number = Number(std::string_view(name).substr(kNodePrefix.size()), 10)) names[*number] = name;
  }
  std::vector<HidrawDevice> devices;
  for (const auto& [number, name] : names) {
    if (auto device = ReadDevice(places, name)) devices.push_back(*std::move(device));
  }
  return devices;
}

OpenedHidDevice OpenHidrawDevice(const HidrawPlaces& places, const std::wstring& path,
                                 const std::shared_ptr<RestingDevices>& resting) {
  const fs::path node = ReadableUtf8(path);
  if (node.parent_path() != places.nodes) return {};
  // Asked first, since hosts look for a device again and again.
  if (resting->Contains(IdentityOf(places, node.filename()))) return {ERROR_SEM_TIMEOUT, {}, nullptr};
  auto found = ReadDevice(places, node.filename());
  if (!found) return {};
  if (faccessat(AT_FDCWD, node.c_str(), R_OK, AT_EACCESS) != 0) {
    return {errno == ENOENT ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED, {}, nullptr};
  }
  HidDevice device = found->device;
  return {ERROR_SUCCESS, std::move(device), std::make_shared<HidrawConnection>(places, *std::move(found), resting)};
}

}  // namespace platform
