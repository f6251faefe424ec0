#include "zarnctl/checked.h"
#include "zarnctl/commands.h"
#include "zarnctl/description.h"
#include "zarnctl/mode_settings.h"
#include "zarnctl/session.h"

namespace zarnctl {

ExitCode RunSet(Session& session, const TypedValues& typed) {
  const std::string& name = session.FindName(*typed.Find("DEVICE"));
  zarn::host::Device device = session.Create(name);
  const std::vector<ModeRecord> modes = Describe(device).mode_list;
  const std::int32_t index = FindMode(modes, *typed.Find("--mode"));
  Check(device.SetMode(index, WithSettings(modes.at(static_cast<std::size_t>(index)), typed)));
  return session.Push(device, name);
}

}  // namespace zarnctl
