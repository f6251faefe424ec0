#include "zarnctl/session.h"

#include <iostream>

#include "zarnctl/checked.h"
#include "zarnctl/description.h"
#include "zarnctl/drawing.h"
#include "zarnctl/terminal.h"
#include "zarnctl/text.h"

namespace zarnctl {

using zarn::host::Device;
using zarn::host::Discovery;
using zarn::host::Plugin;

const Plugin& Session::LoadedPlugin() {
  if (plugin_) return *plugin_;
  // Without a path the loader searches for the name, beside this program first.
  auto loaded = Plugin::Load(plugin_file_.empty() ? ZARN_LIGHTING_NAME : std::filesystem::absolute(plugin_file_));
  if (!loaded) {
    throw Complaint(ExitCode::Failed, std::string("the plug-in cannot be loaded (use --plugin FILE): ") +
                                          ComplaintOf(loaded.error()).what());
  }
  return plugin_.emplace(std::move(*loaded));
}

const Discovery& Session::Discovered() {
  if (!discovery_) discovery_ = Checked(LoadedPlugin().Discover());
  return *discovery_;
}

const std::vector<std::string>& Session::Names() {
  if (Discovered().names.empty()) {
    Tell(hardware_.TakeRefusals());
    const Remedies remedies = hardware_.RemediesHere();
    std::string lights;
    for (const Panel& panel : hardware_.Panels()) lights += (lights.empty() ? "" : ", ") + panel.name;
    throw Complaint(ExitCode::NothingThere, "discovery reports no lighting device on " + hardware_.Name() +
                                                (lights.empty() ? "" : " (" + lights + ")") + "; " +
                                                remedies.nothing_discovered + remedies.hidden);
  }
  return Discovered().names;
}

const std::string& Session::FindName(const std::string& wanted) {
  const std::vector<std::string>& names = Names();
  for (const std::string& name : names) {
    if (EqualWithoutCase(name, wanted)) return name;
  }
  throw Complaint(ExitCode::NothingThere,
                  wanted + ": no such device; there is " + Alternatives(names) + hardware_.RemediesHere().hidden);
}

Device Session::Create(const std::string& name) {
  Device device = Checked(LoadedPlugin().Create(name));
  refused_ = Tell(hardware_.TakeRefusals()) || refused_;
  return device;
}

ExitCode Session::Push(Device& device, const std::string& name, bool quietly) {
  Check(device.WriteMode());
  const ControllerRecords records = Describe(device);
  const ModeRecord& mode = records.mode_list.at(static_cast<std::size_t>(records.current_mode));
  const bool sends_nothing = mode.color_source == ColorSource::PerLedColors && !LightsLeds(name);
  Exchanges exchanges = hardware_.TakeExchanges(name);
  if (exchanges.none && !sends_nothing && exchanges.failures.empty()) {
    exchanges.failures = {"nothing was sent to " + name + "; 'zarnctl doctor' tells why"};
  }
  if (!quietly && hardware_.Panels().empty()) {
    std::cout << name << ": " << mode.label
              << (exchanges.doubt.empty() ? "" : ", handed to the plug-in, " + exchanges.doubt) << "\n";
  }
  if (!quietly) Draw(records);
  if (sends_nothing) Complain(mode.label + ": " + name + " has no colours per LED, the lights stay as they were");
  return Tell(exchanges.failures) ? ExitCode::Refused : ExitCode::Done;
}

bool Session::Tell(const std::vector<std::string>& failures) {
  for (const std::string& line : failures) {
    if (told_.insert(line).second) Complain(line);
  }
  return !failures.empty();
}

void Session::Draw(const ControllerRecords& records) const {
  const std::vector<Panel> panels = hardware_.Panels();
  std::cout << (StdoutShowsColors() ? DrawnLights(panels, records.mode_list, 0)
                                    : PlainLights(panels, records.mode_list));
}

}  // namespace zarnctl
