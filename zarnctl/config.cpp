#include "zarnctl/config.h"

#include "zarnctl/log_watch.h"
#include "zarnctl/switches.h"
#include "zarnctl/text.h"

namespace zarnctl {

std::string Config() {
  return "logging: " + StateOf(kLogSwitch) + "\nlog folder: " + Harmless(Utf8FromPath(LogFolderPath())) +
         "\nhybrid mode: " + StateOf(kHybridSwitch) + "\n";
}

}  // namespace zarnctl
