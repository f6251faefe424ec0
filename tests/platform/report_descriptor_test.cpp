#include "platform/standin/report_descriptor.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/hex.h"

namespace test {
namespace {

using Bytes = std::vector<std::uint8_t>;
using platform::HidCollection;
using Lines = std::vector<std::string>;

platform::ReportDescriptor Parsed(const Bytes& bytes) {
  auto parsed = platform::ParseReportDescriptor(ExactBlock(bytes).view());
  EXPECT_NE(parsed.collections.empty(), parsed.refusal.empty());
  return parsed;
}

std::string RefusalOf(const Bytes& bytes) { return Parsed(bytes).refusal; }

std::vector<HidCollection> Collections(const std::string& hex) {
  const auto parsed = Parsed(Hex(hex));
  EXPECT_EQ(parsed.refusal, "") << hex;
  return parsed.collections;
}

/// The one collection around `items`, on page FF00 with values of 8 bits, one at a time.
HidCollection Around(const std::string& items) {
  auto collections = Collections("06 00 ff 09 01 a1 01 75 08 95 01 " + items + " c0");
  EXPECT_EQ(collections.size(), 1U);
  return collections.empty() ? HidCollection() : collections[0];
}

std::string Repeated(const std::string& hex, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += hex + " ";
  return all;
}

std::string Indexes(USHORT first, USHORT last, bool range) {
  std::ostringstream text;
  text << std::hex << first;
  if (range || last != 0) text << '-' << last;  // what is reserved shows when it is not 0
  return text.str();
}

/// The feature values as "id page:usage bits x count @data index", all in hexadecimal.
Lines Values(const HidCollection& collection) {
  EXPECT_EQ(collection.caps.NumberFeatureValueCaps, collection.values.size());
  Lines lines;
  for (const HIDP_VALUE_CAPS& caps : collection.values) {
    const bool range = caps.IsRange != FALSE;
    std::ostringstream line;
    line << std::hex << int{caps.ReportID} << ' ' << caps.UsagePage << ':'
         << Indexes(caps.Range.UsageMin, caps.Range.UsageMax, range) << ' ' << caps.BitSize << 'x' << caps.ReportCount
         << " @" << Indexes(caps.Range.DataIndexMin, caps.Range.DataIndexMax, range);
    lines.push_back(line.str());
  }
  return lines;
}

/// Page, usage and length of feature reports.
std::vector<int> Shape(const HIDP_CAPS& caps) { return {caps.UsagePage, caps.Usage, caps.FeatureReportByteLength}; }

TEST(ReportDescriptorParser, TopLevelCollectionsCountForThemselves) {
  const auto both = Collections(
      "05 01 09 06 a1 01 85 01 75 08 95 03 09 30 b1 02 09 31 a1 02 c0 09 32 a1 02 95 01 09 33 b1 02 c0 c0 "
      "05 0c 0a 34 12 a1 01 85 02 95 01 09 40 b1 02 09 41 81 02 c0");
  ASSERT_EQ(both.size(), 2U);
  EXPECT_EQ(Shape(both[0].caps), (std::vector{1, 6, 5}));
  EXPECT_EQ(Values(both[0]), (Lines{"1 1:30 8x3 @0", "1 1:33 8x1 @1"}));
  EXPECT_EQ(Shape(both[1].caps), (std::vector{0x0C, 0x1234, 2}));
  EXPECT_EQ(Values(both[1]), (Lines{"2 c:40 8x1 @0"}));
  // One report in two collections: each has the length of its own part.
  const auto shared = Collections("a1 01 75 08 95 04 b1 01 c0 a1 01 95 02 b1 01 c0");
  ASSERT_EQ(shared.size(), 2U);
  EXPECT_EQ(Shape(shared[0].caps), (std::vector{0, 0, 5}));
  EXPECT_EQ(Shape(shared[1].caps), (std::vector{0, 0, 3}));
}

TEST(ReportDescriptorParser, KeysAreSeenWhereverTheyAre) {
  const auto has_keys = [](const char* descriptor) { return Parsed(Hex(descriptor)).has_keys; };
  EXPECT_TRUE(has_keys("05 01 09 06 a1 01 c0"));
  EXPECT_TRUE(has_keys("05 01 09 07 a1 01 c0"));
  EXPECT_TRUE(has_keys("06 5a ff 0b 06 00 01 00 a1 01 c0")) << "its page in the usage itself";
  EXPECT_TRUE(has_keys("06 5a ff 09 01 a1 01 05 01 09 06 a1 01 c0 c0")) << "deeper down";
  EXPECT_TRUE(has_keys("06 5a ff 09 01 a1 01 09 04 05 07 75 01 95 01 81 02 c0")) << "the page behind the usage";
  EXPECT_TRUE(has_keys("06 5a ff 09 01 a1 01 a4 05 07 19 04 29 65 75 08 95 06 81 00 b4 c0"));
  EXPECT_TRUE(has_keys("06 5a ff 09 01 a1 01 05 01 19 01 29 08 75 08 95 08 81 02 c0")) << "in a range";
  EXPECT_FALSE(has_keys("06 5a ff 09 06 a1 01 09 07 75 08 95 01 b1 02 c0")) << "a vendor's usages 6 and 7";
  EXPECT_FALSE(has_keys("05 01 09 02 a1 01 05 09 19 01 29 08 75 01 95 08 81 02 c0")) << "a mouse's buttons";
  EXPECT_TRUE(has_keys("06 5a ff 09 01 a1 01 05 07 19 04 29 65 05 09 09 01 75 08 95 06 81 00 c0"))
      << "another page behind";
  EXPECT_TRUE(
      has_keys("06 5a ff 09 01 a1 01 a9 01 0b 01 00 09 00 1b 04 00 07 00 2b 65 00 07 00 a9 00 75 08 95 06 81 00 c0"))
      << "an alternative";
  EXPECT_TRUE(has_keys("06 5a ff 09 01 a1 01 a4 05 01 09 06 b4 a1 01 c0 c0")) << "a page that is gone again";
}

TEST(ReportDescriptorParser, LengthIsThatOfTheLongestReportInWholeBytes) {
  EXPECT_EQ(Around("85 01 75 03 95 03 b1 01 85 02 95 01 b1 01").caps.FeatureReportByteLength, 3);
  EXPECT_EQ(Around("75 04 b1 01 75 05 b1 01").caps.FeatureReportByteLength, 3);  // without report ids
  EXPECT_EQ(Around("95 00 09 30 b1 02 95 01 75 00 09 30 b1 02").caps.FeatureReportByteLength, 0);
  // Fields outside of collections are nobody's.
  const auto outside = Collections("75 08 95 08 09 30 b1 02 a1 01 09 31 b1 02 c0 09 32 b1 02");
  ASSERT_EQ(outside.size(), 1U);
  EXPECT_EQ(outside[0].caps.FeatureReportByteLength, 9);
  EXPECT_EQ(Values(outside[0]), (Lines{"0 0:31 8x8 @0"}));
}

TEST(ReportDescriptorParser, UsagesShareTheValuesOfAField) {
  const struct {
    const char* items;
    Lines values;
  } kCases[] = {
      {"09 30 09 31 95 05 b1 02", {"0 ff00:31 8x4 @0", "0 ff00:30 8x1 @1"}},
      {"09 30 09 31 09 32 95 02 b1 02", {"0 ff00:31 8x1 @0", "0 ff00:30 8x1 @1"}},
      {"19 30 29 33 95 04 b1 02", {"0 ff00:30-33 8x4 @0-3"}},
      {"19 30 29 33 95 06 b1 02 09 40 b1 02", {"0 ff00:30-33 8x6 @0-3", "0 ff00:40 8x6 @4"}},
      {"1a 00 00 2a ff ff 95 03 b1 02", {"0 ff00:0-2 8x3 @0-2"}},
      {"19 30 29 33 b1 02", {"0 ff00:30 8x1 @0"}},
      {"19 30 29 31 09 40 95 04 b1 02", {"0 ff00:40 8x2 @0", "0 ff00:30-31 8x2 @1-2"}},
      {"95 04 b1 02 09 30 b1 02", {"0 ff00:30 8x4 @0"}},  // without a usage: no capability
      {"09 30 b1 03 b1 03 09 32 b1 01 09 31 b1 02", {"0 ff00:30 8x1 @0", "0 ff00:31 8x1 @1"}},  // constants
      {"09 30 b1 00 75 01 09 31 b1 02 75 08 09 32 b1 02", {"0 ff00:32 8x1 @2"}},  // buttons, and then a value
      {"0b 31 00 0c 00 b1 02", {"0 c:31 8x1 @0"}},                                // the page in the usage
      {"1b 31 00 0c 00 2b 32 00 0c 00 95 02 b1 02", {"0 c:31-32 8x2 @0-1"}},
      {"09 30 05 0c b1 02", {"0 c:30 8x1 @0"}},  // the page in force at the main item
      {"a9 01 09 30 09 31 19 01 29 09 a9 00 09 32 95 02 b1 02", {"0 ff00:32 8x1 @0", "0 ff00:30 8x1 @1"}},
      {"a9 01 09 30 a9 00 a9 01 09 31 09 32 a9 00 95 02 b1 02", {"0 ff00:31 8x1 @0", "0 ff00:30 8x1 @1"}},
      {"fe 03 c0 c0 c0 c0 09 30 39 07 79 04 fe 00 00 b1 02 fc", {"0 ff00:30 8x1 @0"}},  // long, reserved, decoration
      {"09 30 d0 09 31 b1 02 fb 01 02 03 04 c9 05", {"0 ff00:31 8x1 @0"}},              // unknown main and local items
      {"08 b1 02", {"0 ff00:0 8x1 @0"}},                                                // items without data
  };
  for (const auto& c : kCases) EXPECT_EQ(Values(Around(c.items)), c.values) << c.items;
  EXPECT_EQ(Around("b1 02").caps.FeatureReportByteLength, 2);
}

TEST(ReportDescriptorParser, GlobalsReturnAfterPop) {
  EXPECT_EQ(Values(Around("85 07 a4 85 08 75 10 95 02 06 01 ff 09 31 b1 02 b4 15 80 34 44 54 64 09 32 b1 02")),
            (Lines{"8 ff01:31 10x2 @0", "7 ff00:32 8x1 @1"}));
}

TEST(ReportDescriptorParser, LimitsHoldAndOneBeyondIsRefused) {
  const std::string open = "a1 01 75 08 95 01 ";
  const auto refusal = [&](const std::string& items) { return RefusalOf(Hex(open + items + " c0")); };
  const struct {
    std::string at, beyond, why;
  } kCases[] = {
      {"76 00 01", "76 01 01", "byte 6: Report Size beyond 256 bits"},
      {"96 00 30", "96 01 30", "byte 6: Report Count beyond 12288"},
      {"85 01 86 ff 00", "85 00", "byte 6: Report ID outside 1 to 255"},
      {"85 01", "86 00 01", "byte 6: Report ID outside 1 to 255"},
      {"07 ff ff 00 00", "07 00 00 01 00", "byte 6: Usage Page beyond 65535"},
      {"a4 a4 a4 a4 b4 b4 b4 b4", "a4 a4 a4 a4 a4", "byte 10: Push beyond 4 levels"},
      {"1a 01 00 2a ff 2f 09 01", "1a 01 00 2a 00 30 09 01", "byte 12: more than 12288 usages"},
      {"96 ff 2f b1 01 96 00 10 b1 01", "96 00 30 b1 01 96 00 10 b1 01", "byte 14: report of more than 16384 bytes"},
      {"85 01 96 00 30 b1 01 91 01 85 02 b1 01", "85 01 96 00 30 b1 01 a1 00 b1 01",
       "byte 15: report of more than 16384 bytes"},
      {Repeated("09 01 b1 02", 256) + "b1 01 09 01 91 02", Repeated("09 01 b1 02", 257),
       "byte 1032: report of more than 256 fields"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(refusal(c.at), "") << c.at;
    EXPECT_EQ(refusal(c.beyond + " c0"), c.why) << c.beyond;
  }
  EXPECT_EQ(Around("96 ff 2f b1 01 96 00 10 b1 01").caps.FeatureReportByteLength, 16384);
  // A report that goes on in another collection is still one report.
  EXPECT_EQ(RefusalOf(Hex("a1 01 75 08 96 00 30 b1 01 c0 a1 01 b1 01 c0")), "byte 12: report of more than 16384 bytes");

  // Ranges end where the usages of an item do; data indexes end where their records do.
  const std::string any = "1a 00 00 2a ff ff b1 00 ";
  EXPECT_EQ(refusal(Repeated(any, 5) + "1a 00 00 2a fe 0f b1 00"), "");
  EXPECT_EQ(refusal(Repeated(any, 5) + "1a 00 00 2a ff 0f b1 00"), "byte 52: more than 65535 data indexes");

  EXPECT_EQ(RefusalOf(Hex("a1 01 c0 " + Repeated("04", 4093))), "");
  EXPECT_EQ(RefusalOf(Hex("a1 01 c0 " + Repeated("04", 4094))), "byte 4096: descriptor of more than 4096 bytes");
}

TEST(ReportDescriptorParser, WhatIsWrongIsToldWithItsPlace) {
  const struct {
    const char* hex;
    const char* why;
  } kCases[] = {
      {"", "byte 0: the descriptor ends without a collection"},
      {"05 01 09 02", "byte 4: the descriptor ends without a collection"},
      {"a1 01 a1 00 c0", "byte 5: the descriptor ends inside a collection"},
      {"a1 01 c0 c0", "byte 3: End Collection without a collection"},
      {"a1 01 c0 a9 01", "byte 5: the descriptor ends with an open delimiter"},
      {"a1 01 a9 01 a9 01", "byte 4: Delimiter opened inside another"},
      {"a1 01 a9 00", "byte 2: Delimiter closed that is not open"},
      {"a1 01 b4", "byte 2: Pop without a Push"},
      {"a1 01 19 05 29 04", "byte 4: Usage Maximum below Usage Minimum"},
      {"a1 01 19 05 2b 06 00 01 00", "byte 4: Usage Maximum on another page than Usage Minimum"},
      {"a1 01 c4 c0", "byte 2: unknown global item"},
      {"a1 01 c0 26 ff", "byte 3: item that runs past the end"},
      {"a1 01 c0 27 ff ff ff", "byte 3: item that runs past the end"},
      {"a1 01 c0 fe", "byte 3: item that runs past the end"},
      {"a1 01 c0 fe 00", "byte 3: item that runs past the end"},
      {"a1 01 c0 fe 02 00 01", "byte 3: item that runs past the end"},
  };
  for (const auto& c : kCases) EXPECT_EQ(RefusalOf(Hex(c.hex)), c.why) << c.hex;
}

}  // namespace
}  // namespace test
