#include "platform/linux/lighting_access.h"

#include <sys/stat.h>

namespace platform {
namespace {

constexpr USAGE kLightingUsagePage = 0xFF5A;

}  // namespace

LightingAccess AccessTo(const ReportDescriptor& descriptor) {
  bool lighting = false;
  bool feature_reports = false;
  for (const auto& [caps, values] : descriptor.collections) {
    if (caps.UsagePage != kLightingUsagePage) continue;
    lighting = true;
    feature_reports = feature_reports || caps.FeatureReportByteLength > 0;
  }
  if (!lighting) return LightingAccess::None;
  if (descriptor.has_keys) return feature_reports ? LightingAccess::SharedWithKeys : LightingAccess::KeysAlone;
  return feature_reports ? LightingAccess::Free : LightingAccess::None;
}

bool KeyboardsAreShared(const std::filesystem::path& file) {
  struct stat entry {};
  return lstat(file.c_str(), &entry) == 0 && S_ISREG(entry.st_mode) && entry.st_uid == 0 &&
         (entry.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace platform
