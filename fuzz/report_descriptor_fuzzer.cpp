/// Any bytes as a report descriptor: refused with one line, or collections whose lengths, counts and indexes agree.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "platform/standin/report_descriptor.h"

namespace {

std::size_t CheckCollection(const platform::HidCollection& collection) {
  const std::size_t length = collection.caps.FeatureReportByteLength;
  Check(length <= 16384 && length != 1);
  Check(collection.values.size() == collection.caps.NumberFeatureValueCaps);
  int last = -1;
  for (const HIDP_VALUE_CAPS& caps : collection.values) {
    const bool range = caps.IsRange != FALSE;
    const int end = range ? caps.Range.DataIndexMax : caps.Range.DataIndexMin;
    Check(caps.Range.DataIndexMin > last && end >= caps.Range.DataIndexMin);
    Check(!range || caps.Range.UsageMax - caps.Range.UsageMin == end - caps.Range.DataIndexMin);
    Check(range || (caps.NotRange.Reserved1 == 0 && caps.NotRange.Reserved4 == 0));
    Check(caps.ReportCount > end - caps.Range.DataIndexMin);
    Check(caps.BitSize > 1 && caps.BitSize <= 256);
    Check(length > 0 && std::size_t{caps.BitSize} * caps.ReportCount <= (length - 1) * 8);
    last = end;
  }
  return collection.values.size();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto block = std::make_unique<std::uint8_t[]>(size);
  std::copy(data, data + size, block.get());
  const platform::ReportDescriptor parsed = platform::ParseReportDescriptor({block.get(), size});
  Check(parsed.collections.empty() != parsed.refusal.empty());
  Check(parsed.refusal.empty() ||
        (parsed.refusal.starts_with("byte ") && parsed.refusal.find('\n') == std::string::npos));
  std::size_t records = 0;
  for (const platform::HidCollection& collection : parsed.collections) records += CheckCollection(collection);
  Check(records + parsed.collections.size() <= size);  // at most one for each item: a range stays one record
  return 0;
}
