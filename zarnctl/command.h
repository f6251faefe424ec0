/// What a command of zarnctl is, and what was typed for it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zarnctl/complaint.h"

namespace zarnctl {

class Session;

/// A word that a command takes, "DEVICE", or an option, "--speed".
struct Parameter {
  std::string name;
  std::string value = {};  // the name of an option's value, "N"; empty for a flag
  std::string summary = {};
  bool required = false;
  bool repeated = false;      // takes one word or more
  std::string variable = {};  // the environment variable that is read when the option is not given
};

/// The words typed for each parameter, in UTF-8, as yet unchecked.
class TypedValues {
 public:
  void Add(const std::string& parameter, std::vector<std::string> words) { values_[parameter] = std::move(words); }

  /// The words, none when the parameter was not given. A flag that was given has one.
  const std::vector<std::string>& All(std::string_view parameter) const {
    static const std::vector<std::string> kNone;
    const auto found = values_.find(parameter);
    return found != values_.end() ? found->second : kNone;
  }
  /// The one word; null when the parameter was not given.
  const std::string* Find(std::string_view parameter) const {
    const std::vector<std::string>& words = All(parameter);
    return words.empty() ? nullptr : &words.front();
  }

 private:
  std::map<std::string, std::vector<std::string>, std::less<>> values_;
};

/// A row of the table of commands. Parsing, --help and the manual page come from it.
struct Command {
  std::string name;
  std::string summary;
  std::vector<Parameter> parameters = {};
  std::vector<std::string> examples = {};  // as typed behind "zarnctl "
  ExitCode (*run)(Session&, const TypedValues&) = nullptr;
};

}  // namespace zarnctl
