#include "zarnctl/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <optional>
#include <utility>

#include "zarnctl/commands.h"
#include "zarnctl/session.h"
#include "zarnctl/text.h"
#include "zarnctl/this_system.h"

namespace zarnctl {
namespace {

constexpr const char* kSeeHelp = "; see 'zarnctl --help'";

struct Typed {
  const Command* command;
  TypedValues values;
};

/// The table of commands, as the parser wants it.
class CommandLine {
 public:
  CommandLine() {
    app_.set_version_flag("--version", "zarnctl " ZARN_VERSION);
    app_.footer(Footer());
    app_.fallthrough();
    app_.require_subcommand(1);
    AddTo(app_, GeneralOptions());
    // Last: a command copies the settings that the application has when the command is added.
    for (const Command& command : commands_) {
      CLI::App* const parser = app_.add_subcommand(command.name, command.summary);
      AddTo(*parser, command.parameters);
      parser->footer(Examples(command));
    }
  }

  /// Nothing after --help or --version, which it answers itself. Throws Complaint.
  std::optional<Typed> Read(std::vector<std::string> words) {
    try {
      std::ranges::reverse(words);  // the parser begins at the end
      app_.parse(std::move(words));
    } catch (const CLI::Success& help_or_version) {
      app_.exit(help_or_version);
      return std::nullopt;
    } catch (const CLI::RequiredError& error) {
      throw Wrong(app_.get_subcommands().empty() ? NoCommand() : Explained(error));
    } catch (const CLI::ArgumentMismatch& error) {
      throw Wrong(Mismatch(error));
    } catch (const CLI::ExtrasError&) {
      throw Wrong(app_.remaining(true).front() + ": not expected here" + kSeeHelp);
    } catch (const CLI::ParseError& error) {
      throw Wrong(Explained(error));
    }
    Typed typed{&*std::ranges::find(commands_, app_.get_subcommands().front()->get_name(), &Command::name), {}};
    for (const auto& [name, option] : options_) {
      if (!option->empty()) typed.values.Add(name, option->results());
    }
    return typed;
  }

 private:
  static std::string Footer() {
    std::string text = "Exit codes:";
    for (std::size_t i = 0; i < kExitCodes.size(); ++i) {
      text += "\n  " + std::to_string(i) + "  " + std::string(kExitCodes.at(i));
    }
    const std::string note = ThisSystem().note;
    return note.empty() ? text : text + "\n\n" + note;
  }

  static std::string Examples(const Command& command) {
    std::string text = command.examples.empty() ? "" : "Examples:";
    for (const std::string& example : command.examples) text += "\n  zarnctl " + example;
    return text;
  }

  void AddTo(CLI::App& parser, const std::vector<Parameter>& parameters) {
    for (const Parameter& parameter : parameters) {
      const bool flag = parameter.name.starts_with('-') && parameter.value.empty();
      CLI::Option* const option = flag ? parser.add_flag(parameter.name) : parser.add_option(parameter.name);
      option->description(parameter.summary)->required(parameter.required);
      if (!flag) option->type_name(parameter.value);
      if (parameter.repeated) option->expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args();
      if (!parameter.variable.empty()) option->envname(parameter.variable);
      options_.emplace_back(parameter.name, option);
    }
  }

  static std::string Explained(const CLI::ParseError& error) {
    std::string line = error.what();
    std::ranges::replace(line, '\n', ' ');
    return line + kSeeHelp;
  }

  /// An option without its value, or given twice. The library's own line speaks of numbers of arguments.
  static std::string Mismatch(const CLI::ArgumentMismatch& error) {
    const std::string words = error.what();
    const bool missing = words.find("missing") != std::string::npos;
    return words.substr(0, words.find(':')) + (missing ? ": its value is missing" : ": given more than once") +
           kSeeHelp;
  }

  std::string NoCommand() const {
    const std::vector<std::string> strangers = app_.remaining();
    std::vector<std::string> names;
    for (const Command& command : commands_) names.push_back(command.name);
    return (strangers.empty() ? "a command is missing" : strangers.front() + ": no such command") + "; use " +
           Alternatives(names);
  }

  const std::vector<Command> commands_ = Commands();
  CLI::App app_{"Drives the lights of a gaming notebook through the lighting plug-in.", "zarnctl"};
  std::vector<std::pair<std::string, CLI::Option*>> options_;
};

/// A command also fails when something was refused while a device was made.
ExitCode RunCommand(const Typed& typed) {
  const std::unique_ptr<Hardware> hardware = OpenHardware(typed.values);
  Complain(hardware->Settings().complaints);
  const std::string* const plugin = typed.values.Find("--plugin");
  Session session(*hardware, plugin != nullptr ? PathFromUtf8(*plugin) : std::filesystem::path());
  const ExitCode code = typed.command->run(session, typed.values);
  return code == ExitCode::Done && session.refused() ? ExitCode::Refused : code;
}

}  // namespace

ExitCode Run(std::vector<std::string> words) {
  try {
    CommandLine command_line;
    const std::optional<Typed> typed = command_line.Read(std::move(words));
    const ExitCode code = typed ? RunCommand(*typed) : ExitCode::Done;
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
