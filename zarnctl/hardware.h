/// What the plug-in drives, as far as zarnctl can see it: a simulated notebook, whose lights it looks at, or this
/// computer, of which it knows what was sent and what failed, or, on Windows, what the plug-in logs of that.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "simulator/notebook.h"
#include "zarn_lighting/records.h"
#include "zarnctl/doctor.h"
#include "zarnctl/panel.h"

namespace zarnctl {

class FailureWatch;

/// One at a time, for the rest of the process. The refusals and faults of one time are those since the time before.
class Hardware {
 public:
  /// Puts the notebook of a profile, given as a TOML file or as the name of a shipped profile, under the platform
  /// layer; this computer for an empty `machine`. With `trace` every firmware call and every HID report goes to stderr,
  /// a line each. Throws Complaint.
  Hardware(const std::string& machine, bool trace);
  ~Hardware();
  Hardware(const Hardware&) = delete;
  Hardware& operator=(const Hardware&) = delete;

  /// Whether there are notebooks to simulate, exchanges to trace and machines to record on this system.
  static bool HasOurLayer();

  /// "the notebook \"Four zones\"", "this computer"
  std::string Name() const;
  /// Whether the lights can be looked at.
  bool HasVisibleLights() const { return notebook_ != nullptr; }
  /// What is lit; nothing where that cannot be seen.
  std::vector<Panel> Panels() const;

  /// One line for each way in which the firmware or a HID keyboard refused or did not answer; none on Windows, where
  /// the log also calls a failure what a notebook just does not have.
  std::vector<std::string> TakeRefusals();
  /// Why the faults may not tell all that went wrong with the device, as the end of a sentence about the plug-in; empty
  /// where they do. Ask before they are taken.
  std::string Doubt(const std::string& device) const;
  /// The refusals; without any, one line when the lights of the device are not those of its active mode, where it says
  /// `records` of itself, or nothing was sent. Empty when all is well, as far as that is known.
  std::vector<std::string> TakeFaults(const std::string& device, const ControllerRecords& records);
  /// Whether the lights of the device are those of its active mode, as far as they can be seen.
  bool Shows(const std::string& device, const ControllerRecords& records) const;

  /// What to do about what the doctor finds missing.
  Remedies RemediesHere() const;
  /// Writes a profile that plays this machine back to a file that must not be there yet; a line for each thing that it
  /// lacks. Throws Complaint.
  static std::vector<std::string> RecordMachine(const std::filesystem::path& file);
  /// Fills in what the HID devices' descriptors tell and the platform does not.
  void LookAtDevices(Symptoms& symptoms) const;

  /// How long each call of the firmware takes beside its own pause.
  std::chrono::milliseconds FirmwareLatency() const;

 private:
  std::shared_ptr<simulator::Notebook> notebook_;  // null: this computer
  std::shared_ptr<FailureWatch> watch_;
};

}  // namespace zarnctl
