#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "zarnctl/arguments.h"
#include "zarnctl/complaint.h"
#include "zarnctl/demo.h"
#include "zarnctl/description.h"
#include "zarnctl/device.h"
#include "zarnctl/drawing.h"
#include "zarnctl/lights.h"
#include "zarnctl/machine.h"
#include "zarnctl/plugin.h"
#include "zarnctl/settings.h"
#include "zarnctl/terminal.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

/// The commands over one notebook and the plug-in on top of it.
class Session {
 public:
  explicit Session(const Arguments& arguments)
      : notebook_(OpenNotebook(arguments.machine)), plugin_(arguments.plugin), trace_(arguments.trace) {
    if (trace_) TraceFirmwareCalls();
  }

  ExitCode operator()(const DevicesCommand& /*command*/) {
    for (const std::string& name : Names()) std::cout << Summary(name, Create(name).Describe()) << "\n";
    return ExitCode::Done;
  }

  ExitCode operator()(const ShowCommand& command) {
    const ControllerRecords records = Open(command.device).Describe();
    std::cout << Details(command.device, records);
    Draw(records);
    return ExitCode::Done;
  }

  ExitCode operator()(const SetCommand& command) {
    Device device = Open(command.device);
    const std::vector<ModeRecord> modes = device.Describe().mode_list;
    const std::int32_t index = FindMode(modes, command.settings.mode);
    device.SendMode(index, WithSettings(modes.at(static_cast<std::size_t>(index)), command.settings));
    return Push(device);
  }

  ExitCode operator()(const LedsCommand& command) {
    Device device = Open(command.device);
    const ControllerRecords records = device.Describe();
    const std::int32_t index = FindPerLedMode(records.mode_list);
    device.SendColors(ColorPerLed(command.colors, records.color_table.size()));
    device.SendMode(index, records.mode_list.at(static_cast<std::size_t>(index)));
    return Push(device);
  }

  ExitCode operator()(const DemoCommand& /*command*/) {
    // Traced lines would tear the drawing apart.
    const bool animated = StdoutShowsColors() && !trace_;
    for (const std::string& name : Names()) {
      Device device = Create(name);
      const ExitCode code = RunDemo(device, *notebook_, animated);
      if (code != ExitCode::Done) return code;
    }
    return ExitCode::Done;
  }

 private:
  /// Never empty.
  std::vector<std::string> Names() const {
    std::vector<std::string> names = DeviceNames(*notebook_);
    if (names.empty()) {
      throw Complaint(ExitCode::NothingThere, "no lighting device on the notebook \"" + notebook_->profile().title +
                                                  "\"; use another --machine");
    }
    return names;
  }

  Device Open(const std::string& wanted) const {
    const std::vector<std::string> names = Names();
    for (const std::string& name : names) {
      if (name == wanted) return Create(name);
    }
    throw Complaint(ExitCode::NothingThere, wanted + ": no such device; there is " + Alternatives(names));
  }

  Device Create(const std::string& name) const { return Device(plugin_.CreateDevice(name)); }

  ExitCode Push(Device& device) {
    device.Push();
    const ControllerRecords records = device.Describe();
    Draw(records);
    return Report(FindFaults(*notebook_, records)) ? ExitCode::LightsDiffer : ExitCode::Done;
  }

  void Draw(const ControllerRecords& records) const {
    const simulator::KeyboardLights lights = notebook_->Lights();
    std::cout << (StdoutShowsColors() ? Headline(lights, records.mode_list) + "\n\n" + DrawnKeyboard(lights, 0)
                                      : PlainLights(lights, records.mode_list));
  }

  std::shared_ptr<simulator::Notebook> notebook_;
  Plugin plugin_;
  bool trace_;
};

ExitCode Run(int argc, const char* const* argv) {
  try {
    const auto arguments = ReadArguments(argc, argv);
    const ExitCode code = arguments ? std::visit(Session(*arguments), arguments->command) : ExitCode::Done;
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

}  // namespace
}  // namespace zarnctl

int main(int argc, char** argv) { return static_cast<int>(zarnctl::Run(argc, argv)); }
