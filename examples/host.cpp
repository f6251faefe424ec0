/// A host on the host library: finds the lights of this notebook and turns them red.
///
/// host LIBRARY [DEVICE...]: the devices named are driven instead of those that discovery reports.
#include <zarn_lighting/host.h>

#include <iostream>

int Complain(const zarn::host::Error& error) {
  std::cerr << "host: " << error.text << "\n";
  return 1;
}

int main(int argc, char** argv) {
  if (argc < 2) return Complain({zarn::host::Failure::NotLoaded, "usage: host LIBRARY [DEVICE...]"});
  const auto plugin = zarn::host::Plugin::Load(argv[1]);
  if (!plugin) return Complain(plugin.error());
  const auto found = plugin->Discover();
  if (!found) return Complain(found.error());
  std::cout << found->names.size() << " lighting devices\n";
  for (const std::string& name : argc > 2 ? std::vector<std::string>(argv + 2, argv + argc) : found->names) {
    auto device = plugin->Create(name);
    if (!device) return Complain(device.error());
    const auto description = device->Describe();
    if (!description) return Complain(description.error());
    std::cout << name << ": " << description->mode_list.size() << " modes\n";
    device->controller().PaintAllZones(0x0000FF);  // red in the lowest byte
    device->controller().SelectFirstMode();
    if (const auto error = device->WriteColors()) return Complain(*error);
  }
}
