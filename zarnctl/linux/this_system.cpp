#include "zarnctl/this_system.h"

#include "zarnctl/commands.h"
#include "zarnctl/linux/layer_hardware.h"

namespace zarnctl {

SystemFeatures ThisSystem() {
  const Parameter file{.name = "FILE", .summary = "file to write, which must not be there yet", .required = true};
  return {
      .commands = {{.name = "record",
                    .summary = "write what this machine answers as a profile",
                    .parameters = {file},
                    .examples = {"record mine.toml", "--machine mine.toml demo"},
                    .run = RunRecord},
                   {.name = "picture",
                    .summary = "draw a simulated notebook and its lights as SVG, after doing what set or leds would",
                    .parameters = WithModeOptions({file, DeviceWord(false), LedColors(false)}, false),
                    .examples = {"--machine light-bar picture lights.svg ZarnECGlobal --mode wave",
                                 "--machine four-zone picture zones.svg ZarnECKeyboard ff0000 00ff00 0000ff ffffff"},
                    .run = RunPicture}},
      .options = {
          {.name = "--machine",
           .value = "PROFILE",
           .summary = "profile of a notebook to simulate, a TOML file or a shipped name; this computer otherwise",
           .variable = "ZARN_MACHINE"},
          {.name = "--trace", .summary = "print every firmware call and HID report to stderr"}}};
}

std::unique_ptr<Hardware> OpenHardware(const TypedValues& typed) {
  const bool trace = typed.Find("--trace") != nullptr;
  const std::string* const machine = typed.Find("--machine");
  const bool simulated = machine != nullptr && !machine->empty();
  return simulated ? SimulateNotebook(*machine, trace) : UseThisComputer(trace);
}

}  // namespace zarnctl
