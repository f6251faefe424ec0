/// Any text as an answer of the kernel's module: refused, or no more bytes than its numbers stand for.

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/check.h"
#include "platform/linux/acpi_call.h"
#include "platform/standin/wmi_api.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 512) return 0;  // more is never read of it
  const platform::AcpiAnswer answer = platform::ReadAcpiAnswer(std::string(data, data + size));
  Check(answer.status == S_OK || (answer.status == WBEM_E_FAILED && answer.bytes.empty()));
  Check(answer.bytes.size() <= 4 * size);
  return 0;
}
