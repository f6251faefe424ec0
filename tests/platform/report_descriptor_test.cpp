#include "platform/standin/report_descriptor.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/hex.h"

namespace test {
namespace {

using Lines = std::vector<std::string>;

platform::ReportDescriptor Parsed(const std::string& hex) {
  auto parsed = platform::ParseReportDescriptor(ExactBlock(Hex(hex)).view());
  EXPECT_NE(parsed.collections.empty(), parsed.refusal.empty());
  return parsed;
}

/// "page:usage of report length", then each value as "id page:usage bits x count @data index", in hexadecimal.
Lines Read(const platform::HidCollection& collection) {
  const auto indexes = [](USHORT first, USHORT last, bool range) {
    std::ostringstream text;
    text << std::hex << first;
    if (range || last != 0) text << '-' << last;  // without a range it is reserved, and must be 0
    return text.str();
  };
  EXPECT_EQ(collection.caps.NumberFeatureValueCaps, collection.values.size());
  std::ostringstream head;
  head << std::hex << collection.caps.UsagePage << ':' << collection.caps.Usage << " of "
       << collection.caps.FeatureReportByteLength;
  Lines lines = {head.str()};
  for (const HIDP_VALUE_CAPS& caps : collection.values) {
    const bool range = caps.IsRange != FALSE;
    std::ostringstream line;
    line << std::hex << int{caps.ReportID} << ' ' << caps.UsagePage << ':'
         << indexes(caps.Range.UsageMin, caps.Range.UsageMax, range) << ' ' << caps.BitSize << 'x' << caps.ReportCount
         << " @" << indexes(caps.Range.DataIndexMin, caps.Range.DataIndexMax, range);
    lines.push_back(line.str());
  }
  return lines;
}

std::string Repeated(const std::string& hex, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += hex + " ";
  return all;
}

TEST(ReportDescriptorParser, TopLevelCollectionsCountForThemselves) {
  const struct {
    const char* hex;
    std::vector<Lines> collections;
  } kCases[] = {
      {"05 01 09 06 a1 01 85 01 75 08 95 03 09 30 b1 02 09 31 a1 02 c0 09 32 a1 02 95 01 09 33 b1 02 c0 c0 "
       "05 0c 0a 34 12 a1 01 85 02 95 01 09 40 b1 02 09 41 81 02 c0",
       {{"1:6 of 5", "1 1:30 8x3 @0", "1 1:33 8x1 @1"}, {"c:1234 of 2", "2 c:40 8x1 @0"}}},
      // One report in two collections: each has the length of its own part.
      {"a1 01 75 08 95 04 b1 01 c0 a1 01 95 02 b1 01 c0", {{"0:0 of 5"}, {"0:0 of 3"}}},
      // Fields outside of collections are nobody's.
      {"75 08 95 08 09 30 b1 02 a1 01 09 31 b1 02 c0 09 32 b1 02", {{"0:0 of 9", "0 0:31 8x8 @0"}}},
  };
  for (const auto& c : kCases) {
    std::vector<Lines> read;
    for (const auto& collection : Parsed(c.hex).collections) read.push_back(Read(collection));
    EXPECT_EQ(read, c.collections) << c.hex;
  }
}

TEST(ReportDescriptorParser, KeysAreSeenWhereverTheyAre) {
  const std::pair<const char*, bool> kCases[] = {
      {"05 01 09 06 a1 01 c0", true},
      {"05 01 09 07 a1 01 c0", true},
      {"06 5a ff 0b 06 00 01 00 a1 01 c0", true},                       // its page in the usage itself
      {"06 5a ff 09 01 a1 01 05 01 09 06 a1 01 c0 c0", true},           // deeper down
      {"06 5a ff 09 01 a1 01 09 04 05 07 75 01 95 01 81 02 c0", true},  // the page behind the usage
      {"06 5a ff 09 01 a1 01 a4 05 07 19 04 29 65 75 08 95 06 81 00 b4 c0", true},
      {"06 5a ff 09 01 a1 01 05 01 19 01 29 08 75 08 95 08 81 02 c0", true},              // in a range
      {"06 5a ff 09 06 a1 01 09 07 75 08 95 01 b1 02 c0", false},                         // a vendor's usages 6 and 7
      {"05 01 09 02 a1 01 05 09 19 01 29 08 75 01 95 08 81 02 c0", false},                // a mouse's buttons
      {"06 5a ff 09 01 a1 01 05 07 19 04 29 65 05 09 09 01 75 08 95 06 81 00 c0", true},  // another page behind
      {"06 5a ff 09 01 a1 01 a9 01 0b 01 00 09 00 1b 04 00 07 00 2b 65 00 07 00 a9 00 75 08 95 06 81 00 c0",
       true},                                                        // an alternative
      {"06 5a ff 09 01 a1 01 a4 05 01 09 06 b4 a1 01 c0 c0", true},  // a page that is gone again
  };
  for (const auto& [hex, has_keys] : kCases) EXPECT_EQ(Parsed(hex).has_keys, has_keys) << hex;
}

TEST(ReportDescriptorParser, UsagesShareTheValuesOfAFieldAndTheLongestReportCounts) {
  const std::pair<std::string, Lines> kCases[] = {
      {"09 30 09 31 95 05 b1 02", {"6", "0 ff00:31 8x4 @0", "0 ff00:30 8x1 @1"}},
      {"09 30 09 31 09 32 95 02 b1 02", {"3", "0 ff00:31 8x1 @0", "0 ff00:30 8x1 @1"}},
      {"19 30 29 33 95 06 b1 02 09 40 b1 02", {"d", "0 ff00:30-33 8x6 @0-3", "0 ff00:40 8x6 @4"}},
      {"1a 00 00 2a ff ff 95 03 b1 02", {"4", "0 ff00:0-2 8x3 @0-2"}},
      {"19 30 29 33 b1 02", {"2", "0 ff00:30 8x1 @0"}},
      {"19 30 29 31 09 40 95 04 b1 02", {"5", "0 ff00:40 8x2 @0", "0 ff00:30-31 8x2 @1-2"}},
      {"09 30 b1 03 b1 03 09 32 b1 01 09 31 b1 02", {"5", "0 ff00:30 8x1 @0", "0 ff00:31 8x1 @1"}},  // constants
      {"09 30 b1 00 75 01 09 31 b1 02 75 08 09 32 b1 02", {"4", "0 ff00:32 8x1 @2"}},  // buttons, and then a value
      {"0b 31 00 0c 00 b1 02", {"2", "0 c:31 8x1 @0"}},                                // the page in the usage
      {"1b 31 00 0c 00 2b 32 00 0c 00 95 02 b1 02", {"3", "0 c:31-32 8x2 @0-1"}},
      {"09 30 05 0c b1 02", {"2", "0 c:30 8x1 @0"}},  // the page in force at the main item
      {"a9 01 09 30 09 31 19 01 29 09 a9 00 09 32 95 02 b1 02", {"3", "0 ff00:32 8x1 @0", "0 ff00:30 8x1 @1"}},
      {"a9 01 09 30 a9 00 a9 01 09 31 09 32 a9 00 95 02 b1 02", {"3", "0 ff00:31 8x1 @0", "0 ff00:30 8x1 @1"}},
      {"fe 03 c0 c0 c0 c0 09 30 39 07 79 04 fe 00 00 b1 02 fc",
       {"2", "0 ff00:30 8x1 @0"}},                                               // long, reserved, decoration
      {"09 30 d0 09 31 b1 02 fb 01 02 03 04 c9 05", {"2", "0 ff00:31 8x1 @0"}},  // unknown main and local items
      {"08 b1 02", {"2", "0 ff00:0 8x1 @0"}},                                    // items without data
      {"85 07 a4 85 08 75 10 95 02 06 01 ff 09 31 b1 02 b4 15 80 34 44 54 64 09 32 b1 02",  // Push and Pop
       {"5", "8 ff01:31 10x2 @0", "7 ff00:32 8x1 @1"}},
      {"85 01 75 03 95 03 b1 01 85 02 95 01 b1 01", {"3"}},
      {"75 04 b1 01 75 05 b1 01", {"3"}},
      {"95 00 09 30 b1 02 95 01 75 00 09 30 b1 02", {"0"}},
      {"96 ff 2f b1 01 96 00 10 b1 01", {"4000"}},
  };
  for (auto [items, expected] : kCases) {
    const auto parsed = Parsed("06 00 ff 09 01 a1 01 75 08 95 01 " + items + " c0");
    expected.front().insert(0, "ff00:1 of ");
    EXPECT_EQ(Read(parsed.collections.at(0)), expected) << items;
  }
}

TEST(ReportDescriptorParser, LimitsHoldAndWhatIsWrongIsToldWithItsPlace) {
  const std::string any = Repeated("1a 00 00 2a ff ff b1 00", 5);  // a range ends where the usages of an item do
  const std::pair<std::string, const char*> kCases[] = {
      {"76 00 01", ""},
      {"76 01 01", "6: Report Size beyond 256 bits"},
      {"96 00 30", ""},
      {"96 01 30", "6: Report Count beyond 12288"},
      {"85 00", "6: Report ID outside 1 to 255"},
      {"86 00 01", "6: Report ID outside 1 to 255"},
      {"07 00 00 01 00", "6: Usage Page beyond 65535"},
      {"a4 a4 a4 a4 b4 b4 b4 b4", ""},
      {"a4 a4 a4 a4 a4", "10: Push beyond 4 levels"},
      {"b4", "6: Pop without a Push"},
      {"1a 01 00 2a ff 2f 09 01", ""},
      {"1a 01 00 2a 00 30 09 01", "12: more than 12288 usages"},
      {"96 00 30 b1 01 96 00 10 b1 01", "14: report of more than 16384 bytes"},
      {"85 01 96 00 30 b1 01 91 01 85 02 b1 01", ""},
      {"85 01 96 00 30 b1 01 a1 00 b1 01", "15: report of more than 16384 bytes"},
      {"96 00 30 b1 01 c0 a1 01 b1 01", "14: report of more than 16384 bytes"},  // one report in two collections
      {Repeated("09 01 b1 02", 256) + "b1 01 09 01 91 02", ""},
      {Repeated("09 01 b1 02", 257), "1032: report of more than 256 fields"},
      {any + "1a 00 00 2a fe 0f b1 00", ""},
      {any + "1a 00 00 2a ff 0f b1 00", "52: more than 65535 data indexes"},
      {Repeated("04", 4089), ""},
      {Repeated("04", 4090), "4096: descriptor of more than 4096 bytes"},
      {"a1 00", "9: the descriptor ends inside a collection"},
      {"c0 c0", "7: End Collection without a collection"},
      {"a9 01 a9 01", "8: Delimiter opened inside another"},
      {"a9 00", "6: Delimiter closed that is not open"},
      {"19 05 29 04", "8: Usage Maximum below Usage Minimum"},
      {"19 05 2b 06 00 01 00", "8: Usage Maximum on another page than Usage Minimum"},
      {"c4", "6: unknown global item"},
  };
  for (const auto& [items, why] : kCases) {
    const std::string refusal = Parsed("a1 01 75 08 95 01 " + items + " c0").refusal;
    EXPECT_EQ(refusal, (*why != 0 ? "byte " : "") + std::string(why)) << items;
  }
  EXPECT_EQ(Parsed("05 01 09 02").refusal, "byte 4: the descriptor ends without a collection");
  EXPECT_EQ(Parsed("a1 01 c0 a9 01").refusal, "byte 5: the descriptor ends with an open delimiter");
  for (const char* const end : {"26 ff", "27 ff ff ff", "fe", "fe 00", "fe 02 00 01"}) {
    EXPECT_EQ(Parsed(std::string("a1 01 c0 ") + end).refusal, "byte 3: item that runs past the end") << end;
  }
}

}  // namespace
}  // namespace test
