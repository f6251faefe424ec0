#include "simulator/profile.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <system_error>

#include "platform/standin/registry_toml.h"

namespace simulator {
namespace {

using platform::TomlError;

constexpr wchar_t kDefaultInstance[] = L"ACPI\\PNP0C14\\ZARN_0";
constexpr std::size_t kLongestReport = 16384;                  // a Linux kernel's limit
constexpr std::size_t kLongestProfile = std::size_t{1} << 20;  // in bytes; four recorded keyboards at their worst
constexpr std::size_t kMostKeyboards = 16;
constexpr std::size_t kMostMethods = 1000;
constexpr wchar_t kDefaultUser[] = L"player";
constexpr wchar_t kLogKey[] = L"SOFTWARE\\OEM\\ZarnLightingService\\Log";
constexpr wchar_t kLogSwitch[] = L"ZarnLightingService";

[[noreturn]] void Fail(const toml::source_region& where, std::initializer_list<std::string_view> what) {
  std::string line;
  for (const std::string_view part : what) line += part;
  throw TomlError(where, line);
}

/// One key of a table. `Target` is the part of the profile that takes its value.
template <typename Target>
struct Field {
  std::string_view key;
  std::string_view allowed;
  /// Stores the value. False when it is not one of those allowed.
  bool (*read)(const toml::node& node, Target& target);
  bool required = false;
};

/// Reads a table that may hold `fields` and nothing else.
template <typename Target>
bool ReadFields(const toml::node& node, std::span<const Field<Target>> fields, Target& target) {
  const toml::table* const table = node.as_table();
  if (table == nullptr) return false;
  for (const auto& [key, value] : *table) {
    const auto field = std::ranges::find(fields, key.str(), &Field<Target>::key);
    if (field == fields.end()) {
      std::string known;
      for (const auto& each : fields) known.append(known.empty() ? "" : ", ").append(each.key);
      Fail(key.source(), {"\"", key.str(), "\" is not known here, only: ", known});
    }
    if (!field->read(value, target)) Fail(key.source(), {key.str(), " must be ", field->allowed});
  }
  for (const auto& field : fields) {
    if (field.required && !table->contains(field.key)) {
      Fail(table->source(), {field.key, " is missing here: ", field.allowed});
    }
  }
  return true;
}

template <typename T, typename Target>
bool Assign(const std::optional<T>& value, Target& target) {
  if (value) target = static_cast<Target>(*value);
  return value.has_value();
}

std::optional<std::wstring> Text(const toml::node& node) {
  const auto text = node.value_exact<std::string>();
  if (!text || text->find('\0') != std::string::npos) return std::nullopt;
  return platform::WideFromUtf8(*text);
}

std::optional<std::int64_t> Number(const toml::node& node, std::int64_t highest) {
  const auto number = node.value_exact<std::int64_t>();
  return number && *number >= 0 && *number <= highest ? number : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> ByteList(const toml::node& node, std::size_t most) {
  const toml::array* const array = node.as_array();
  if (array == nullptr || array->empty() || array->size() > most) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  for (const toml::node& element : *array) {
    const auto byte = Number(element, 0xFF);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*byte));
  }
  return bytes;
}

/// Pairs of usage and bits, their usages in the order of `usages`.
std::optional<std::vector<HidKeyboard::Field>> DeclaredFields(const toml::node& node,
                                                              std::span<const std::uint16_t> usages) {
  const toml::array* const array = node.as_array();
  if (array == nullptr) return std::nullopt;
  std::vector<HidKeyboard::Field> fields;
  for (const toml::node& element : *array) {
    const auto pair = ByteList(element, 2);
    if (!pair || pair->size() != 2 || pair->back() == 0) return std::nullopt;
    const auto found = std::ranges::find(usages, pair->front());
    if (found == usages.end()) return std::nullopt;
    usages = usages.subspan(static_cast<std::size_t>(found - usages.begin()) + 1);
    fields.push_back({pair->front(), pair->back()});
  }
  return fields;
}

std::optional<FirmwareVersion> Version(const toml::node& node) {
  const std::string text = node.value_or(std::string());
  const char* const end = text.data() + text.size();
  FirmwareVersion version;
  const auto major = std::from_chars(text.data(), end, version.major);
  if (major.ec != std::errc{} || major.ptr == end || *major.ptr != '.') return std::nullopt;
  const auto minor = std::from_chars(major.ptr + 1, end, version.minor);
  if (minor.ec != std::errc{} || minor.ptr != end) return std::nullopt;
  return version;
}

// Readers of fields. kPath has the pointers to members that lead from the target to the value's place.

template <auto... kPath>
bool ReadSwitch(const toml::node& node, auto& target) {
  return Assign(node.value_exact<bool>(), (target.*....*kPath));
}

template <std::int64_t kLowest, std::int64_t kHighest, auto... kPath>
bool ReadNumber(const toml::node& node, auto& target) {
  const auto number = Number(node, kHighest);
  return number >= kLowest && Assign(number, (target.*....*kPath));
}

template <std::size_t kMost, auto... kPath>
bool ReadBytes(const toml::node& node, auto& target) {
  return Assign(ByteList(node, kMost), (target.*....*kPath));
}

template <const auto& kUsages, auto kMember>
bool ReadDeclared(const toml::node& node, HidKeyboard::Settings& keyboard) {
  return Assign(DeclaredFields(node, kUsages), keyboard.*kMember);
}

bool ReadTitle(const toml::node& node, Profile& profile) {
  return Assign(node.value_exact<std::string>(), profile.title);
}

/// A user's name becomes part of the log's path, and a profile may come from anybody.
bool ReadUser(const toml::node& node, Profile& profile) {
  const auto name = Text(node);
  const auto unfit = [](wchar_t c) { return c == L'/' || c == L'\\' || c < L' ' || (c >= 0x7F && c < 0xA0); };
  return name && std::ranges::none_of(*name, unfit) && Assign(name, profile.user_name);
}

bool ReadVersion(const toml::node& node, Profile& profile) { return Assign(Version(node), profile.ec.version); }

bool ReadInstance(const toml::node& node, Profile& profile) { return Assign(Text(node), profile.firmware_instance); }

/// Each is a number, a name and parameters in parentheses.
bool ReadMethods(const toml::node& node, Profile& profile) {
  const toml::array* const array = node.as_array();
  if (array == nullptr || array->empty() || array->size() > kMostMethods) return false;
  for (const toml::node& element : *array) {
    const auto text = element.value_exact<std::string>();
    if (!text || MethodName(*text).empty()) return false;
    profile.firmware_methods.push_back(*text);
  }
  return true;
}

bool ReadRecord(const toml::node& node, Profile& profile) {
  const auto bytes = ByteList(node, 255);
  return bytes && bytes->size() >= 6 && bytes->at(0) == 172 && bytes->at(1) == bytes->size() &&
         Assign(bytes, profile.firmware_structure);
}

bool ReadZones(const toml::node& node, Profile& profile) {
  const auto zones = Number(node, 4);
  return zones != 2 && Assign(zones, profile.ec.keyboard_zones);
}

bool ReadLogSwitch(const toml::node& node, Profile& profile) {
  const auto enabled = node.value_exact<bool>();
  if (enabled) profile.registry[kLogKey][kLogSwitch] = platform::Dword(*enabled ? 1 : 0);
  return enabled.has_value();
}

bool ReadRegistryTables(const toml::node& node, Profile& profile) {
  if (!node.is_table()) return false;
  platform::RegistryValues values = platform::ReadRegistry(*node.as_table());
  // What [registry] sets wins over [log], wherever the two stand in the file.
  for (auto& [key, switches] : profile.registry) values[key].merge(switches);
  profile.registry = std::move(values);
  return true;
}

bool ReadEnvironment(const toml::node& node, Profile& profile) {
  if (!node.is_table()) return false;
  for (const auto& [name, value] : *node.as_table()) {
    const auto text = Text(value);
    if (!text) Fail(name.source(), {name.str(), " must be text"});
    const bool is_new = profile.environment.emplace(platform::WideFromUtf8(name.str()), *text).second;
    if (!is_new) Fail(name.source(), {name.str(), " is there already"});
  }
  return true;
}

using Ec = EcFirmware::Settings;
using Hid = HidKeyboard::Settings;

constexpr Field<Profile> kFirmware[] = {
    {"version", "text like \"2.91\", both numbers from 0 to 255", ReadVersion, true},
    {"instance", "text, empty for no firmware class", ReadInstance},
    {"methods", "1 to 1000 texts like \"2 SetGamingLED(in uint8 gmInput[], out uint32 gmOutput)\"", ReadMethods},
    {"record", "6 to 255 numbers from 0 to 255, a structure of type 172", ReadRecord},
    {"latency_ms", "a whole number from 0 to 10000", ReadNumber<0, 10000, &Profile::firmware_latency_ms>},
};

constexpr Field<Profile> kKeyboard[] = {
    {"zones", "0, 1, 3 or 4", ReadZones, true},
    {"rgb", "true or false", ReadSwitch<&Profile::rgb_keyboard>},
};

constexpr Field<Profile> kLightBar[] = {
    {"present", "true or false", ReadSwitch<&Profile::ec, &Ec::light_bar>, true},
    {"report", "1 to 15 numbers from 0 to 255, what GetGamingLED answers instead of the truth",
     ReadBytes<15, &Profile::ec, &Ec::lights_report>},
    {"return", "a whole number from 0 to 255", ReadNumber<0, 0xFF, &Profile::ec, &Ec::lights_return>},
};

constexpr Field<Hid> kHidKeyboard[] = {
    {"zones", "a whole number from 0 to 65535", ReadNumber<0, 0xFFFF, &Hid::zones>, true},
    {"effects", "a whole number from 0 to 4294967295", ReadNumber<0, 0xFFFFFFFF, &Hid::effects>},
    {"vendor", "a whole number from 0 to 65535", ReadNumber<0, 0xFFFF, &Hid::vendor>},
    {"product", "a whole number from 0 to 65535", ReadNumber<0, 0xFFFF, &Hid::product>},
    {"usage_page", "a whole number from 0 to 65535", ReadNumber<0, 0xFFFF, &Hid::usage_page>},
    {"usage", "a whole number from 0 to 65535", ReadNumber<0, 0xFFFF, &Hid::usage>},
    {"report_length", "a whole number from 3 to 16384", ReadNumber<3, kLongestReport, &Hid::report_length>},
    {"other_collection", "true or false", ReadSwitch<&Hid::other_collection>},
    {"plugged", "true or false", ReadSwitch<&Hid::plugged>},
    {"answers", "true or false", ReadSwitch<&Hid::answers>},
    {"device_ids", "1 to 63 numbers from 0 to 255", ReadBytes<63, &Hid::device_ids>},
    {"claimed_ids", "a whole number from 0 to 255", ReadNumber<0, 0xFF, &Hid::claimed_ids>},
    {"reply_id", "a whole number from 0 to 255", ReadNumber<0, 0xFF, &Hid::reply_id>},
    {"descriptor", "1 to 4096 numbers from 0 to 255", ReadBytes<4096, &Hid::descriptor>},
    {"attribute_reply", "1 to 16384 numbers from 0 to 255", ReadBytes<kLongestReport, &Hid::attribute_reply>},
    {"base_info_reply", "1 to 16384 numbers from 0 to 255", ReadBytes<kLongestReport, &Hid::base_info_reply>},
    {"base_info", "pairs of usage and bits, [[0x35, 16]], of 0x34, 0x32, 0x35, 0x33, 0x31 in this order",
     ReadDeclared<HidKeyboard::kBaseInfoUsages, &Hid::base_info>},
    {"update", "pairs of usage and bits, [[0x41, 8]], of 0x41, 0x43, 0x42, 0x44, 0x45, 0x46, 0x47, 0x48 in this order",
     ReadDeclared<HidKeyboard::kUpdateUsages, &Hid::update>},
};

/// The bytes that a report with these fields needs.
std::uint32_t NeededLength(const std::vector<HidKeyboard::Field>& fields) {
  std::uint32_t bits = 0;
  for (const HidKeyboard::Field& field : fields) bits += field.bits;
  return 2 + (bits + 7) / 8;  // behind the report id and the device id
}

bool ReadHidKeyboards(const toml::node& node, Profile& profile) {
  const toml::array* const tables = node.as_array();
  if (tables == nullptr || tables->size() > kMostKeyboards) return false;
  for (const toml::node& table : *tables) {
    Hid& keyboard = profile.hid_keyboards.emplace_back();
    if (!ReadFields<Hid>(table, kHidKeyboard, keyboard)) return false;
    const std::uint32_t needed = std::max(NeededLength(keyboard.base_info), NeededLength(keyboard.update));
    if (needed > keyboard.report_length) {
      Fail(table.source(), {"report_length is too short, base_info and update need ", std::to_string(needed)});
    }
  }
  return true;
}

constexpr Field<Profile> kLog[] = {{"enabled", "true or false", ReadLogSwitch, true}};

template <const auto& kFields>
bool Section(const toml::node& node, Profile& profile) {
  return ReadFields<Profile>(node, kFields, profile);
}

constexpr Field<Profile> kFile[] = {
    {"title", "text", ReadTitle, true},
    {"user", "text without slashes and control characters, empty for a name that cannot be told", ReadUser},
    {"firmware", "a table: [firmware]", Section<kFirmware>},
    {"keyboard", "a table: [keyboard]", Section<kKeyboard>},
    {"light_bar", "a table: [light_bar]", Section<kLightBar>},
    {"hid_keyboard", "at most 16 tables: [[hid_keyboard]]", ReadHidKeyboards},
    {"log", "a table: [log]", Section<kLog>},
    {"registry", "tables: [registry.'KEY\\KEY']", ReadRegistryTables},
    {"environment", "a table: [environment]", ReadEnvironment},
};

std::string ReadFile(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::file_type type = std::filesystem::status(file, error).type();
  if (type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character) {
    throw ProfileError(file.string() + ": cannot be read: it may have no end");
  }
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  std::string text(kLongestProfile + 1, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!in.is_open() || in.bad()) {
    throw ProfileError(file.string() + ": cannot be read: " + std::generic_category().message(errno));
  }
  text.resize(static_cast<std::size_t>(in.gcount()));
  return text;
}

Profile ReadProfile(const toml::table& root) {
  Profile profile;
  profile.user_name = kDefaultUser;
  profile.firmware_record = root.contains("firmware");
  if (profile.firmware_record) profile.firmware_instance = kDefaultInstance;
  for (const char* const section : {"keyboard", "light_bar"}) {
    // Without firmware these lights would silently be missing.
    if (profile.firmware_record || !root.contains(section)) continue;
    Fail(root.get(section)->source(), {section, " needs a firmware that drives it: [firmware]"});
  }
  ReadFields<Profile>(root, kFile, profile);
  return profile;
}

}  // namespace

std::string_view MethodName(std::string_view declaration) {
  const std::size_t begin = declaration.find_first_not_of("0123456789");
  const std::size_t end = declaration.find('(');
  if (begin == 0 || begin >= end || end == std::string_view::npos || declaration[begin] != ' ') return {};
  const std::string_view name = declaration.substr(begin + 1, end - begin - 1);
  return name.find(' ') == std::string_view::npos ? name : std::string_view();
}

Profile LoadProfile(const std::filesystem::path& file) { return ParseProfile(ReadFile(file), file.string()); }

Profile ParseProfile(const std::string& text, const std::string& name) try {
  if (text.size() > kLongestProfile) throw TomlError(": more than 1 MiB");
  return ReadProfile(platform::ParseToml(text));
} catch (const TomlError& error) {
  throw ProfileError(name + error.what());
}

}  // namespace simulator
