#include "zarnctl/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

#include "zarnctl/complaint.h"
#include "zarnctl/hardware.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

constexpr const char* kSeeHelp = "; see 'zarnctl --help'";
constexpr const char* kFooter =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the profile, a settings file, the plug-in or the output failed\n"
    "  2  wrong command line; nothing was sent\n"
    "  3  no such device, or nothing to light\n"
    "  4  firmware or keyboard refused, the lights did not follow, or a record lacks something";
constexpr const char* kFooterWithoutLayer =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the plug-in or the output failed\n"
    "  2  wrong command line; nothing was sent\n"
    "  3  no such device, or nothing to light\n"
    "  4  the plug-in logged that firmware or keyboard refused, which it does not do in all cases\n"
    "\n"
    "Here it drives this computer alone: to simulate notebooks (--machine), to trace exchanges (--trace) and to "
    "record\n"
    "machines (record) is for zarnctl on Linux.";

/// The values of options as they were typed; they are read when all of them are known.
struct Typed {
  std::string device;
  std::string file;
  std::string plugin;
  std::string mode;
  std::optional<std::string> speed;
  std::optional<std::string> brightness;
  std::optional<std::string> direction;
  std::optional<std::string> color;
  std::vector<std::string> led_colors;
};

class CommandLine {
 public:
  CommandLine() {
    app_.set_version_flag("--version", "zarnctl " ZARN_VERSION);
    app_.footer(Hardware::HasOurLayer() ? kFooter : kFooterWithoutLayer);
    app_.fallthrough();
    app_.require_subcommand(1);
    if (Hardware::HasOurLayer()) AddLayerOptions();
    app_.add_option("--plugin", typed_.plugin, "lighting plug-in to load instead of our own")->type_name("FILE");

    // After the application's own settings, which commands take over when they are added.
    app_.add_subcommand("devices", "list the lighting devices");
    AddWithDevice("show", "describe a device and draw its lights");
    CLI::App& set = AddWithDevice("set", "choose a mode and its settings");
    set.add_option("--mode", typed_.mode, "name of the mode, in any case")->required();
    set.add_option("--speed", typed_.speed, "speed of the effect")->type_name("N");
    set.add_option("--brightness", typed_.brightness, "brightness")->type_name("N");
    set.add_option("--direction", typed_.direction, "direction of the effect")->type_name("N");
    set.add_option("--color", typed_.color, "colour of the mode")->type_name("RRGGBB");
    CLI::App& leds = AddWithDevice("leds", "give every LED a colour, or all of them one");
    leds.add_option("COLOR", typed_.led_colors, "a colour for each LED, or one for all")
        ->required()
        ->type_name("RRGGBB");
    app_.add_subcommand("demo", "walk through all modes of all devices");
    app_.add_subcommand("doctor", "tell what discovery depends on, what is missing, and what to do");
    app_.add_subcommand("config", "show what is set, and where");
    if (!Hardware::HasOurLayer()) return;
    app_.add_subcommand("record", "write what this machine answers as a profile")
        ->add_option("FILE", typed_.file, "file to write, which must not be there yet")
        ->required()
        ->type_name("");
  }

  std::optional<Arguments> Read(std::vector<std::string> words) {
    try {
      std::ranges::reverse(words);  // it takes them from the end
      app_.parse(std::move(words));
    } catch (const CLI::Success& help_or_version) {
      app_.exit(help_or_version);
      return std::nullopt;
    } catch (const CLI::RequiredError& error) {
      const bool without_command = app_.get_subcommands().empty();
      throw Complaint(ExitCode::WrongCommandLine, without_command ? NoCommand() : Explained(error));
    } catch (const CLI::ArgumentMismatch& error) {
      throw Complaint(ExitCode::WrongCommandLine, Mismatch(error));
    } catch (const CLI::ExtrasError&) {
      throw Complaint(ExitCode::WrongCommandLine, app_.remaining(true).front() + ": not expected here" + kSeeHelp);
    } catch (const CLI::ParseError& error) {
      throw Complaint(ExitCode::WrongCommandLine, Explained(error));
    }
    arguments_.plugin = PathFromUtf8(typed_.plugin);
    arguments_.command = ReadCommand();
    return arguments_;
  }

 private:
  CLI::App& AddWithDevice(const char* name, const char* description) {
    CLI::App& command = *app_.add_subcommand(name, description);
    command.add_option("DEVICE", typed_.device, "name of the device, as 'zarnctl devices' prints it")
        ->required()
        ->type_name("");
    return command;
  }

  void AddLayerOptions() {
    app_.add_option("--machine", arguments_.machine,
                    "profile of a notebook to simulate, a TOML file or a shipped name; this computer otherwise")
        ->envname("ZARN_MACHINE")
        ->type_name("PROFILE");
    app_.add_flag("--trace", arguments_.trace, "print every firmware call and HID report to stderr");
  }

  static std::string Explained(const CLI::ParseError& error) {
    std::string line = error.what();
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line + kSeeHelp;
  }

  /// An option without its value, or given twice: the library's words for it speak of numbers of arguments.
  static std::string Mismatch(const CLI::ArgumentMismatch& error) {
    const std::string words = error.what();
    const bool missing = words.find("missing") != std::string::npos;
    return words.substr(0, words.find(':')) + (missing ? ": its value is missing" : ": given more than once") +
           kSeeHelp;
  }

  std::string NoCommand() const {
    const std::vector<std::string> strangers = app_.remaining();
    const std::string what = strangers.empty() ? "a command is missing" : strangers.front() + ": no such command";
    std::vector<std::string> commands;
    for (const CLI::App* command : app_.get_subcommands([](const CLI::App* /*any*/) { return true; })) {
      commands.push_back(command->get_name());
    }
    return what + "; use " + Alternatives(commands);
  }

  Command ReadCommand() const {
    if (app_.got_subcommand("devices")) return DevicesCommand{};
    if (app_.got_subcommand("show")) return ShowCommand{typed_.device};
    if (app_.got_subcommand("set")) return SetCommand{typed_.device, Settings()};
    if (app_.got_subcommand("leds")) return LedsCommand{typed_.device, LedColors()};
    if (app_.got_subcommand("doctor")) return DoctorCommand{};
    if (app_.got_subcommand("config")) return ConfigCommand{};
    if (Hardware::HasOurLayer() && app_.got_subcommand("record")) return RecordCommand{FileName()};
    return DemoCommand{};
  }

  std::string FileName() const {
    if (typed_.file.empty()) throw Complaint(ExitCode::WrongCommandLine, "record: the name of the file is empty");
    return typed_.file;
  }

  ModeSettings Settings() const {
    ModeSettings settings{.mode = typed_.mode, .speed = {}, .brightness = {}, .direction = {}, .color = {}};
    if (typed_.speed) settings.speed = ReadNumber("--speed", *typed_.speed);
    if (typed_.brightness) settings.brightness = ReadNumber("--brightness", *typed_.brightness);
    if (typed_.direction) settings.direction = ReadNumber("--direction", *typed_.direction);
    if (typed_.color) settings.color = ReadColor("--color", *typed_.color);
    return settings;
  }

  std::vector<PackedColor> LedColors() const {
    std::vector<PackedColor> colors;
    for (const std::string& text : typed_.led_colors) colors.push_back(ReadColor("leds", text));
    return colors;
  }

  CLI::App app_{"Drives the lights of a gaming notebook through the lighting plug-in.", "zarnctl"};
  Typed typed_;
  Arguments arguments_;
};

}  // namespace

std::optional<Arguments> ReadArguments(std::vector<std::string> words) { return CommandLine().Read(std::move(words)); }

}  // namespace zarnctl
