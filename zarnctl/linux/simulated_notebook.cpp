#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/standin/machine.h"
#include "simulator/notebook.h"
#include "simulator/road/notebook_machine.h"
#include "zarnctl/complaint.h"
#include "zarnctl/linux/layer_hardware.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".toml";

/// The source tree's, for a program that is not installed.
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
  std::ranges::sort(names);
  return names.empty() ? "none, " + ProfileFolder().string() + " is empty" : Alternatives(names);
}

/// A bare name is first looked for among the shipped profiles.
fs::path ProfileFile(const std::string& profile) {
  fs::path given(profile);
  const bool bare = !given.has_parent_path() && given.extension() != kExtension;
  if (!bare) return given;
  fs::path shipped = ProfileFolder() / (profile + std::string(kExtension));
  std::error_code error;
  if (fs::is_regular_file(shipped, error)) return shipped;
  if (fs::is_regular_file(given, error)) return given;
  throw Wrong("--machine " + profile + ": no such file or profile; the shipped profiles are " + ShippedProfiles());
}

std::string RefusalText(const simulator::WireRecord& record) {
  if (!record.hid_keyboard) return "the firmware refused " + record.method + ": " + record.refusal;
  return "HID keyboard " + std::to_string(*record.hid_keyboard + 1) + ", " + record.method + ": " + record.refusal;
}

class SimulatedNotebook final : public LayerHardware {
 public:
  SimulatedNotebook(simulator::Profile profile, bool trace)
      : LayerHardware(trace), notebook_(std::make_shared<simulator::Notebook>(std::move(profile))) {
    if (!platform::UseMachine(simulator::MakeMachine(notebook_))) {
      throw Complaint(ExitCode::Failed, "the notebook cannot be exchanged while the plug-in uses another one");
    }
  }

  std::string Name() const override { return "the notebook \"" + notebook_->profile().title + "\""; }

  std::vector<Panel> Panels() const override { return PanelsOf(*notebook_); }

  /// From the notebook's wire: it tells why something was refused, which the journal does not.
  Exchanges TakeExchanges(const std::string& /*device*/) override {
    const std::vector<simulator::WireRecord> wire = notebook_->TakeWire();
    Exchanges exchanges{.none = wire.empty(), .failures = TakeMissingMethods()};
    for (const simulator::WireRecord& record : wire) {
      if (!record.refusal.empty()) exchanges.failures.push_back(RefusalText(record));
    }
    return exchanges;
  }

  Remedies RemediesHere() const override {
    return {.nothing_discovered = "'zarnctl doctor' tells why",
            .switches = "[log] and [registry] in the profile set it",
            .no_log = kNoLog,
            .no_table = "[firmware] in the profile makes one",
            .no_firmware_class = "[firmware] in the profile makes one, unless its instance is empty"};
  }

 private:
  const std::shared_ptr<simulator::Notebook> notebook_;
};

}  // namespace

std::unique_ptr<Hardware> SimulateNotebook(const std::string& profile, bool trace) {
  return std::make_unique<SimulatedNotebook>(simulator::LoadProfile(ProfileFile(profile)), trace);
}

}  // namespace zarnctl
