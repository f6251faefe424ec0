#include <iostream>

#include "zarnctl/commands.h"
#include "zarnctl/log_watch.h"
#include "zarnctl/session.h"
#include "zarnctl/switches.h"
#include "zarnctl/text.h"

namespace zarnctl {

ExitCode RunConfig(Session& session, const TypedValues& /*typed*/) {
  const SettingsPlaces places = session.hardware().Settings();
  std::cout << "logging: " << StateOf(kLogSwitch) << "\nlog folder: " << Harmless(Utf8FromPath(LogFolderPath()))
            << "\nhybrid mode: " << StateOf(kHybridSwitch) << "\n"
            << places.text;
  return places.complaints.empty() ? ExitCode::Done : ExitCode::Failed;
}

}  // namespace zarnctl
