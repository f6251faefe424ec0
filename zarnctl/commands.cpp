#include "zarnctl/commands.h"

#include <utility>

#include "zarnctl/this_system.h"

namespace zarnctl {

Parameter DeviceWord(bool required) {
  return {.name = "DEVICE",
          .summary = "name of the device, as 'zarnctl devices' prints it, in any case",
          .required = required};
}

std::vector<Parameter> WithModeOptions(std::vector<Parameter> words, bool mode_required) {
  words.insert(
      words.end(),
      {{.name = "--mode", .value = "NAME", .summary = "name of the mode, in any case", .required = mode_required},
       {.name = "--speed", .value = "N", .summary = "speed of the effect"},
       {.name = "--brightness", .value = "N", .summary = "brightness"},
       {.name = "--direction", .value = "N", .summary = "direction of the effect"},
       {.name = "--color", .value = "RRGGBB", .summary = "colour of the mode"}});
  return words;
}

Parameter LedColors(bool required) {
  return {.name = "COLOR",
          .summary = "a colour for each LED, or one for all, as RRGGBB",
          .required = required,
          .repeated = true};
}

std::vector<Command> Commands() {
  std::vector<Command> commands{
      {.name = "devices", .summary = "list the lighting devices", .run = RunDevices},
      {.name = "show",
       .summary = "describe a device and draw its lights",
       .parameters = {DeviceWord(true)},
       .run = RunShow},
      {.name = "set",
       .summary = "choose a mode and its settings; one left out takes the plug-in's own value, and a colour is black",
       .parameters = WithModeOptions({DeviceWord(true)}, true),
       .examples = {"set ZarnECKeyboard --mode breathing --speed 7 --color ff0000"},
       .run = RunSet},
      {.name = "leds",
       .summary = "give every LED a colour, or all of them one",
       .parameters = {DeviceWord(true), LedColors(true)},
       .examples = {"leds ZarnHIDKeyboard ff8000", "leds ZarnECKeyboard ff0000 00ff00 0000ff ffffff"},
       .run = RunLeds},
      {.name = "demo", .summary = "walk through all modes of all devices", .run = RunDemo},
      {.name = "doctor",
       .summary = "tell what the lighting depends on, what is missing, and what to do",
       .run = RunDoctor},
      {.name = "config", .summary = "show what is set for the plug-in, and where", .run = RunConfig}};
  for (Command& command : ThisSystem().commands) commands.push_back(std::move(command));
  return commands;
}

std::vector<Parameter> GeneralOptions() {
  std::vector<Parameter> options = ThisSystem().options;
  options.push_back({.name = "--plugin", .value = "FILE", .summary = "lighting plug-in to load instead of our own"});
  return options;
}

}  // namespace zarnctl
