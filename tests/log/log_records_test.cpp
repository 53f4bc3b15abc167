#include "host/log/log_records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tavenhall {
namespace {

using testing::ElementsAre;

struct Cut {
  std::vector<std::string> records;  // "<time>|<host>|<message>"
  std::size_t foreignBytes = 0;
};

Cut cut(const std::string& log, std::size_t pieceSize) {
  Cut result;
  LogRecords records([&result](const LogRecord& record) {
    result.records.push_back(std::string(record.time) + "|" + std::string(record.host) + "|" +
                             std::string(record.message));
  });
  for (std::size_t at = 0; at < log.size(); at += pieceSize) {
    records.add(std::string_view(log).substr(at, pieceSize));
  }
  records.finish();
  result.foreignBytes = records.foreignBytes();
  return result;
}

constexpr const char* kTwoRecords =
    "November 21 2026 05:14:47 vm: first\n"
    "May 01 2027 23:00:01 studio.local: \n\nsecond\nline\n\n";

TEST(LogRecords, MessagesKeepTheirLineBreaks) {
  EXPECT_THAT(cut(kTwoRecords, 4096).records,
              ElementsAre("November 21 2026 05:14:47|vm|first",
                          "May 01 2027 23:00:01|studio.local|\n\nsecond\nline\n"));
}

TEST(LogRecords, PiecesOfAnySizeGiveTheSameRecords) {
  for (const std::size_t size : {1U, 2U, 7U, 40U}) {
    EXPECT_EQ(cut(kTwoRecords, size).records, cut(kTwoRecords, 4096).records) << size;
  }
}

TEST(LogRecords, ALastRecordWithoutItsNewlineCounts) {
  EXPECT_THAT(cut("July 04 2026 00:00:00 h: cut off in mid", 4096).records,
              ElementsAre("July 04 2026 00:00:00|h|cut off in mid"));
}

TEST(LogRecords, AMessageMayHoldAColon) {
  EXPECT_THAT(cut("July 04 2026 00:00:00 h: a: b\n", 4096).records,
              ElementsAre("July 04 2026 00:00:00|h|a: b"));
}

TEST(LogRecords, LinesThatOnlyLookLikeARecordBelongToTheMessage) {
  EXPECT_THAT(
      cut("July 04 2026 00:00:00 h: a\nJuly 4 2026 00:00:00 h: b\nJuli 04 2026 00:00:00 h: c\n", 4096).records,
      ElementsAre("July 04 2026 00:00:00|h|a\nJuly 4 2026 00:00:00 h: b\nJuli 04 2026 00:00:00 h: c"));
}

TEST(LogRecords, BytesBeforeTheFirstRecordAreForeign) {
  const Cut result = cut("#!/bin/sh\nJuly 04 2026 00:00:00 h: a\n", 4096);
  EXPECT_THAT(result.records, ElementsAre("July 04 2026 00:00:00|h|a"));
  EXPECT_EQ(result.foreignBytes, 10U);
}

TEST(LogRecords, AnEndlessLineDoesNotGrowTheMemory) {
  const Cut result = cut("July 04 2026 00:00:00 h: a\n" + std::string(10'000'000, 'x'), 65536);
  ASSERT_EQ(result.records.size(), 1U);
  EXPECT_LE(result.records[0].size(), LogRecords::kLongestRecord);
  EXPECT_GT(result.foreignBytes, 9'900'000U);
}

TEST(LogRecords, ALineThatIsTooLongIsCutAtTheSamePlaceInPiecesOfAnySize) {
  const std::string heading = "July 04 2026 00:00:00 h: ";
  const std::string log = heading + std::string(70'000, 'x') + "\n" + heading + "a\n" +
                          std::string(70'000, 'y') + "\n" + heading + "b\n";
  for (const std::size_t size : {1'000U, 65'536U, 65'537U, 262'144U}) {
    const Cut result = cut(log, size);
    EXPECT_THAT(result.records, ElementsAre("July 04 2026 00:00:00|h|" +
                                                std::string(LogRecords::kLongestRecord - heading.size(), 'x'),
                                            "July 04 2026 00:00:00|h|a", "July 04 2026 00:00:00|h|b"))
        << size;
    EXPECT_EQ(result.foreignBytes, heading.size() + 70'001 - LogRecords::kLongestRecord + 70'001) << size;
  }
}

TEST(LogRecords, TimesAreLocalTimes) {
  const std::time_t earlier = timeOfRecord("November 21 2026 05:14:47");
  EXPECT_EQ(timeOfRecord("November 21 2026 06:15:00") - earlier, 3613);
}

TEST(LogRecords, AnInvalidTimeIsMinusOne) {
  EXPECT_EQ(timeOfRecord(""), -1);
  EXPECT_EQ(timeOfRecord("Smarch 21 2026 05:14:47"), -1);
  EXPECT_EQ(timeOfRecord("May 21 2026 05:14"), -1);
}

}  // namespace
}  // namespace tavenhall
