/// Any bytes as an SMBIOS structure table: walked inside its bounds.

#include <cstddef>
#include <cstdint>

#include "firmware/smbios.h"
#include "fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  stSMBiosType172 record;
  const bool found = FindSMBiosType172({data, size}, record);
  Check(found == (record.type == 172));
  Check(record.itemCount >= -2 && record.itemCount <= 83);
  return 0;
}
