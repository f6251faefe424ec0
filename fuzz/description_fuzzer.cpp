/// Any bytes as a description: refused whole, or read so that writing, reading and writing again gives the same bytes.
/// The first byte chooses the protocol version.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "controller/description_format.h"
#include "fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::uint32_t version = data[0] % 5;
  ControllerRecords records;
  records.title = "untouched";
  if (!UnpackDescription(records, {data + 1, size - 1}, version)) {
    Check(records.title == "untouched" && records.mode_list.empty() && records.color_table.empty());
    return 0;
  }
  const PackedBuffer written = PackDescription(records, version);
  ControllerRecords read_back;
  Check(UnpackDescription(read_back, written.view(), version));
  const PackedBuffer again = PackDescription(read_back, version);
  Check(std::ranges::equal(written.view(), again.view()));
  return 0;
}
