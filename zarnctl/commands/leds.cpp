#include "zarnctl/checked.h"
#include "zarnctl/commands.h"
#include "zarnctl/description.h"
#include "zarnctl/mode_settings.h"
#include "zarnctl/session.h"
#include "zarnctl/text.h"

namespace zarnctl {

ExitCode RunLeds(Session& session, const TypedValues& typed) {
  std::vector<PackedColor> colors;
  for (const std::string& word : typed.All("COLOR")) colors.push_back(ReadColor("leds", word));
  const std::string& name = session.FindName(*typed.Find("DEVICE"));
  zarn::host::Device device = session.Create(name);
  if (!LightsLeds(name)) {
    throw Wrong("leds: " + name + " has no colours per LED; use 'zarnctl set'");
  }
  const ControllerRecords records = Describe(device);
  const std::int32_t index = FindPerLedMode(records.mode_list);
  Check(device.SetColors(ColorPerLed(colors, records.color_table.size())));
  Check(device.SetMode(index, records.mode_list.at(static_cast<std::size_t>(index))));
  return session.Push(device, name);
}

}  // namespace zarnctl
