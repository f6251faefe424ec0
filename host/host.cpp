#include "zarn_lighting/host.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <span>

#include "base/little_endian.h"
#include "controller/description_format.h"
#include "controller/packet_formats.h"
#include "controller/wire_archive.h"
#include "host/library.h"
#include "zarn_lighting/plugin.h"

namespace zarn::host {
namespace {

constexpr std::uint32_t kProtocolVersion = 3;  // the first with brightness

Error Thrown(const char* what) noexcept {
  try {
    return {Failure::Threw, what};
  } catch (...) {
    return {};
  }
}

/// Runs what may throw; whatever it throws becomes an Error.
template <typename Body>
auto Guarded(Body body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return Error{};
  } catch (const std::exception& error) {
    return Thrown(error.what());
  } catch (...) {
    return Thrown("the plug-in threw something that is no standard exception");
  }
}

/// Names and numbers. A sound plug-in sends plain ASCII; anything else becomes '?'.
std::string Narrow(const std::wstring& text) {
  std::string narrow;
  for (const wchar_t character : text)
    narrow += character >= ' ' && character < 0x7F ? static_cast<char>(character) : '?';
  return narrow;
}

std::vector<std::string> Listed(const std::string& names) {
  std::vector<std::string> list;
  for (std::size_t begin = 0; begin <= names.size();) {
    const std::size_t end = std::min(names.find(',', begin), names.size());
    list.push_back(names.substr(begin, end - begin));
    begin = end + 1;
  }
  return list;
}

template <typename Function>
Result<Function*> Find(const Library& library, const std::string& name) {
  void* const address = library.Find(name);
  if (address == nullptr) return Error{Failure::NoExport, "the plug-in has no export " + name};
  return reinterpret_cast<Function*>(address);
}

template <typename Controller>
Result<Device> CreateAs(const Library& library, const std::string& name) {
  const std::string second = "CreateRGBController_" + name + "ClassInstance";
  const auto make_controller = Find<Controller*()>(library, "Create" + name + "ControllerClassInstance");
  if (!make_controller) return make_controller.error();
  const auto make_device = Find<RGBControllerInterface*(Controller*)>(library, second);
  if (!make_device) return make_device.error();
  std::unique_ptr<RGBControllerInterface> device((*make_device)((*make_controller)()));
  if (device == nullptr) return Error{Failure::BadAnswer, second + " created nothing"};
  return Device(std::move(device));
}

/// Owns a buffer that a slot has handed out. Its first field is its size.
PackedBuffer Taken(std::uint8_t* bytes) {
  const std::uint64_t size = bytes == nullptr ? 0 : FromLittleEndian({bytes, sizeof(std::uint32_t)});
  return {std::unique_ptr<std::uint8_t[]>(bytes), static_cast<std::size_t>(size)};
}

Error Refusal(const char* what) { return {Failure::Refused, what}; }

}  // namespace

Result<ControllerRecords> Device::Describe() const noexcept {
  return Guarded([&]() -> Result<ControllerRecords> {
    const PackedBuffer buffer = Taken(controller_->PackDescription(kProtocolVersion));
    ControllerRecords records;
    if (!UnpackDescription(records, buffer.view(), kProtocolVersion)) {
      return Error{Failure::BadAnswer, "the plug-in's description of the device cannot be read"};
    }
    return records;
  });
}

Outcome Device::SetMode(std::int32_t index, const ModeRecord& mode) noexcept {
  return Guarded([&]() -> Outcome {
    const bool travels_whole = TravellingText(mode.label).size() == mode.label.size() &&
                               TravellingCount(mode.mode_colors) == mode.mode_colors.size();
    if (!travels_whole) return Refusal("the mode's label or list of colours does not fit a packet");
    const PackedBuffer packet = PackModePacket(index, mode, kProtocolVersion);
    controller_->UnpackModePacket(packet.bytes.get(), kProtocolVersion);
    // The slot ignores a packet without a word, so read the mode back.
    const PackedBuffer kept = Taken(controller_->PackModePacket(index, kProtocolVersion));
    const bool taken = controller_->CurrentModeIndex() == index && std::ranges::equal(kept.view(), packet.view());
    return taken ? Outcome() : Refusal("the device did not take the mode");
  });
}

Outcome Device::SetColors(const std::vector<PackedColor>& colors) noexcept {
  return Guarded([&]() -> Outcome {
    if (colors.empty() || TravellingCount(colors) != colors.size()) {
      return Refusal("there are no colours, or more than fit a packet");
    }
    const PackedBuffer packet = PackColorTablePacket(colors);
    controller_->UnpackColorTablePacket(packet.bytes.get());
    const PackedBuffer kept = Taken(controller_->PackColorTablePacket());
    // Both packets have a size, a number of colours, and then the colours.
    constexpr std::size_t kHeader = sizeof(std::uint32_t) + sizeof(std::uint16_t);
    const bool taken = packet.size <= kept.size &&
                       std::equal(packet.view().begin() + kHeader, packet.view().end(), kept.view().begin() + kHeader);
    return taken ? Outcome() : Refusal("the device did not take the colours");
  });
}

Outcome Device::WriteMode() noexcept {
  return Guarded([&]() -> Outcome {
    controller_->WriteModeToDevice();
    return std::nullopt;
  });
}

Outcome Device::WriteColors() noexcept {
  return Guarded([&]() -> Outcome {
    controller_->WriteColorsToDevice();
    return std::nullopt;
  });
}

Result<Plugin> Plugin::Load(const std::filesystem::path& file) noexcept {
  return Guarded([&]() -> Result<Plugin> {
    const auto library = std::make_shared<Library>(file);
    if (!*library) return Error{Failure::NotLoaded, Library::LoadError(file)};
    library->Keep();
    return Plugin(library);
  });
}

Result<Discovery> Plugin::Discover() const noexcept {
  return Guarded([&]() -> Result<Discovery> {
    const auto check = Find<decltype(CheckDeviceStatus)>(*library_, "CheckDeviceStatus");
    if (!check) return check.error();
    std::wstring names;
    std::wstring hardware_id;
    std::wstring usage_page;
    Discovery discovery;
    const std::int32_t count = (*check)(names, discovery.interface_type, hardware_id, usage_page);
    // When memory runs out the plug-in answers 0 and changes nothing.
    if (count == 0 && discovery.interface_type == 0) return Error{};
    // Without devices the list may still hold a name.
    if (count != 0) discovery.names = Listed(Narrow(names));
    const bool has_empty_name = std::ranges::count(discovery.names, std::string()) != 0;
    if (count < 0 || discovery.names.size() != static_cast<std::size_t>(count) || has_empty_name) {
      return Error{Failure::BadAnswer,
                   "the plug-in's discovery counts " + std::to_string(count) + " and names \"" + Narrow(names) + "\""};
    }
    discovery.hardware_id = Narrow(hardware_id);
    discovery.usage_page = Narrow(usage_page);
    return discovery;
  });
}

Result<Device> Plugin::Create(const std::string& name) const noexcept {
  return Guarded([&]() -> Result<Device> {
    if (name == "ZarnECGlobal") return CreateAs<ZarnECGlobalController>(*library_, name);
    if (name == "ZarnECKeyboard") return CreateAs<ZarnECKeyboardController>(*library_, name);
    if (name == "ZarnHIDKeyboard") return CreateAs<ZarnHIDKeyboardController>(*library_, name);
    return Error{Failure::UnknownDevice, name + ": no such device"};
  });
}

}  // namespace zarn::host
