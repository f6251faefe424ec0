/// Calls methods of this computer's firmware through the kernel's module acpi_call.
///
/// The module is a file: a call is written into it, and the answer is read out of it. It has one answer for all who
/// call, so everybody holds a lock on the file meanwhile.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "platform/standin/machine.h"

namespace platform {

struct AcpiCallPlaces {
  std::filesystem::path call_file = "/proc/acpi/call";
  std::filesystem::path command_line = "/proc/cmdline";  // the kernel's
};

struct AcpiAnswer {
  /// WBEM_E_PROVIDER_LOAD_FAILURE when the module is not loaded, WBEM_E_ACCESS_DENIED when this process may not use it,
  /// WBEM_E_SERVER_TOO_BUSY when another program kept the lock for 5 s, WBEM_E_INVALID_PARAMETER when the input is
  /// longer than the module takes, WBEM_E_FAILED when the firmware failed or answered nothing of use.
  HRESULT status = S_OK;
  /// A buffer as it is, a number as 4 bytes, a package as its elements with numbers aligned to 4. The module cuts
  /// answers: a buffer after 42 bytes, others after 255 characters.
  Bytes bytes;
};

/// Runs the method at the path `method` from the root of the firmware's name space, with the instance's number, the
/// number of the class's method and its input. May block: nobody can end a method that hangs inside the kernel. Any
/// thread, several at once.
AcpiAnswer CallAcpi(const std::filesystem::path& call_file, const std::string& method, std::size_t instance,
                    std::uint32_t id, std::span<const std::uint8_t> input);

/// The answer in the module's text, "{0x01, 0x02}", "0x1f" or "[0x1f, {0x01, 0x02}]".
AcpiAnswer ReadAcpiAnswer(std::string_view text);

/// Whether the kernel runs with the option acpi=strict, by which the module crashes when a method answers nothing.
/// Without it such a method seems to answer what the firmware worked out last, which nobody can tell from an answer.
/// When the options cannot be read, they count as strict.
bool KernelIsStrict(const std::filesystem::path& command_line);

}  // namespace platform
