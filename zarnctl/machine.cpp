#include "zarnctl/machine.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/portable/instruments.h"
#include "platform/portable/machine.h"
#include "simulator/notebook_machine.h"
#include "zarnctl/complaint.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".toml";

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

}  // namespace

std::shared_ptr<simulator::Notebook> OpenNotebook(const std::string& machine) {
  if (machine.empty()) {
    throw Complaint(
        ExitCode::NothingThere,
        "nothing to light on this computer: use --machine with a profile's file or name, " + ShippedProfiles());
  }
  auto notebook = std::make_shared<simulator::Notebook>(ReadProfile(ProfileFile(machine)));
  if (!platform::UseMachine(simulator::MakeMachine(notebook))) {
    throw Complaint(ExitCode::Failed, "the notebook cannot be exchanged while the plug-in uses another one");
  }
  return notebook;
}

void TraceExchanges() {
  platform::SetJournal([](const platform::JournalEntry& entry) {
    const bool hid = entry.call == "HidD_SetFeature" || entry.call == "HidD_GetFeature";
    if (!hid && entry.call != "IWbemServices::ExecMethod") return;
    const std::string name = hid ? entry.call + " " : "";
    std::fprintf(stderr, "trace: %s%s -> %s\n", name.c_str(), entry.arguments.c_str(), entry.result.c_str());
  });
}

}  // namespace zarnctl
