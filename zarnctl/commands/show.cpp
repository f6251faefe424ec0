#include <iostream>

#include "zarnctl/commands.h"
#include "zarnctl/description.h"
#include "zarnctl/session.h"

namespace zarnctl {

ExitCode RunShow(Session& session, const TypedValues& typed) {
  const std::string& name = session.FindName(*typed.Find("DEVICE"));
  const ControllerRecords records = Describe(session.Create(name));
  std::cout << Details(name, records);
  session.Draw(records);
  return ExitCode::Done;
}

}  // namespace zarnctl
