/// For udev, which sees no usage pages: says whether a hidraw node is one of a keyboard with lighting controls.
///
/// zarn_hid_access FOLDER: the node's folder in sysfs. Exit code 0 says yes and 1 no. With 2 it cannot be told, and a
/// line on stderr tells why.

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

#include "platform/linux/read_file.h"
#include "platform/standin/report_descriptor.h"

namespace {

constexpr USAGE kLightingUsagePage = 0xFF5A;

bool HasLighting(const std::filesystem::path& node) {
  const std::filesystem::path file = node / "device" / "report_descriptor";
  const auto bytes = platform::ReadFile(file);
  if (!bytes || bytes->empty()) throw std::runtime_error(file.string() + " cannot be read, or is empty");
  const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(*bytes);
  if (!descriptor.refusal.empty()) throw std::runtime_error(file.string() + ": " + descriptor.refusal);
  return std::any_of(
      descriptor.collections.begin(), descriptor.collections.end(),
      [](const platform::HidCollection& collection) { return collection.caps.UsagePage == kLightingUsagePage; });
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) throw std::runtime_error("usage: zarn_hid_access FOLDER, a hidraw node's in sysfs");
  return HasLighting(argv[1]) ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << "zarn_hid_access: " << error.what() << "\n";
  return 2;
}
