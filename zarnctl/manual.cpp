/// Writes the manual page: copies stdin and replaces lines like "@COMMANDS@" by parts of the table of commands.

#include <cctype>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "zarnctl/commands.h"

namespace zarnctl {
namespace {

/// Escapes hyphens. roff would turn them into dashes, which nobody can paste into a shell.
std::string Text(std::string_view text) {
  std::string roff;
  for (const char c : text) roff += c == '-' ? "\\-" : std::string(1, c);
  return roff;
}

std::string Sentence(std::string text) {
  text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
  return Text(text) + ".\n";
}

/// "\fB--mode\fI NAME\fR"
std::string Named(const Parameter& parameter) {
  const bool word = !parameter.name.starts_with('-');
  const std::string name = (word ? "\\fI" : "\\fB") + Text(parameter.name);
  const std::string value = parameter.value.empty() ? "" : "\\fI " + Text(parameter.value);
  return name + value + "\\fR" + (parameter.repeated ? "..." : "");
}

std::string Described(const std::vector<Parameter>& parameters) {
  std::string text;
  for (const Parameter& parameter : parameters) text += ".TP\n" + Named(parameter) + "\n" + Sentence(parameter.summary);
  return text;
}

std::string Described(const Command& command) {
  std::string text = ".TP\n\\fB" + command.name + "\\fR";
  for (const Parameter& parameter : command.parameters) {
    text += parameter.required ? " " + Named(parameter) : " [" + Named(parameter) + "]";
  }
  text += "\n" + Sentence(command.summary);
  return command.parameters.empty() ? text : text + ".RS\n" + Described(command.parameters) + ".RE\n";
}

std::string Filled(const std::string& line) {
  std::string text;
  if (line == "@COMMANDS@") {
    for (const Command& command : Commands()) text += Described(command);
  } else if (line == "@OPTIONS@") {
    text = Described(GeneralOptions());
  } else if (line == "@EXIT CODES@") {
    int code = 0;
    for (const std::string_view meaning : kExitCodes) {
      text += ".TP\n.B " + std::to_string(code++) + "\n" + Sentence(std::string(meaning));
    }
  } else if (line == "@EXAMPLES@") {
    for (const Command& command : Commands()) {
      for (const std::string& example : command.examples) text += "zarnctl " + Text(example) + "\n";
    }
  } else {
    text = line + "\n";
  }
  return text;
}

}  // namespace
}  // namespace zarnctl

int main() {
  for (std::string line; std::getline(std::cin, line);) std::cout << zarnctl::Filled(line);
  return std::cout.flush() ? 0 : 1;
}
