#include "zarnctl/session.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "zarn_lighting/host.h"
#include "zarnctl/arguments.h"
#include "zarnctl/checked.h"
#include "zarnctl/config.h"
#include "zarnctl/demo.h"
#include "zarnctl/description.h"
#include "zarnctl/doctor.h"
#include "zarnctl/drawing.h"
#include "zarnctl/hardware.h"
#include "zarnctl/lights.h"
#include "zarnctl/log_watch.h"
#include "zarnctl/mode_settings.h"
#include "zarnctl/panel.h"
#include "zarnctl/terminal.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using zarn::host::Device;
using zarn::host::Discovery;
using zarn::host::Plugin;

/// The commands over some hardware and the plug-in on top of it, which is loaded and asked by the first that needs it.
class Session {
 public:
  explicit Session(const Arguments& arguments)
      : trace_(arguments.trace), hardware_(arguments.machine, trace_), plugin_file_(arguments.plugin) {
    if (!hardware_.HasVisibleLights()) settings_are_sound_ = !Report(ComplaintsAboutSettings());
  }

  /// Runs one. What was refused or not answered on the way makes it fail even if nothing else does.
  ExitCode Run(const Command& command) {
    const ExitCode code = std::visit(*this, command);
    return code == ExitCode::Done && refused_ ? ExitCode::LightsDiffer : code;
  }

  ExitCode operator()(const DevicesCommand& /*command*/) {
    for (const std::string& name : Names()) std::cout << Summary(name, Describe(Create(name))) << "\n";
    const Discovery& discovery = Discovered();
    std::cout << "interface type " << discovery.interface_type;
    if (!discovery.hardware_id.empty()) {
      std::cout << ", hardware id " << discovery.hardware_id << ", usage page " << discovery.usage_page;
    }
    std::cout << "\n";
    return ExitCode::Done;
  }

  ExitCode operator()(const ShowCommand& command) {
    const std::string& name = FindName(command.device);
    const ControllerRecords records = Describe(Create(name));
    std::cout << Details(name, records);
    Draw(records);
    return ExitCode::Done;
  }

  ExitCode operator()(const SetCommand& command) {
    const std::string& name = FindName(command.device);
    Device device = Create(name);
    const std::vector<ModeRecord> modes = Describe(device).mode_list;
    const std::int32_t index = FindMode(modes, command.settings.mode);
    const ModeRecord& mode = modes.at(static_cast<std::size_t>(index));
    Check(device.SetMode(index, WithSettings(mode, command.settings)));
    const bool shows_nothing = mode.color_source == ColorSource::PerLedColors && !LightsLeds(name);
    return shows_nothing ? PushNothing(device, name, mode) : Push(device, name);
  }

  ExitCode operator()(const LedsCommand& command) {
    const std::string& name = FindName(command.device);
    Device device = Create(name);
    if (!LightsLeds(name)) {
      throw Complaint(ExitCode::WrongCommandLine, "leds: " + name + " has no colours per LED; use 'zarnctl set'");
    }
    const ControllerRecords records = Describe(device);
    const std::int32_t index = FindPerLedMode(records.mode_list);
    Check(device.SetColors(ColorPerLed(command.colors, records.color_table.size())));
    Check(device.SetMode(index, records.mode_list.at(static_cast<std::size_t>(index))));
    return Push(device, name);
  }

  ExitCode operator()(const DoctorCommand& /*command*/) {
    Symptoms symptoms;
    const LogWatch log;
    try {
      symptoms.discovered = Discovered().names;
    } catch (const Complaint& complaint) {
      std::cout << LineOf({Finding::Kind::Missing, complaint.what(), ""}) << "\n";
    }
    symptoms.log = log.NewLines();
    hardware_.LookAtDevices(symptoms);
    for (const Finding& finding : Examine(symptoms, hardware_.RemediesHere())) std::cout << LineOf(finding) << "\n";
    hardware_.TakeRefusals();  // the findings have told of them
    return symptoms.discovered.empty() ? ExitCode::NothingThere : ExitCode::Done;
  }

  ExitCode operator()(const ConfigCommand& /*command*/) const {
    std::cout << Config() << (hardware_.HasVisibleLights() ? "" : SettingsPlaces());
    return settings_are_sound_ ? ExitCode::Done : ExitCode::Failed;
  }

  ExitCode operator()(const RecordCommand& command) {
    const std::vector<std::string> omissions = Hardware::RecordMachine(command.file);
    hardware_.TakeRefusals();  // the record tells what did not answer
    std::cout << "written; 'zarnctl --machine " << Harmless(command.file.string()) << " demo' plays it back\n";
    return Report(omissions) ? ExitCode::LightsDiffer : ExitCode::Done;
  }

  ExitCode operator()(const DemoCommand& /*command*/) {
    // Traced lines would tear the drawing apart.
    const bool animated = StdoutShowsColors() && !trace_;
    const std::vector<std::string> names = Names();
    for (const std::string& name : names) {
      Device device = Create(name);
      const ExitCode code = RunDemo(device, name, hardware_, animated ? names.size() : 0);
      if (code != ExitCode::Done) return code;
    }
    return ExitCode::Done;
  }

 private:
  const Plugin& LoadedPlugin() {
    if (plugin_) return *plugin_;
    // Without a path the loader searches for the name, beside this program first.
    auto loaded = Plugin::Load(plugin_file_.empty() ? ZARN_LIGHTING_NAME : std::filesystem::absolute(plugin_file_));
    if (!loaded) {
      throw Complaint(ExitCode::Failed, std::string("the plug-in cannot be loaded (use --plugin FILE): ") +
                                            ComplaintOf(loaded.error()).what());
    }
    return plugin_.emplace(std::move(*loaded));
  }

  const Discovery& Discovered() {
    if (!discovery_) discovery_ = Checked(LoadedPlugin().Discover());
    return *discovery_;
  }

  /// Never empty.
  const std::vector<std::string>& Names() {
    if (Discovered().names.empty()) {
      Report(hardware_.TakeRefusals());
      std::string lights;
      for (const Panel& panel : hardware_.Panels()) lights += (lights.empty() ? "" : ", ") + panel.name;
      throw Complaint(ExitCode::NothingThere,
                      "discovery reports no lighting device on " + hardware_.Name() +
                          (lights.empty() ? "" : " (" + lights + ")") + "; 'zarnctl doctor' tells why" +
                          (Hardware::HasOurLayer() ? ", --machine drives a simulated notebook" : ""));
    }
    return Discovered().names;
  }

  /// The device's own name for one that is given in any case.
  const std::string& FindName(const std::string& wanted) {
    const std::vector<std::string>& names = Names();
    for (const std::string& name : names) {
      if (EqualWithoutCase(name, wanted)) return name;
    }
    throw Complaint(ExitCode::NothingThere, wanted + ": no such device; there is " + Alternatives(names));
  }

  Device Create(const std::string& name) {
    Device device = Checked(LoadedPlugin().Create(name));
    // For what it could not be asked it shows less than it might.
    if (Report(hardware_.TakeRefusals())) refused_ = true;
    return device;
  }

  ExitCode Push(Device& device, const std::string& name) {
    Check(device.WriteMode());
    const ControllerRecords records = Describe(device);
    if (!hardware_.HasVisibleLights()) {
      const std::string doubt = hardware_.Doubt(name);
      std::cout << name << ": " << records.mode_list.at(static_cast<std::size_t>(records.current_mode)).label
                << (doubt.empty() ? "" : ", handed to the plug-in, " + doubt) << "\n";
    }
    Draw(records);
    return Report(hardware_.TakeFaults(name, records)) ? ExitCode::LightsDiffer : ExitCode::Done;
  }

  /// For a mode that the device brings to no light.
  ExitCode PushNothing(Device& device, const std::string& name, const ModeRecord& mode) {
    const std::vector<Panel> before = hardware_.Panels();
    const ExitCode code = Push(device, name);
    Complain(mode.label + ": " + name + " has no colours per LED, the lights stay as they were");
    if (hardware_.Panels() == before) return code;
    Complain(mode.label + " changed the lights");
    return ExitCode::LightsDiffer;
  }

  void Draw(const ControllerRecords& records) const {
    const std::vector<Panel> panels = hardware_.Panels();
    std::cout << (StdoutShowsColors() ? DrawnLights(panels, records.mode_list, 0)
                                      : PlainLights(panels, records.mode_list));
  }

  bool trace_;
  Hardware hardware_;
  std::filesystem::path plugin_file_;
  std::optional<Plugin> plugin_;
  std::optional<Discovery> discovery_;
  bool settings_are_sound_ = true;
  bool refused_ = false;
};

}  // namespace

ExitCode Run(std::vector<std::string> words) {
  try {
    const auto arguments = ReadArguments(std::move(words));
    const ExitCode code = arguments ? Session(*arguments).Run(arguments->command) : ExitCode::Done;
    if (!std::cout.flush()) throw Complaint(ExitCode::Failed, "the output cannot be written");
    return code;
  } catch (const Complaint& complaint) {
    Complain(complaint.what());
    return complaint.code();
  } catch (const std::exception& error) {
    Complain(error.what());
    return ExitCode::Failed;
  }
}

}  // namespace zarnctl
