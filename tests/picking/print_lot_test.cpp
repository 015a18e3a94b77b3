#include "picking/print_lot.h"

#include <set>
#include <thread>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

/// An empty database on 2026-11-21.
class PrintLotTest : public SampleTest {
 protected:
  PrintLotTest() { SetDay("2026-11-21"); }

  void SetDay(const std::string& day) {
    host_.SetClock([day] { return DateTime::Parse(day + " 10:00:00").value(); });
  }
  void GiveLot(int order, const std::string& lot) {
    Run("INSERT INTO IC_Web2ERPOrdersEx (FID, FLotNumber) VALUES (" + std::to_string(order) + ", '" + lot + "')");
  }
  double Reserve(std::int32_t count = 1) { return GetPrintOrderLotNumber(database_.connection(), count); }
};

TEST_F(PrintLotTest, CountsFromTheFirstRunEver) {
  EXPECT_EQ(Reserve(), 1);
  EXPECT_EQ(Reserve(), 2);
  EXPECT_EQ(Reserve(5), 3);
  EXPECT_EQ(Reserve(), 8);
  EXPECT_EQ(Read("SELECT FNumber FROM IC_MaxNum"), "202611|");
  EXPECT_EQ(Read("SELECT FMaxNum FROM ICMaxNum"), "8|");
}

TEST_F(PrintLotTest, GoesOnBehindTheLotsOfOrdersInTheFirstRun) {
  GiveLot(1, "20261112");
  GiveLot(2, "2026119");
  GiveLot(3, "202610400");
  GiveLot(4, "");
  EXPECT_EQ(Reserve(), 13);
  EXPECT_EQ(Reserve(), 14);
}

TEST_F(PrintLotTest, StartsAnewInANewMonth) {
  EXPECT_EQ(Reserve(), 1);
  EXPECT_EQ(Reserve(), 2);
  SetDay("2026-12-01");
  EXPECT_EQ(Reserve(), 1);
  EXPECT_EQ(Reserve(), 2);
  EXPECT_EQ(Read("SELECT FNumber FROM IC_MaxNum"), "202612|");
  // Unless orders have lots of that month already: the tenth after the ninth, by number and not by text.
  GiveLot(1, "2027019");
  GiveLot(2, "2027012");
  SetDay("2027-01-02");
  EXPECT_EQ(Reserve(), 10);
  GiveLot(3, "20270110");
  SetDay("2027-02-01");
  EXPECT_EQ(Reserve(), 1);
  SetDay("2027-01-31");
  EXPECT_EQ(Reserve(), 11);
}

// The month is there and the counter is not: the run that makes it counts it as one that was.
TEST_F(PrintLotTest, SkipsANumberWhenTheCounterIsMissing) {
  EXPECT_EQ(Reserve(), 1);
  Run("DELETE FROM ICMaxNum");
  EXPECT_EQ(Reserve(), 2);
  EXPECT_EQ(Reserve(), 2);
  EXPECT_EQ(Reserve(), 3);
}

TEST_F(PrintLotTest, NumbersTheOrdersOfARun) {
  GiveLot(7, "202610400");
  const Vector run{Dictionary{{"FID", 9}}, Dictionary{{"Order", "7"}, {"FID", 1}}, Dictionary{{"FID", 8}}};
  EXPECT_TRUE(save().SavePrintSerialNumber(dsn_, &run));
  const std::string states = "SELECT FLotNumber + '/' + FSerialNumber FROM IC_Web2ERPOrdersEx ORDER BY FID";
  EXPECT_EQ(Read(states), "2026111/2|2026111/3|2026111/1|");
  EXPECT_EQ(Read("SELECT FID FROM IC_Web2ERPOrdersEx WHERE FOrderID = '' ORDER BY FID"), "8|9|");
  for (int i = 2; i < 10; ++i) EXPECT_TRUE(save().SavePrintSerialNumber(dsn_, &run));
  const Vector again{Dictionary{{"FID", 7}}};
  EXPECT_TRUE(save().SavePrintSerialNumber(dsn_, &again));
  EXPECT_EQ(Read(states), "20261110/1|2026119/3|2026119/1|");
}

TEST_F(PrintLotTest, TakesNoNumberWithoutAListAndOneForAnEmptyList) {
  const Vector none;
  const Vector some{Dictionary{{"FID", 1}}};
  EXPECT_FALSE(save().SavePrintSerialNumber(dsn_, nullptr));
  EXPECT_FALSE(save().SavePrintSerialNumber("", &some));
  EXPECT_EQ(Read("SELECT FMaxNum FROM ICMaxNum"), "");
  EXPECT_TRUE(save().SavePrintSerialNumber(dsn_, &none));
  EXPECT_EQ(Read("SELECT FMaxNum FROM ICMaxNum"), "1|");
  // The number is lost when the orders cannot be numbered, and nothing of them is stored.
  const Vector wrong{Dictionary{{"FID", 1}}, Dictionary{{"FID", "none"}}};
  EXPECT_EQ(Raised([&] { save().SavePrintSerialNumber(dsn_, &wrong); }),
            std::to_string(error_number::kStatementError) + " SavePrintSerialNumber");
  const Vector empty{Dictionary{}};
  EXPECT_EQ(Raised([&] { save().SavePrintSerialNumber(dsn_, &empty); }), "9 SavePrintSerialNumber");
  EXPECT_EQ(Reserve(), 4);
}

TEST_F(PrintLotTest, NamesItselfInItsErrors) {
  Run("DROP TABLE ICMaxNum");
  EXPECT_EQ(Raised([&] { Reserve(); }), std::to_string(error_number::kNoSuchTable) + " GetPrintOrderLotNumber");
}

TEST_F(PrintLotTest, GivesThreadsDifferentNumbers) {
  constexpr int kRuns = 60;
  Reserve();
  std::vector<double> numbers[3];
  std::vector<std::thread> threads;
  for (std::vector<double>& mine : numbers) {
    threads.emplace_back([&mine, this] {
      const std::unique_ptr<Connection> connection = OpenConnection(database_.database());
      for (int i = 0; i < kRuns; ++i) mine.push_back(GetPrintOrderLotNumber(*connection, 1));
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::set<double> all;
  for (const std::vector<double>& mine : numbers) all.insert(mine.begin(), mine.end());
  EXPECT_EQ(all.size(), std::size(numbers) * kRuns);
  EXPECT_EQ(*all.rbegin(), 1 + std::size(numbers) * kRuns);
}

}  // namespace
}  // namespace tessarlorn
