#include "zarnctl/commands/doctor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <set>
#include <tuple>
#include <utility>

#include "firmware/smbios.h"
#include "firmware/wmi_connection.h"
#include "hid/hid_resources.h"
#include "hid/lighting_hid.h"
#include "platform/standin/text.h"
#include "platform/system.h"
#include "zarnctl/commands.h"
#include "zarnctl/log_watch.h"
#include "zarnctl/session.h"
#include "zarnctl/switches.h"
#include "zarnctl/text.h"

namespace zarnctl {
namespace {

using Kind = Finding::Kind;
using zarn::WRV520::Lighting::kAttributeReport;
using zarn::WRV520::Lighting::kKeyboardId;
using zarn::WRV520::Lighting::kLightingUsagePage;

class Examination {
 public:
  Examination(const Symptoms& symptoms, const Remedies& remedies) : symptoms_(symptoms), remedies_(remedies) {}

  void ExamineLogging() {
    const std::string state = "logging: " + StateOf(kLogSwitch);
    if (!IsOn(kLogSwitch)) return Add(Kind::Note, state + ", the plug-in writes no log", remedies_.switches);
    const std::string folder = Utf8FromPath(LogFolderPath());
    if (symptoms_.log.empty())
      return Add(Kind::Missing, state + ", but nothing was written to " + folder, remedies_.no_log);
    Add(Kind::Fine, state + ", in " + folder);
    for (const std::string& failure : FailuresIn(symptoms_.log)) Add(Kind::Note, "log: " + failure);
  }

  void ExamineHybridMode() {
    const std::string state = "hybrid mode: " + StateOf(kHybridSwitch);
    if (IsOn(kHybridSwitch)) return Add(Kind::Fine, state);
    Add(Kind::Note, state + ", a HID keyboard hides the devices of the embedded controller", remedies_.switches);
  }

  void ExamineHidInterfaces() {
    PresentInterfaces present;
    std::vector<std::wstring> paths;
    while (auto interface = present.Next()) {
      if (interface->failure == nullptr) paths.push_back(std::move(interface->path));
    }
    if (paths.empty()) Add(Kind::Note, "HID devices: none", remedies_.no_hid_devices);
    for (const std::wstring& path : paths) ExamineHidInterface(path);
    for (const std::string& device : symptoms_.device_notes) Add(Kind::Note, device);
  }

  void ExamineFirmwareRecord() {
    RawSmbiosTable table;
    if (ReadRawSmbiosTable(table) == 0) return Add(Kind::Missing, "SMBIOS table: cannot be read", remedies_.no_table);
    stSMBiosType172 record;
    if (!FindSMBiosType172(table, record)) {
      return Add(Kind::Missing, "SMBIOS table: no structure of type 172", remedies_.no_record);
    }
    announced_ = FindAnnouncedLights(record);
    const std::uint16_t zones = FirstItem(record, kItemKeyboardZones).value_or(0);
    const std::string what = "SMBIOS structure of type 172: firmware " + std::to_string(record.biosMajor) + "." +
                             std::to_string(record.biosMinor) + ", " +
                             (announced_.keyboard ? "a keyboard with " + Counted(zones, "zone") : "no keyboard") +
                             (announced_.rgb_keyboard ? " in colour" : ", no colours") +
                             (announced_.light_bar ? ", a light bar" : ", no light bar");
    if (HasEcKeyboard()) return Add(Kind::Fine, what);
    Add(Kind::Missing, what + ": the embedded controller's devices are reported only with a keyboard in colour");
  }

  void ExamineFirmwareClass() {
    WmiConnection connection;
    const std::string name = "firmware class ZarnGamingFunction: ";
    if (OpenWmiConnection(connection) == 0) {
      return Add(Kind::Missing, name + "the management service is not reached (" + Code(connection.status) + ")");
    }
    const Bstr class_name(kFirmwareClass);
    ComPtr<IWbemClassObject> definition;
    HRESULT status = connection.services->GetObject(class_name.Get(), 0, nullptr, definition.Put(), nullptr);
    InstancePath instance{};
    if (status >= 0) {
      FindInstancePath(connection, kFirmwareClass, kFirmwareInstances, instance);
      status = connection.status;
    }
    if (!symptoms_.firmware_note.empty()) Add(Kind::Note, name + symptoms_.firmware_note);
    if (!symptoms_.firmware.what.empty()) {
      return Add(Kind::Missing, name + (instance.front() != 0 ? "there, but " : "") + symptoms_.firmware.what,
                 symptoms_.firmware.remedy);
    }
    if (instance.front() != 0) return ExamineFirmwareMethods(*definition.Get(), name);
    if (status == static_cast<HRESULT>(WBEM_E_ACCESS_DENIED)) {
      return Add(Kind::Missing, name + "this user may not use it", remedies_.may_not_open);
    }
    if (status >= 0) return Add(Kind::Missing, name + "there, but without an instance to call");
    Add(Kind::Missing, name + "not there (" + Code(status) + "), the embedded controller's devices stay dark",
        remedies_.no_firmware_class);
  }

  void Conclude() {
    if (IsOn(kHybridSwitch) && has_hid_keyboard_ && symptoms_.discovered.empty() && !HasEcKeyboard()) {
      Add(Kind::Missing,
          "hybrid mode: with it, a HID keyboard is reported only beside those of the embedded controller",
          "set HybridMode to 0");
    }
    const auto reported = [this](const char* name) { return std::ranges::count(symptoms_.discovered, name) != 0; };
    if (firmware_is_fine_ && announced_.light_bar && reported("ZarnECKeyboard") && !reported("ZarnECGlobal")) {
      Add(Kind::Missing, "light bar: announced, but the firmware's answer to GetGamingLED does not confirm it");
    }
    std::string names;
    for (const std::string& name : symptoms_.discovered) names += " " + name;
    Add(symptoms_.discovered.empty() ? Kind::Missing : Kind::Fine,
        "discovery: " + Counted(symptoms_.discovered.size(), "lighting device") + names);
  }

  std::vector<Finding> Take() { return std::move(findings_); }

 private:
  void Add(Kind kind, std::string answer, std::string remedy = "") {
    findings_.push_back({kind, std::move(answer), std::move(remedy)});
  }

  void ExamineFirmwareMethods(IWbemClassObject& definition, const std::string& name) {
    for (const wchar_t* const method : {L"SetGamingLED", L"GetGamingLED", L"SetGamingKBBacklight", L"SetGamingRgbKb"}) {
      ComPtr<IWbemClassObject> in;
      if (definition.GetMethod(method, 0, in.Put(), nullptr) >= 0) continue;
      return Add(Kind::Missing, name + "there, but without the method " + platform::ReadableUtf8(method));
    }
    firmware_is_fine_ = true;
    Add(Kind::Fine, name + "there");
  }

  bool HasEcKeyboard() const { return announced_.keyboard && announced_.rgb_keyboard; }

  static std::string Code(HRESULT status) { return "0x" + Hexadecimal(static_cast<std::uint32_t>(status), 8); }

  static DeviceHandle Open(const std::wstring& path, DWORD access) {
    return DeviceHandle(
        CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  }

  void ExamineHidInterface(const std::wstring& path) {
    // Opening without rights is allowed to everybody.
    const DeviceHandle looked_at = Open(path, 0);
    HIDD_ATTRIBUTES attributes{};
    attributes.Size = sizeof(attributes);
    HIDP_CAPS caps{};
    if (!looked_at || HidD_GetAttributes(looked_at.Get(), &attributes) == FALSE ||
        HidP_GetCaps(PreparsedData(looked_at.Get()).Get(), &caps) != HIDP_STATUS_SUCCESS) {
      return Add(Kind::Note, platform::ReadableUtf8(path) +
                                 ": does not tell what it is, it was just unplugged or belongs to the system");
    }
    const std::string name = HidDeviceName(path, attributes.VendorID, attributes.ProductID);
    if (caps.UsagePage != kLightingUsagePage) {
      return Add(Kind::Note,
                 name + ": no lighting device, its usage page is " + Hexadecimal(caps.UsagePage, 4) + ", not FF5A");
    }
    if (caps.FeatureReportByteLength == 0)
      return Add(Kind::Missing, name + ": a lighting device without feature reports");
    const DeviceHandle device = Open(path, GENERIC_READ | GENERIC_WRITE);
    if (!device) return AddFailure(path, name, "cannot be opened");
    has_hid_keyboard_ = ServesKeyboard(path, name, device.Get(), caps) || has_hid_keyboard_;
    // By these the plug-in finds a device again.
    if (!identities_.insert({attributes.VendorID, attributes.ProductID, caps.Usage}).second) {
      Add(Kind::Note, name + ": the same vendor, product and usage as another one, which may get its reports");
    }
  }

  /// Whether the lighting device ids in the device's answer include a keyboard's.
  bool ServesKeyboard(const std::wstring& path, const std::string& name, HANDLE device, const HIDP_CAPS& caps) {
    std::vector<std::uint8_t> report(caps.FeatureReportByteLength);
    report.front() = kAttributeReport;
    if (HidD_GetFeature(device, report.data(), static_cast<ULONG>(report.size())) == FALSE) {
      AddFailure(path, name, "does not answer report A1");
      return false;
    }
    std::set<std::uint8_t> served;
    for (std::size_t i = 2; i < report.size() && i < std::size_t{2} + report[1]; ++i) served.insert(report[i]);
    std::string ids;
    for (const std::uint8_t id : served) ids += " " + Hexadecimal(id, 2);
    const bool keyboard = served.contains(kKeyboardId);
    Add(keyboard ? Kind::Fine : Kind::Note,
        name + (keyboard ? ": a lighting keyboard" : ": a lighting device, but no keyboard") + ", serves" +
            (ids.empty() ? " nothing" : ids));
    return keyboard;
  }

  /// Call it right after the call that failed: it reads the last error.
  void AddFailure(const std::wstring& path, const std::string& name, const std::string& what) {
    const DWORD error = GetLastError();
    if (error == ERROR_ACCESS_DENIED) {
      // One of several collections has its device's path with something behind it.
      const bool has_keys = std::ranges::any_of(symptoms_.devices_with_keys, [&path](const std::wstring& device) {
        return path == device || path.starts_with(device + L"&");
      });
      return Add(Kind::Missing, name + ": a lighting device, which this user may not open",
                 has_keys ? remedies_.may_not_open_keys : remedies_.may_not_open);
    }
    if (error == ERROR_SHARING_VIOLATION) {
      return Add(Kind::Missing, name + ": a lighting device, which another program has for itself", "end that program");
    }
    const bool has_no_node = error == ERROR_FILE_NOT_FOUND || error == ERROR_DEVICE_NOT_CONNECTED;
    Add(Kind::Missing, name + ": a lighting device, which " + what + " (error " + std::to_string(error) + ")",
        has_no_node ? remedies_.no_node : remedies_.no_answer);
  }

  const Symptoms& symptoms_;
  const Remedies& remedies_;
  std::vector<Finding> findings_;
  AnnouncedLights announced_;
  bool has_hid_keyboard_ = false;
  bool firmware_is_fine_ = false;
  std::set<std::tuple<USHORT, USHORT, USAGE>> identities_;
};

}  // namespace

std::vector<Finding> Examine(const Symptoms& symptoms, const Remedies& remedies) {
  Examination examination(symptoms, remedies);
  examination.ExamineLogging();
  examination.ExamineHybridMode();
  examination.ExamineHidInterfaces();
  examination.ExamineFirmwareRecord();
  examination.ExamineFirmwareClass();
  examination.Conclude();
  return examination.Take();
}

ExitCode RunDoctor(Session& session, const TypedValues& /*typed*/) {
  Symptoms symptoms;
  const LogWatch log;
  try {
    symptoms.discovered = session.Discovered().names;
  } catch (const Complaint& complaint) {
    std::cout << LineOf({Finding::Kind::Missing, complaint.what()}) << "\n";
  }
  symptoms.log = log.NewLines();
  session.hardware().LookAtDevices(symptoms);
  for (const Finding& finding : Examine(symptoms, session.hardware().RemediesHere())) {
    std::cout << LineOf(finding) << "\n";
  }
  return symptoms.discovered.empty() ? ExitCode::NothingThere : ExitCode::Done;
}

std::string LineOf(const Finding& finding) {
  static constexpr const char* kKinds[] = {"fine     ", "note     ", "missing  "};
  return kKinds[static_cast<std::size_t>(finding.kind)] + Harmless(finding.answer) +
         (finding.remedy.empty() ? "" : "; " + finding.remedy);
}

}  // namespace zarnctl
