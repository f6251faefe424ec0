/// What a profile file says about a notebook: values only.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
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
  /// That table's structure about the lights, as recorded. Empty: it is made from the settings here.
  std::vector<std::uint8_t> firmware_structure;
  /// How long one firmware call takes.
  std::uint32_t firmware_latency_ms = 0;
  platform::RegistryValues registry;
  std::map<std::wstring, std::wstring, platform::WithoutCase> environment;
  /// Empty: the platform cannot tell the user's name.
  std::wstring user_name;
  /// The name of the firmware's instance. Empty: there is no firmware class.
  std::wstring firmware_instance;
  /// The class's methods as real firmware described them, "2 SetGamingLED(in uint8 gmInput[], out uint32 gmOutput)".
  /// Only those are there. Empty: all that the simulator knows, undescribed.
  std::vector<std::string> firmware_methods;
};

/// "SetGamingLED" out of "2 SetGamingLED(...)"; empty for a text of another form.
std::string_view MethodName(std::string_view declaration);

/// A profile that cannot be read; what() is one line that names the file, the place and the remedy.
class ProfileError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Throws ProfileError.
Profile LoadProfile(const std::filesystem::path& file);
/// The same for a profile's text. Errors call it `name`.
Profile ParseProfile(const std::string& text, const std::string& name);

}  // namespace simulator
