#include "platform/linux/lighting_access.h"

#include <sys/stat.h>

#include <algorithm>
#include <span>

#include "platform/standin/hid_interfaces.h"

namespace platform {
namespace {

constexpr USAGE kLightingUsagePage = 0xFF5A;

}  // namespace

LightingAccess AccessTo(const ReportDescriptor& descriptor) {
  bool lighting = false;
  bool feature_reports = false;
  const std::size_t count = std::min(descriptor.collections.size(), kMostInterfaces);
  for (const auto& [caps, values] : std::span(descriptor.collections).first(count)) {
    if (caps.UsagePage != kLightingUsagePage) continue;
    lighting = true;
    feature_reports = feature_reports || caps.FeatureReportByteLength > 0;
  }
  if (!lighting) return LightingAccess::None;
  if (descriptor.has_keys) return feature_reports ? LightingAccess::LightsAndKeys : LightingAccess::KeysWithoutLights;
  return feature_reports ? LightingAccess::Lights : LightingAccess::None;
}

bool KeyboardsAreShared(const std::filesystem::path& file) {
  const auto is_roots_alone = [](const std::filesystem::path& path, mode_t type) {
    struct stat entry {};
    return lstat(path.c_str(), &entry) == 0 && (entry.st_mode & S_IFMT) == type && entry.st_uid == 0 &&
           (entry.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  };
  return is_roots_alone(file.parent_path(), S_IFDIR) && is_roots_alone(file, S_IFREG);
}

}  // namespace platform
