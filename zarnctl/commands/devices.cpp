#include <iostream>

#include "zarnctl/commands.h"
#include "zarnctl/description.h"
#include "zarnctl/session.h"

namespace zarnctl {

ExitCode RunDevices(Session& session, const TypedValues& /*typed*/) {
  for (const std::string& name : session.Names()) {
    std::cout << Summary(name, Describe(session.Create(name))) << "\n";
  }
  const zarn::host::Discovery& discovery = session.Discovered();
  std::cout << "interface type " << discovery.interface_type;
  if (!discovery.hardware_id.empty()) {
    std::cout << ", hardware id " << discovery.hardware_id << ", usage page " << discovery.usage_page;
  }
  std::cout << "\n";
  return ExitCode::Done;
}

}  // namespace zarnctl
