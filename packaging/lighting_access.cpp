/// Tells udev, which sees no usage pages, whether the user at the computer may have a hidraw node for its lights.
///
/// zarn_hid_access FOLDER: the node's folder in sysfs. Exit code 0 means yes and 1 no. 3 means no, because the node has
/// lights but also sends what is typed. 2 means that nobody can tell; a line on stderr says why.

#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

#include "platform/linux/lighting_access.h"
#include "platform/linux/read_file.h"

namespace {

using platform::LightingAccess;

LightingAccess AccessToNode(const std::filesystem::path& node) {
  const std::filesystem::path file = node / "device" / "report_descriptor";
  const auto bytes = platform::ReadFile(file);
  if (!bytes || bytes->empty()) throw std::runtime_error(file.string() + " cannot be read, or is empty");
  const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(*bytes);
  if (!descriptor.refusal.empty()) throw std::runtime_error(file.string() + ": " + descriptor.refusal);
  return AccessTo(descriptor);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("usage: zarn_hid_access FOLDER, a hidraw node's in sysfs");
  const LightingAccess access = AccessToNode(argv[1]);
  if (access == LightingAccess::None) return 1;
  const bool shared = access == LightingAccess::LightsAndKeys && platform::KeyboardsAreShared();
  return access == LightingAccess::Lights || shared ? 0 : 3;
} catch (const std::exception& error) {
  std::cerr << "zarn_hid_access: " << error.what() << "\n";
  return 2;
}
