#include "platform/linux/firmware_class.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/read_file.h"
#include "platform/standin/text.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::wstring_view kClassName = L"ZarnGamingFunction";
constexpr std::string_view kBlobGuid = "05901221-D566-11D1-B2F0-00A0C9062910";
constexpr std::size_t kLongestBlob = std::size_t{256} << 10;  // in bytes; of 54 real ones the longest has 10,870
constexpr std::size_t kLongestText = 256;                     // of an attribute, in bytes
constexpr std::size_t kMostObjects = 1000;
constexpr std::size_t kMostInstances = 255;  // as many as the firmware's own table can have

/// An object of the bus.
struct Object {
  fs::path place;
  std::string guid;    // capital letters
  std::string device;  // its device's path in the firmware's name space
  std::string uid;
  std::string object_id;  // two characters; empty for events, which have no method
  std::size_t instances = 0;
};

/// An attribute without the line's end; empty when it is not there.
std::string Attribute(const fs::path& file) {
  const auto bytes = ReadFile(file, kLongestText);
  std::string text = bytes ? std::string(bytes->begin(), bytes->end()) : "";
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

bool ConsistsOf(std::string_view text, std::string_view others) {
  return !text.empty() && std::ranges::all_of(text, [&](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || others.find(c) != std::string_view::npos;
  });
}

std::string Capitals(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

/// The device's folder is three above the object's: between them are the bus's and one for its kind.
std::optional<Object> ReadObject(const fs::path& place) {
  const fs::path node = place / "../../../firmware_node";
  Object object{place,
                Capitals(Attribute(place / "guid")),
                Attribute(node / "path"),
                Attribute(node / "uid"),
                Attribute(place / "object_id"),
                0};
  const std::string count = Attribute(place / "instance_count");
  std::from_chars(count.data(), count.data() + count.size(), object.instances);
  object.instances = std::min(object.instances, kMostInstances);
  // These go into the text of a call, in which blanks separate words.
  if (!object.device.starts_with('\\') || !ConsistsOf(object.device, "\\_.")) return std::nullopt;
  if (object.object_id.size() != 2 || !ConsistsOf(object.object_id, "_")) object.object_id.clear();
  return object;
}

std::vector<Object> ReadObjects(const fs::path& objects) {
  std::set<fs::path> places;  // in an order of their own, so that each search goes the same way
  std::error_code error;
  for (fs::directory_iterator entry(objects, error), end; !error && entry != end; entry.increment(error)) {
    if (places.size() < kMostObjects) places.insert(entry->path());
  }
  std::vector<Object> read;
  for (const fs::path& place : places) {
    if (auto object = ReadObject(place)) read.push_back(*std::move(object));
  }
  return read;
}

std::string GuidOf(const MofClass& named) {
  std::string guid = Capitals(ReadableUtf8(named.guid));
  std::erase_if(guid, [](char c) { return c == '{' || c == '}'; });
  return guid;
}

/// Windows has '_' for what must not stand in its names, some of which would also end a text in an object's path.
std::wstring InWindowsNames(std::string_view uid) {
  std::wstring name;
  for (const char c : uid) {
    const bool sound = c > ' ' && c <= '~' && c != ',' && c != '"' && c != '\\';
    name += sound ? static_cast<wchar_t>(c) : L'_';
  }
  return name.empty() ? L"0" : name;
}

/// What one device's blob leads to.
FirmwareOnBus Follow(const Object& blob, const std::vector<Object>& objects) {
  const auto bytes = ReadFile(blob.place / "bmof", kLongestBlob);
  if (!bytes) {
    if (errno == ENOENT) return {FirmwareSearch::NotShown};
    if (errno == EACCES || errno == EPERM) return {FirmwareSearch::NotAllowed};
    return {FirmwareSearch::Unreadable, (blob.place / "bmof").string() + ": " + std::strerror(errno)};
  }
  BinaryMof mof = ReadBinaryMof(*bytes);
  if (!mof.refusal.empty()) return {FirmwareSearch::Unreadable, (blob.place / "bmof").string() + ": " + mof.refusal};
  const auto named =
      std::ranges::find_if(mof.classes, [](const MofClass& each) { return EqualsWithoutCase(each.name, kClassName); });
  if (named == mof.classes.end()) return {FirmwareSearch::NoClass};
  const std::string guid = GuidOf(*named);
  const auto object = std::ranges::find_if(objects, [&](const Object& each) {
    return each.guid == guid && each.device == blob.device && !each.object_id.empty() && each.instances > 0;
  });
  if (object == objects.end()) return {FirmwareSearch::NoGuid, guid};
  FirmwareOnBus found{FirmwareSearch::Found};
  found.acpi_method = object->device + ".WM" + object->object_id;
  const std::wstring device = L"ACPI\\PNP0C14\\" + InWindowsNames(object->uid) + L"_";
  for (std::size_t i = 0; i < object->instances; ++i) found.instances.push_back(device + std::to_wstring(i));
  found.methods = std::move(named->methods);
  std::erase_if(found.methods, [](const MofMethod& method) { return !method.id || method.name.empty(); });
  std::error_code error;
  found.driver = fs::read_symlink(object->place / "driver", error).filename().string();
  return found;
}

}  // namespace

FirmwareOnBus FindFirmwareOnBus(const fs::path& objects) {
  std::error_code error;
  if (!fs::is_directory(objects, error)) return {FirmwareSearch::NoBus};
  const std::vector<Object> read = ReadObjects(objects);
  FirmwareOnBus best{read.empty() ? FirmwareSearch::NoDevices : FirmwareSearch::NoBlobs};
  for (const Object& object : read) {
    if (object.guid != kBlobGuid || best.state == FirmwareSearch::Found) continue;
    FirmwareOnBus led_to = Follow(object, read);
    if (led_to.state >= best.state) best = std::move(led_to);
  }
  return best;
}

}  // namespace platform
