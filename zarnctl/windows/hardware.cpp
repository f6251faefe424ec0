#include "zarnctl/hardware.h"

#include "log/service_switch.h"
#include "zarnctl/complaint.h"
#include "zarnctl/log_watch.h"

namespace zarnctl {

/// What is exchanged cannot be seen here, but the plug-in logs what fails of it, if not all.
class FailureWatch : public LogWatch {};

Hardware::Hardware(const std::string& /*machine*/, bool /*trace*/) : watch_(std::make_shared<FailureWatch>()) {}

Hardware::~Hardware() = default;

bool Hardware::HasOurLayer() { return false; }

std::string Hardware::Doubt(const std::string& device) const {
  if (!IsOn(kLogSwitch)) return "whose log would tell what came of it, but is off: see 'zarnctl config'";
  const std::vector<std::string> lines = watch_->NewLines();
  if (lines.empty()) return "which logged nothing of it: see 'zarnctl doctor'";
  const bool tells_all = device == "ZarnHIDKeyboard" || !FailuresIn(lines).empty();
  return tells_all ? "" : "which does not tell whether the firmware took it";
}

std::vector<std::string> Hardware::RecordMachine(const std::filesystem::path& /*file*/) {
  throw Complaint(ExitCode::WrongCommandLine, "record: Windows hands out no report descriptors");
}

std::string Hardware::Name() const { return "this computer"; }

std::vector<Panel> Hardware::Panels() const { return {}; }

std::vector<std::string> Hardware::TakeRefusals() {
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
          .no_log = "",
          .no_hid_devices = "plug the keyboard in",
          .may_not_open = "run as administrator",
          .may_not_open_keys = "",
          .no_node = "plug it in again",
          .no_answer = "plug it in again",
          .no_table = "run as administrator",
          .no_record = "this is no notebook of the family; HID keyboards need none",
          .no_firmware_class = "the firmware publishes it on a notebook of the family, to administrators"};
}

void Hardware::LookAtDevices(Symptoms& /*symptoms*/) const {}

std::chrono::milliseconds Hardware::FirmwareLatency() const { return {}; }

}  // namespace zarnctl
