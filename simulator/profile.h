/// What a profile file says about a notebook: values only.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/standin/registry_values.h"
#include "simulator/ec_firmware.h"
#include "simulator/hid_keyboard.h"

namespace simulator {

/// Grammar: docs/profiles.md.
struct Profile {
  std::string title;
  EcFirmware::Settings ec;
  std::vector<HidKeyboard::Settings> hid_keyboards;
  /// Whether the keyboard can show colours; discovery reports an EC keyboard only then.
  bool rgb_keyboard = true;
  /// Whether the SMBIOS table tells about the EC's lights.
  bool firmware_record = true;
  /// The structure that tells it, as a real table had it; empty: made from what is here.
  std::vector<std::uint8_t> firmware_structure;
  /// How long one firmware call takes.
  std::uint32_t firmware_latency_ms = 0;
  platform::RegistryValues registry;
  std::map<std::wstring, std::wstring, platform::WithoutCase> environment;
  /// Empty: who runs the process cannot be told.
  std::wstring user_name;
  /// The name under which the firmware publishes itself; empty: there is no firmware class at all.
  std::wstring firmware_instance;
};

/// A profile that cannot be read; what() is one line that names the file, the place and the remedy.
class ProfileError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Reads a profile; throws ProfileError.
Profile LoadProfile(const std::filesystem::path& file);
/// The same for a profile's text, which `name` stands for in what is wrong with it.
Profile ParseProfile(const std::string& text, const std::string& name);

}  // namespace simulator
