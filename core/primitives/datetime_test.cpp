#include "core/primitives/datetime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <ctime>

namespace lw {
namespace {

int ErrorNumber(auto&& call) {
  try {
    call();
  } catch (const RuntimeError& e) {
    return e.number();
  }
  return 0;
}

Date At(int y, int mo, int d, int h, int mi, int s) {
  return MakeDate(y, mo, d, h, mi, s);
}

void ExpectSameSecond(Date a, Date b) {
  CivilTime x = SplitDate(a), y = SplitDate(b);
  EXPECT_EQ(std::tie(x.year, x.month, x.day, x.hour, x.minute, x.second),
            std::tie(y.year, y.month, y.day, y.hour, y.minute, y.second));
}

TEST(DateDiff, CountsBoundariesCrossed) {
  EXPECT_EQ(DateDiff(u"n", At(2026, 3, 1, 10, 0, 59), At(2026, 3, 1, 10, 1, 0)), 1);
  EXPECT_EQ(DateDiff(u"n", At(2026, 3, 1, 10, 0, 0), At(2026, 3, 1, 10, 0, 59)), 0);
  EXPECT_EQ(DateDiff(u"n", At(2026, 3, 1, 10, 1, 0), At(2026, 3, 1, 10, 0, 59)), -1);
  EXPECT_EQ(DateDiff(u"h", At(2026, 3, 1, 10, 59, 59), At(2026, 3, 1, 11, 0, 0)), 1);
  EXPECT_EQ(DateDiff(u"H", At(2026, 3, 1, 10, 0, 0), At(2026, 3, 1, 12, 59, 0)), 2);
  EXPECT_EQ(DateDiff(u"d", At(2026, 3, 1, 23, 59, 59), At(2026, 3, 2, 0, 0, 0)), 1);
  EXPECT_EQ(DateDiff(u"d", At(2026, 3, 2, 0, 0, 0), At(2026, 3, 2, 23, 59, 59)), 0);
  EXPECT_EQ(DateDiff(u"D", At(2026, 3, 10, 0, 0, 0), At(2026, 3, 1, 12, 0, 0)), -9);
  EXPECT_EQ(DateDiff(u"n", At(2025, 12, 31, 23, 0, 0), At(2026, 1, 1, 1, 0, 0)), 120);
  Date d = At(2026, 7, 4, 13, 14, 15);
  EXPECT_EQ(DateDiff(u"n", d, d), 0);
  EXPECT_EQ(DateDiff(u"d", d, d), 0);
  // Before the epoch the serial's fraction runs the other way; the count must not care.
  EXPECT_EQ(DateDiff(u"h", At(1899, 12, 29, 6, 0, 0), At(1899, 12, 29, 8, 0, 0)), 2);
  EXPECT_EQ(DateDiff(u"d", At(1899, 12, 29, 23, 0, 0), At(1899, 12, 30, 1, 0, 0)), 1);
  // A moment that arithmetic left a hair short of a whole minute still counts as that minute.
  Date almost(At(2026, 3, 1, 10, 1, 0).serial - 1e-9);
  EXPECT_EQ(DateDiff(u"n", At(2026, 3, 1, 10, 0, 30), almost), 1);
}

TEST(DateAdd, UnitsAndTheEpoch) {
  Date d = At(2026, 2, 28, 22, 30, 0);
  ExpectSameSecond(DateAdd(u"d", 1, d), At(2026, 3, 1, 22, 30, 0));
  ExpectSameSecond(DateAdd(u"h", 2, d), At(2026, 3, 1, 0, 30, 0));
  ExpectSameSecond(DateAdd(u"n", -31, d), At(2026, 2, 28, 21, 59, 0));
  ExpectSameSecond(DateAdd(u"N", 90, d), At(2026, 3, 1, 0, 0, 0));
  ExpectSameSecond(DateAdd(u"d", 1.9, d), At(2026, 3, 1, 22, 30, 0));  // whole units only
  ExpectSameSecond(DateAdd(u"h", -20, At(1899, 12, 30, 6, 0, 0)), At(1899, 12, 29, 10, 0, 0));
  ExpectSameSecond(DateAdd(u"h", 30, At(1899, 12, 28, 6, 0, 0)), At(1899, 12, 29, 12, 0, 0));
  // Ten thousand minute steps do not drift off the second.
  Date t = d;
  for (int i = 0; i < 10000; ++i) t = DateAdd(u"n", 1, t);
  ExpectSameSecond(t, DateAdd(u"n", 10000, d));
  EXPECT_EQ(DateDiff(u"n", d, t), 10000);
}

TEST(DateAdd, BadUnitsAndRangesRaise5) {
  Date d = At(2026, 1, 1, 0, 0, 0);
  EXPECT_EQ(ErrorNumber([&] { DateAdd(u"m", 1, d); }), 5);
  EXPECT_EQ(ErrorNumber([&] { DateAdd(u"", 1, d); }), 5);
  EXPECT_EQ(ErrorNumber([&] { DateAdd(u"dd", 1, d); }), 5);
  EXPECT_EQ(ErrorNumber([&] { DateDiff(u"s", d, d); }), 5);
  EXPECT_EQ(ErrorNumber([&] { DateAdd(u"d", 1e9, d); }), 5);
  EXPECT_EQ(ErrorNumber([&] { DateAdd(u"d", std::nan(""), d); }), 5);
  EXPECT_EQ(ErrorNumber([&] { DateDiff(u"d", Date(std::nan("")), d); }), 5);
}

TEST(Clock, FixedAndLocal) {
  Clock clock;
  Date fixed = At(2026, 5, 6, 7, 8, 9);
  clock.Fix(fixed);
  EXPECT_TRUE(clock.fixed());
  EXPECT_EQ(clock.Now(), fixed);
  EXPECT_EQ(clock.Today(), At(2026, 5, 6, 0, 0, 0));
  clock.Release();
  EXPECT_FALSE(clock.fixed());

  std::time_t t = std::time(nullptr);
  std::tm local{};
  localtime_r(&t, &local);
  Date now = clock.Now();
  Date expected =
      At(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
  EXPECT_LE(std::fabs(DateDiff(u"n", expected, now)), 1);
  EXPECT_FALSE(HasTimePart(clock.Today()));
  EXPECT_EQ(DateDiff(u"d", clock.Today(), now), 0);
}

}  // namespace
}  // namespace lw
