/// Any bytes as a report descriptor: refused with one line, or collections whose counts, lengths and indexes agree.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "platform/standin/report_descriptor.h"

namespace {

struct Kind {
  HIDP_REPORT_TYPE type;
  USHORT length, buttons, values, data_indexes;
};

void CheckKind(const HIDP_CAPS& collection, const std::vector<HIDP_VALUE_CAPS>& records, const Kind& kind) {
  Check(records.size() == kind.values);
  Check(kind.length <= 16384 && kind.length != 1);
  Check(kind.length != 0 || (kind.values == 0 && kind.buttons == 0));
  Check(kind.values + kind.buttons <= kind.data_indexes);
  int last = -1;
  for (const HIDP_VALUE_CAPS& caps : records) {
    const bool range = caps.IsRange != FALSE;
    const int end = range ? caps.Range.DataIndexMax : caps.Range.DataIndexMin;
    Check(caps.Range.DataIndexMin > last && end >= caps.Range.DataIndexMin && end < kind.data_indexes);
    Check(!range || caps.Range.UsageMax - caps.Range.UsageMin == end - caps.Range.DataIndexMin);
    Check(range || (caps.NotRange.Reserved1 == 0 && caps.NotRange.Reserved4 == 0));
    Check(caps.ReportCount > end - caps.Range.DataIndexMin);
    Check(caps.BitSize > 1 && caps.BitSize <= 256);
    Check(std::uint32_t{caps.BitSize} * caps.ReportCount <= (kind.length - 1U) * 8);
    Check(caps.LinkCollection < collection.NumberLinkCollectionNodes);
    Check(caps.IsStringRange != FALSE ? caps.Range.StringMax > caps.Range.StringMin : caps.NotRange.Reserved2 == 0);
    Check(caps.IsDesignatorRange != FALSE ? caps.Range.DesignatorMax > caps.Range.DesignatorMin
                                          : caps.NotRange.Reserved3 == 0);
    last = end;
  }
}

std::size_t CheckCollection(const platform::HidCollection& collection) {
  const HIDP_CAPS& caps = collection.caps;
  Check(caps.NumberLinkCollectionNodes > 0);
  const Kind kinds[] = {
      {HidP_Input, caps.InputReportByteLength, caps.NumberInputButtonCaps, caps.NumberInputValueCaps,
       caps.NumberInputDataIndices},
      {HidP_Output, caps.OutputReportByteLength, caps.NumberOutputButtonCaps, caps.NumberOutputValueCaps,
       caps.NumberOutputDataIndices},
      {HidP_Feature, caps.FeatureReportByteLength, caps.NumberFeatureButtonCaps, caps.NumberFeatureValueCaps,
       caps.NumberFeatureDataIndices},
  };
  std::size_t records = 0;
  for (const Kind& kind : kinds) {
    CheckKind(caps, collection.values[kind.type], kind);
    records += collection.values[kind.type].size();
  }
  return records;
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
  Check(records + parsed.collections.size() <= size);  // one each for an item at most: no range was spread out
  return 0;
}
