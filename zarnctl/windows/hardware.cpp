#include "zarnctl/hardware.h"

#include "log/service_switch.h"
#include "zarnctl/complaint.h"
#include "zarnctl/log_watch.h"

namespace zarnctl {

/// What is exchanged cannot be seen here, but the plug-in logs what failed.
class ExchangeWatch : public LogWatch {};

Hardware::Hardware(const std::string& /*machine*/, bool /*trace*/) : watch_(std::make_shared<ExchangeWatch>()) {}

Hardware::~Hardware() = default;

bool Hardware::HasOurLayer() { return false; }

bool Hardware::SeesFailures() { return IsOn(kLogSwitch); }

std::vector<std::string> Hardware::RecordMachine(const std::filesystem::path& /*file*/) {
  throw Complaint(ExitCode::WrongCommandLine, "record: Windows hands out no report descriptors");
}

std::string Hardware::Name() const { return "this computer"; }

std::vector<Panel> Hardware::Panels() const { return {}; }

std::vector<std::string> Hardware::TakeRefusals() {
  // Discovery and construction log as failures, too, what a notebook just does not have.
  *watch_ = {};
  return {};
}

std::vector<std::string> Hardware::TakeFaults(const std::string& /*device*/, const ControllerRecords& /*records*/) {
  std::vector<std::string> failures = FailuresIn(watch_->NewLines());
  *watch_ = {};
  return failures;
}

bool Hardware::Shows(const std::string& /*device*/, const ControllerRecords& /*records*/) const { return true; }

Remedies Hardware::RemediesHere() const {
  return {.switches = "'zarnctl config' shows where it is set",
          .no_hid_devices = "plug the keyboard in",
          .may_not_open = "run as administrator",
          .no_node = "plug it in again",
          .no_answer = "plug it in again",
          .no_table = "run as administrator",
          .no_record = "this is no notebook of the family; HID keyboards need none",
          .no_firmware_class = "the firmware publishes it on a notebook of the family, to administrators"};
}

std::vector<std::string> Hardware::UnreadableDevices() { return {}; }

std::chrono::milliseconds Hardware::FirmwareLatency() const { return {}; }

}  // namespace zarnctl
