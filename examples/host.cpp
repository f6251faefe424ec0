/// A host on the host library, host LIBRARY [DEVICE...]: turns all lights red but a whole-device light.
#include <zarn_lighting/host.h>
#include <iostream>
#include <string>
#include <vector>

int Complain(const std::string& line) {
  std::cerr << "host: " << line << "\n";
  return 1;
}

int main(int argc, char** argv) {
  if (argc < 2) return Complain("usage: host LIBRARY [DEVICE...]");
  const auto plugin = zarn::host::Plugin::Load(argv[1]);
  if (!plugin) return Complain(plugin.error().text);
  const auto found = plugin->Discover();
  if (!found) return Complain(found.error().text);
  std::cout << found->names.size() << " lighting devices\n";
  const auto names = argc > 2 ? std::vector<std::string>(argv + 2, argv + argc) : found->names;
  for (const std::string& name : names) {
    auto device = plugin->Create(name);
    if (!device) return Complain(device.error().text);
    const auto description = device->Describe();
    if (!description) return Complain(description.error().text);
    std::cout << name << ": " << description->mode_list.size() << " modes\n";
    device->controller().PaintAllZones(0x0000FF);
    device->controller().SelectFirstMode();
    if (const auto error = device->WriteColors()) return Complain(error->text);
  }
}
