#include "zarnctl/hardware.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/lighting_access.h"
#include "platform/standin/hid_interfaces.h"
#include "platform/standin/instruments.h"
#include "platform/standin/machine.h"
#include "platform/standin/report_descriptor.h"
#include "platform/standin/text.h"
#include "simulator/road/notebook_machine.h"
#include "zarnctl/complaint.h"
#include "zarnctl/lights.h"
#include "zarnctl/linux/new_file.h"
#include "zarnctl/linux/record.h"
#include "zarnctl/text.h"

namespace zarnctl {

/// Follows the platform's calls for what crosses to the hardware. Any thread may call.
class FailureWatch {
 public:
  explicit FailureWatch(bool trace) : trace_(trace) {}

  void Note(const platform::JournalEntry& entry) {
    const bool hid = entry.call == "HidD_SetFeature" || entry.call == "HidD_GetFeature";
    if (!hid && entry.call != "IWbemServices::ExecMethod") return;
    const std::lock_guard lock(lock_);
    if (trace_) {
      const std::string line = (hid ? entry.call + " " : "") + entry.arguments + " -> " + entry.result;
      std::fprintf(stderr, "trace: %s\n", Harmless(line).c_str());
    }
    ++exchanges_;
    const bool failed = hid ? entry.result.starts_with("0, error ") : !entry.result.starts_with("0x00000000");
    if (!failed) return;
    std::string text = hid ? HidFailure(entry) : "the firmware refused " + entry.arguments;
    if (std::ranges::count(failures_, text) == 0) failures_.push_back(std::move(text));  // attempts are repeated
  }

  struct Seen {
    std::size_t exchanges = 0;
    std::vector<std::string> failures;
  };
  Seen Take() {
    const std::lock_guard lock(lock_);
    return {std::exchange(exchanges_, 0), std::exchange(failures_, {})};
  }

 private:
  static std::string HidFailure(const platform::JournalEntry& entry) {
    static constexpr std::pair<std::string_view, std::string_view> kReasons[] = {
        {"0, error 5", "this user may not open it"},
        {"0, error 31", "the device refused it"},
        {"0, error 121", "the device did not answer"},
        {"0, error 1167", "the device was unplugged"}};
    const auto* const known =
        std::ranges::find(kReasons, std::string_view(entry.result), [](const auto& reason) { return reason.first; });
    const std::string why(known != std::end(kReasons) ? known->second : std::string_view(entry.result).substr(3));
    const std::string device = entry.arguments.substr(0, entry.arguments.find(','));
    return device + ", " + entry.call.substr(std::string_view("HidD_").size()) + ": " + why;
  }

  const bool trace_;
  std::mutex lock_;
  std::size_t exchanges_ = 0;          // guarded by lock_
  std::vector<std::string> failures_;  // guarded by lock_
};

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".toml";
constexpr const char* kNoLog =
    "the folder and those above it must be this user's or root's, with nobody else allowed to write there";

/// The folder of an installed program, or the source tree of one that is not installed.
fs::path ProfileFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  fs::path installed = program.parent_path().parent_path() / "share" / "zarn" / "profiles";
  return fs::is_directory(installed, error) ? installed : fs::path(ZARN_PROFILE_DIR);
}

std::string ShippedProfiles() {
  std::vector<std::string> names;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(ProfileFolder(), error)) {
    if (entry.path().extension() == kExtension) names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names.empty() ? "none, " + ProfileFolder().string() + " is empty" : Alternatives(names);
}

/// A bare name is looked for among the shipped profiles first; everything else is a file.
fs::path ProfileFile(const std::string& machine) {
  fs::path given(machine);
  const bool bare = !given.has_parent_path() && given.extension() != kExtension;
  if (!bare) return given;
  fs::path shipped = ProfileFolder() / (machine + std::string(kExtension));
  std::error_code error;
  if (fs::is_regular_file(shipped, error)) return shipped;
  if (fs::is_regular_file(given, error)) return given;
  throw Complaint(ExitCode::WrongCommandLine,
                  "--machine " + machine + ": no such file or profile; the shipped profiles are " + ShippedProfiles());
}

simulator::Profile ReadProfile(const fs::path& file) {
  try {
    return simulator::LoadProfile(file);
  } catch (const simulator::ProfileError& error) {
    throw Complaint(ExitCode::Failed, error.what());
  }
}

std::shared_ptr<simulator::Notebook> OpenNotebook(const std::string& machine) {
  auto notebook = std::make_shared<simulator::Notebook>(ReadProfile(ProfileFile(machine)));
  if (!platform::UseMachine(simulator::MakeMachine(notebook))) {
    throw Complaint(ExitCode::Failed, "the notebook cannot be exchanged while the plug-in uses another one");
  }
  return notebook;
}

}  // namespace

Hardware::Hardware(const std::string& machine, bool trace)
    : notebook_(machine.empty() ? nullptr : OpenNotebook(machine)), watch_(std::make_shared<FailureWatch>(trace)) {
  platform::SetJournal([watch = watch_](const platform::JournalEntry& entry) { watch->Note(entry); });
}

Hardware::~Hardware() { platform::SetJournal({}); }

bool Hardware::HasOurLayer() { return true; }

std::string Hardware::Doubt(const std::string& /*device*/) const { return ""; }

std::vector<std::string> Hardware::RecordMachine(const fs::path& file) {
  const Recording recording = Record(*platform::CurrentMachine());
  WriteNewFile(file, recording.profile);
  return recording.omissions;
}

std::string Hardware::Name() const {
  return HasVisibleLights() ? "the notebook \"" + notebook_->profile().title + "\"" : "this computer";
}

std::vector<Panel> Hardware::Panels() const { return HasVisibleLights() ? PanelsOf(*notebook_) : std::vector<Panel>(); }

std::vector<std::string> Hardware::TakeRefusals() {
  FailureWatch::Seen seen = watch_->Take();
  return HasVisibleLights() ? FindRefusals(*notebook_) : std::move(seen.failures);
}

std::vector<std::string> Hardware::TakeFaults(const std::string& device, const ControllerRecords& records) {
  FailureWatch::Seen seen = watch_->Take();
  if (HasVisibleLights()) return FindFaults(*notebook_, device, records);
  if (seen.exchanges == 0) return {"nothing was sent to " + device + "; 'zarnctl doctor' tells why"};
  return std::move(seen.failures);
}

bool Hardware::Shows(const std::string& device, const ControllerRecords& records) const {
  return !HasVisibleLights() || zarnctl::Shows(*notebook_, device, records);
}

Remedies Hardware::RemediesHere() const {
  if (HasVisibleLights()) {
    return {.switches = "[log] and [registry] in the profile set it",
            .no_log = kNoLog,
            .no_hid_devices = "",
            .may_not_open = "",
            .may_not_open_keys = "",
            .no_node = "",
            .no_answer = "",
            .no_table = "[firmware] in the profile makes one",
            .no_record = "",
            .no_firmware_class = "[firmware] in the profile makes one, unless its instance is empty"};
  }
  std::error_code error;
  const bool has_nodes = fs::exists("/sys/class/hidraw", error);
  const bool has_table = fs::exists("/sys/firmware/dmi/tables/DMI", error);
  return {
      .switches = "'zarnctl config' shows where it is set",
      .no_log = kNoLog,
      .no_hid_devices = has_nodes ? "plug the keyboard in" : "this kernel has no hidraw: /sys/class/hidraw is missing",
      .may_not_open = "plug it in again once the package's udev rule is installed, or run as root",
      .may_not_open_keys =
          std::string("what is typed comes out of it, too, so it is root's: run as root, or let whoever "
                      "sits here use it and read every key: 'sudo install -Dm644 /dev/null ") +
          platform::kSharedKeyboards + "', then plug it in again or restart",
      .no_node = "plug it in again; a container must be given its node in /dev",
      .no_answer = "plug it in again",
      .no_table = has_table ? "run as root, to whom alone the kernel shows it"
                            : "this computer's kernel has none in /sys/firmware/dmi; HID keyboards need none",
      .no_record = "this is no notebook of the family; HID keyboards need none",
      .no_firmware_class = "it is published by Windows on the notebook itself; HID keyboards need none"};
}

void Hardware::LookAtDevices(Symptoms& symptoms) const {
  for (const platform::HidDevice& device : platform::CurrentMachine()->HidDevices()) {
    const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(device.report_descriptor);
    const std::string path = platform::ReadableUtf8(device.path);
    const std::string name = path + " (" + Hexadecimal(device.vendor, 4) + ":" + Hexadecimal(device.product, 4) + "): ";
    if (!descriptor.refusal.empty()) {
      symptoms.device_notes.push_back(name + "its report descriptor cannot be read, " + descriptor.refusal);
    }
    if (descriptor.collections.size() > platform::kMostInterfaces) {
      symptoms.device_notes.push_back(name + "it declares " + Counted(descriptor.collections.size(), "collection") +
                                      ", of which only the first " + std::to_string(platform::kMostInterfaces) +
                                      " are looked at; no keyboard has so many");
    }
    if (HasVisibleLights() || AccessTo(descriptor) != platform::LightingAccess::LightsAndKeys) continue;
    symptoms.devices_with_keys.push_back(path);
    if (platform::KeyboardsAreShared()) {
      symptoms.device_notes.push_back(name + "whoever sits at this computer can also read what is typed on it, as " +
                                      platform::kSharedKeyboards + " allows");
    }
  }
}

std::chrono::milliseconds Hardware::FirmwareLatency() const {
  return std::chrono::milliseconds(HasVisibleLights() ? notebook_->profile().firmware_latency_ms : 0);
}

}  // namespace zarnctl
