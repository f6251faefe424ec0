#include "zarnctl/config.h"

#include "zarnctl/log_watch.h"
#include "zarnctl/switches.h"

namespace zarnctl {

std::string Config() {
  return "logging: " + StateOf(kLogSwitch) + "\nlog folder: " + LogFolderPath().string() +
         "\nhybrid mode: " + StateOf(kHybridSwitch) + "\n";
}

}  // namespace zarnctl
