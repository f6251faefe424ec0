/// For udev, which sees no usage pages: says whether a hidraw node is one of a keyboard with lighting controls.
///
/// zarn_hid_access FOLDER: the node's folder in sysfs. Exit code 0 says yes and 1 no. With 2 it cannot be told, and a
/// line on stderr tells why.

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/portable/report_descriptor.h"

namespace {

constexpr USAGE kLightingUsagePage = 0xFF5A;
constexpr std::streamsize kLongestDescriptor = 4096;  // the kernel's limit

std::vector<std::uint8_t> ReadDescriptor(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::string bytes(kLongestDescriptor, '\0');
  stream.read(bytes.data(), kLongestDescriptor);
  if (stream.bad() || stream.gcount() == 0) throw std::runtime_error(file.string() + " cannot be read, or is empty");
  return {bytes.begin(), std::next(bytes.begin(), stream.gcount())};
}

bool HasLighting(const std::filesystem::path& node) {
  const std::filesystem::path file = node / "device" / "report_descriptor";
  const platform::ReportDescriptor descriptor = platform::ParseReportDescriptor(ReadDescriptor(file));
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
