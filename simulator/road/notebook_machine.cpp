#include "simulator/road/notebook_machine.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <string>
#include <utility>

#include "platform/standin/hid_api.h"
#include "platform/standin/machine.h"
#include "platform/standin/registry_values.h"
#include "platform/standin/text.h"
#include "platform/standin/wmi_api.h"

namespace simulator {
namespace {

using platform::Bytes;

LONG CodeOf(HidKeyboard::Result result) {
  static constexpr LONG kCodes[] = {ERROR_SUCCESS, ERROR_GEN_FAILURE, ERROR_SEM_TIMEOUT, ERROR_DEVICE_NOT_CONNECTED};
  return kCodes[static_cast<std::size_t>(result)];
}

class KeyboardConnection final : public platform::HidConnection {
 public:
  KeyboardConnection(std::shared_ptr<Notebook> notebook, std::size_t keyboard, std::uint64_t connection)
      : notebook_(std::move(notebook)), keyboard_(keyboard), connection_(connection) {}

  LONG SetFeature(std::span<const std::uint8_t> report) override {
    return CodeOf(notebook_->SetFeature(keyboard_, connection_, report).result);
  }

  LONG GetFeature(std::span<std::uint8_t> report) override {
    const HidKeyboard::Answer answer = notebook_->GetFeature(keyboard_, connection_, report.front());
    std::copy_n(answer.report.begin(), std::min(answer.report.size(), report.size()), report.begin());
    return CodeOf(answer.result);
  }

 private:
  const std::shared_ptr<Notebook> notebook_;
  const std::size_t keyboard_;
  const std::uint64_t connection_;
};

class NotebookMachine final : public platform::Machine {
 public:
  explicit NotebookMachine(std::shared_ptr<Notebook> notebook) : notebook_(std::move(notebook)) {}

  bool HasRegistryKey(std::wstring_view key) override { return platform::HasKey(profile().registry, key); }

  std::optional<Bytes> RegistryValue(std::wstring_view key, std::wstring_view name) override {
    return platform::FindValue(profile().registry, key, name);
  }

  std::optional<std::wstring> EnvironmentVariable(std::wstring_view name) override {
    const auto set = profile().environment.find(name);
    return set != profile().environment.end() ? set->second : platform::ProcessVariable(name);
  }

  std::optional<std::wstring> UserName() override {
    return profile().user_name.empty() ? std::nullopt : std::optional(profile().user_name);
  }

  std::optional<platform::SmbiosTable> ReadSmbiosTable() override {
    Bytes table = notebook_->SmbiosTable();
    if (table.empty()) return std::nullopt;
    return platform::SmbiosTable{std::move(table), std::uint8_t{3}, std::uint8_t{0}};
  }

  std::optional<platform::FirmwareClass> FindFirmwareClass() override {
    if (profile().firmware_instance.empty()) return std::nullopt;
    platform::FirmwareClass firmware{{}, {profile().firmware_instance}};
    for (const std::string& declaration : profile().firmware_methods) {
      firmware.methods.push_back({platform::WideFromUtf8(MethodName(declaration)), true, declaration});
    }
    if (firmware.methods.empty()) {
      firmware.methods = {{L"SetGamingLED"}, {L"GetGamingLED"}, {L"SetGamingKBBacklight"}, {L"SetGamingRgbKb"}};
    }
    return firmware;
  }

  platform::FirmwareAnswer CallFirmware(const std::wstring& instance_name, const std::wstring& method,
                                        const platform::NamedValues& in) override {
    if (instance_name != profile().firmware_instance) return {platform::Status(WBEM_E_NOT_FOUND), {}};
    const auto input = in.find(L"gmInput");
    const auto* const bytes = input == in.end() ? nullptr : std::get_if<Bytes>(&input->second);
    const auto* const text = input == in.end() ? nullptr : std::get_if<std::wstring>(&input->second);
    if (bytes == nullptr && text == nullptr) return {platform::Status(WBEM_E_INVALID_PARAMETER), {}};
    const EcFirmware::Answer answer =
        notebook_->CallFirmware(platform::ReadableUtf8(method), bytes != nullptr ? EcFirmware::Input(*bytes) : *text);
    if (!answer.refusal.empty()) return {platform::Status(WBEM_E_INVALID_PARAMETER), {}};
    platform::NamedValues out;
    out[L"gmOutput"] = std::visit([](const auto& output) -> platform::Value { return output; }, answer.output);
    if (answer.gm_return) out[L"gmReturn"] = *answer.gm_return;
    return {S_OK, std::move(out)};
  }

  std::vector<platform::HidDevice> HidDevices() override {
    std::vector<platform::HidDevice> devices;
    for (std::size_t i = 0; i < notebook_->HidKeyboardCount(); ++i) {
      if (notebook_->HidKeyboardAt(i).Connect()) devices.push_back(DeviceAt(i));
    }
    return devices;
  }

  platform::OpenedHidDevice OpenHidDevice(const std::wstring& path) override {
    for (std::size_t i = 0; i < notebook_->HidKeyboardCount(); ++i) {
      platform::HidDevice device = DeviceAt(i);
      const auto connection = notebook_->HidKeyboardAt(i).Connect();
      if (!connection || device.path != path) continue;
      return {ERROR_SUCCESS, std::move(device), MakeConnection(notebook_, i, *connection)};
    }
    return {};
  }

 private:
  const Profile& profile() const { return notebook_->profile(); }

  platform::HidDevice DeviceAt(std::size_t index) const {
    const HidKeyboard& keyboard = notebook_->HidKeyboardAt(index);
    const HidKeyboard::Settings& is = keyboard.settings();
    std::array<wchar_t, 64> path{};
    std::swprintf(path.data(), path.size(), L"\\\\?\\hid#vid_%04x&pid_%04x#%zu", is.vendor, is.product, index);
    return {path.data(), is.vendor, is.product, 0x0100, keyboard.report_descriptor()};
  }

  const std::shared_ptr<Notebook> notebook_;
};

}  // namespace

std::shared_ptr<platform::Machine> MakeMachine(std::shared_ptr<Notebook> notebook) {
  return std::make_shared<NotebookMachine>(std::move(notebook));
}

std::shared_ptr<platform::HidConnection> MakeConnection(std::shared_ptr<Notebook> notebook, std::size_t keyboard,
                                                        std::uint64_t connection) {
  return std::make_shared<KeyboardConnection>(std::move(notebook), keyboard, connection);
}

}  // namespace simulator
