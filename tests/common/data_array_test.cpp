// The sample arrays: values, checked access, range checks with their lines, ring copies, records.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <iostream>
#include <limits>
#include <numeric>
#include <random>
#include <stdexcept>
#include <streambuf>
#include <vector>

#include "common/data_array/data_array_float_t.h"
#include "common/data_array/data_array_integer_t.h"
#include "throwing_new.h"
#include "value_semantics.h"

namespace qarv::common {
namespace {

using Doubles = CDataArrayFloatT<double>;
using Counts = CDataArrayIntegerT<unsigned long long>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<double> Values(const Doubles& array) { return {array.begin(), array.end()}; }

/// What the call prints on the error stream.
template <class Call>
std::string Printed(Call call) {
  ::testing::internal::CaptureStderr();
  call();
  return ::testing::internal::GetCapturedStderr();
}

/// Expects one line of a failed check with the message's Shift-JIS bytes, and gives its line
/// number.
int ExpectReport(const std::string& printed, const std::string& message) {
  const std::string head = "[Error] common/data_array/data_array_float_t_private.h(";
  EXPECT_TRUE(printed.starts_with(head)) << printed;
  EXPECT_TRUE(printed.ends_with(std::string(")").append(message).append("\n"))) << printed;
  EXPECT_EQ(std::count(printed.begin(), printed.end(), '\n'), 1);
  return std::atoi(printed.c_str() + head.size());
}

// The messages, byte by byte in code page 932.
const std::string kBadIndex =
    "\x83\x43\x83\x93\x83\x66\x83\x62\x83\x4E\x83\x58\x95\x73\x90\xB3";  // インデックス不正
const std::string kEndOver =  // 終端インデックスオーバー
    "\x8F\x49\x92\x5B\x83\x43\x83\x93\x83\x66\x83\x62\x83\x4E\x83\x58\x83\x49\x81\x5B\x83\x6F\x81"
    "\x5B";
const std::string kSrcShort =
    "SRC\x82\xCC\x97\x76\x91\x66\x90\x94\x95\x73\x91\xAB";  // SRCの要素数不足
const std::string kDstShort =
    "DST\x82\xCC\x97\x76\x91\x66\x90\x94\x95\x73\x91\xAB";  // DSTの要素数不足

// ---- Values ------------------------------------------------------------------------------------

TEST(DataArray, IsAValue) { test::CheckValueOperations(Doubles{1.0, -2.0, 0.5}); }

TEST(DataArray, ACountMakesZeros) {
  EXPECT_EQ(Values(Doubles(3)), (std::vector<double>{0, 0, 0}));
  EXPECT_EQ(Doubles(0).GetSize(), 0U);
  EXPECT_EQ(Counts(2)[1], 0U);
}

TEST(DataArray, AssignmentReusesStorageThatIsLargeEnough) {
  Doubles target(100);
  const double* const storage = target.GetData();
  const Doubles source{1.0, 2.0};
  target = source;
  EXPECT_EQ(target.GetData(), storage);
  EXPECT_EQ(target, source);
}

TEST(DataArray, AMoveTakesTheStorageOver) {
  Doubles source{1.0, 2.0};
  const double* const storage = source.GetData();
  Doubles target(std::move(source));
  EXPECT_EQ(target.GetData(), storage);
  EXPECT_EQ(source.GetSize(), 0U);
  source = std::move(target);
  EXPECT_EQ(source.GetData(), storage);
  EXPECT_EQ(target.GetSize(), 0U);
}

TEST(DataArray, ANaNIsEqualToNothing) {
  const Doubles a{1.0, kNaN};
  EXPECT_FALSE(a == a);
  EXPECT_FALSE(a == Doubles(a));
  EXPECT_TRUE(Doubles{} == Doubles{});
  EXPECT_TRUE((Doubles{0.0} == Doubles{-0.0}));
  EXPECT_FALSE((Doubles{0.0} == Doubles{0.0, 0.0}));
}

// ---- Size and access ---------------------------------------------------------------------------

TEST(DataArray, AccessOutsideThrowsOutOfRange) {
  Doubles array{1.0, 2.0};
  const Doubles& same = array;
  array[1] = 3.0;
  EXPECT_EQ(same[1], 3.0);
  for (const uint64 i : {uint64{2}, ~uint64{0}}) {
    for (const auto& access : {std::function<void()>([&] { array[i] = 0.0; }),
                               std::function<void()>([&] { static_cast<void>(same[i]); })}) {
      try {
        access();
        ADD_FAILURE() << i;
      } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "invalid vector<T> subscript");
      }
    }
  }
}

TEST(DataArray, ClearKeepsTheStorageAndShrinkReturnsIt) {
  Doubles array(1000);
  const double* const storage = array.GetData();
  array.Clear();
  EXPECT_EQ(array.GetSize(), 0U);
  array.Resize(1000);
  EXPECT_EQ(array.GetData(), storage);
  array.Clear();
  array.Shrink();
  EXPECT_EQ(array.GetData(), nullptr);
}

TEST(DataArray, NewElementsAreZero) {
  Doubles array{1.0, 2.0, 3.0};
  array.Resize(1);
  array.Resize(4);
  EXPECT_EQ(Values(array), (std::vector<double>{1, 0, 0, 0}));
}

TEST(DataArray, TooLongIsALengthErrorAndTooLargeAnAllocationError) {
  Doubles array{1.0};
  for (const uint64 n : {uint64{1} << 61, ~uint64{0}}) {
    try {
      array.Resize(n);
      ADD_FAILURE() << n;
    } catch (const std::length_error& e) {
      EXPECT_STREQ(e.what(), "vector<T> too long");
    }
    EXPECT_THROW(array.Reserve(n), std::length_error);
    EXPECT_THROW(Doubles tooLong(n), std::length_error);
  }
  EXPECT_THROW(array.Resize((uint64{1} << 61) - 1), std::bad_alloc);
  EXPECT_THROW(array.Resize(uint64{1} << 50), std::bad_alloc);
  EXPECT_EQ(Values(array), std::vector<double>{1.0}) << "a failure changes nothing";
}

TEST(DataArray, SetDataCopiesOrZeroesAndShrinksOnRequest) {
  const std::vector<double> source{1, 2, 3};
  Doubles array(1000);
  const double* const storage = array.GetData();
  array.SetData(3, source.data(), false);
  EXPECT_EQ(Values(array), source);
  EXPECT_EQ(array.GetData(), storage) << "without the flag the storage stays";
  array.SetData(2, nullptr, true);
  EXPECT_EQ(Values(array), (std::vector<double>{0, 0}));
  array.SetData(0, source.data(), true);
  EXPECT_EQ(array.GetSize(), 0U);
  EXPECT_EQ(array.GetData(), nullptr) << "shrunk to nothing";
}

// ---- The largest magnitude ---------------------------------------------------------------------

TEST(GetAbsMax, IsTheLargestMagnitudeOfTheRange) {
  const Doubles x{-3.0, 2.0};
  EXPECT_EQ(x.GetAbsMax(0, 0), 3.0);
  EXPECT_EQ(x.GetAbsMax(1, 0), 2.0);
  EXPECT_EQ(x.GetAbsMax(1, 1), 2.0);
  EXPECT_EQ(x.GetAbsMax(0, 1), 3.0);
  EXPECT_EQ((Counts{4, 9, 2}.GetAbsMax(0, 0)), 9U);
}

TEST(GetAbsMax, OfAnEmptyArrayNeedsNoMemoryForItsLine) {
  const Doubles empty;
  double peak = -1.0;
  const std::string printed = Printed([&] {
    const test::Starved starved(1, test::Starved::How::FromThenOn);
    EXPECT_NO_THROW(peak = empty.GetAbsMax(0, 0));
    EXPECT_EQ(test::AllocationsSoFar(), 0U);
  });
  ExpectReport(printed, kEndOver);
  EXPECT_EQ(peak, 0.0);
}

TEST(GetAbsMax, DoesNotThrowWhereTheErrorStreamDoes) {
  struct Full : std::streambuf {};  // takes nothing
  Full full;
  std::streambuf* const buffer = std::cerr.rdbuf(&full);
  std::cerr.exceptions(std::ios::badbit);
  const Doubles empty;
  EXPECT_NO_THROW(EXPECT_EQ(empty.GetAbsMax(0, 0), 0.0));
  EXPECT_TRUE(std::cerr.bad());
  std::cerr.exceptions(std::ios::goodbit);
  std::cerr.rdbuf(buffer);
}

TEST(ArrayReport, ALineThatIsTooLongIsCutAndStillALine) {
  const std::string path(1000, 'p');
  const std::string printed = Printed([&] { ReportArrayError(path.c_str(), 7, "message"); });
  EXPECT_EQ(printed, "[Error] " + path.substr(0, 503) + "\n");
}

TEST(GetAbsMax, StartsAtZeroAndPassesOverNaN) {
  const double zero = Doubles{-0.0}.GetAbsMax(0, 0);
  EXPECT_EQ(zero, 0.0);
  EXPECT_FALSE(std::signbit(zero));
  EXPECT_EQ((Doubles{kNaN, 1.0, kNaN, -2.0, kNaN}.GetAbsMax(0, 0)), 2.0);
  EXPECT_EQ((Doubles{kNaN, kNaN}.GetAbsMax(0, 0)), 0.0);
  EXPECT_EQ((Doubles{1.0, -HUGE_VAL}.GetAbsMax(0, 0)), HUGE_VAL);
}

TEST(GetAbsMax, ReportsAnEndBeyondTheArray) {
  double value = 1.0;
  const int line = ExpectReport(Printed([&] { value = Doubles{}.GetAbsMax(0, 0); }), kEndOver);
  EXPECT_EQ(value, 0.0);
  const Doubles two{1.0, 2.0};
  EXPECT_EQ(ExpectReport(Printed([&] { value = two.GetAbsMax(2, 1); }), kEndOver), line);
  EXPECT_EQ(value, 0.0);
  ExpectReport(Printed([&] { value = two.GetAbsMax(0, 3); }), kEndOver);
}

TEST(GetAbsMax, ReportsAStartBehindTheEnd) {
  const Doubles two{1.0, 2.0};
  double value = 1.0;
  const int line = ExpectReport(Printed([&] { value = two.GetAbsMax(3, 0); }), kBadIndex);
  EXPECT_EQ(value, 0.0);
  // start + count wraps to 1: the last index is 0.
  EXPECT_EQ(ExpectReport(Printed([&] { value = two.GetAbsMax(2, ~uint64{0}); }), kBadIndex), line);
  EXPECT_NE(line, ExpectReport(Printed([&] { value = two.GetAbsMax(2, 1); }), kEndOver));
}

TEST(GetAbsMax, AgreesWithOneRunningMaximumOnArbitraryRanges) {
  std::mt19937_64 random(2);
  for (int round = 0; round < 500; ++round) {
    Doubles x(1 + random() % 100);
    for (double& v : x) v = random() % 7 == 0 ? kNaN : static_cast<double>(random() % 2001) - 1000;
    const uint64 start = random() % x.GetSize();
    const uint64 count = random() % (x.GetSize() - start + 1);
    double expected = 0.0;
    const uint64 end = count == 0 ? x.GetSize() : start + count;
    for (uint64 i = start; i < end; ++i) {
      if (std::fabs(x[i]) > expected) expected = std::fabs(x[i]);
    }
    EXPECT_EQ(x.GetAbsMax(start, count), expected);
  }
}

// ---- Ring copy ---------------------------------------------------------------------------------

TEST(RingCopy, StartsAtThePositionsAndWraps) {
  const Doubles src{0, 1, 2, 3, 4};
  Doubles dst(5);
  EXPECT_TRUE(Doubles::RingCopy(dst, src, 7, 0, 5));
  EXPECT_EQ(Values(dst), (std::vector<double>{2, 3, 4, 0, 1}));
  Doubles wide(7);
  EXPECT_TRUE(Doubles::RingCopy(wide, src, 0, 5, 4));
  EXPECT_EQ(Values(wide), (std::vector<double>{2, 3, 0, 0, 0, 0, 1}));
}

TEST(RingCopy, ReportsASourceOrDestinationThatIsTooShort) {
  const Doubles three{1, 2, 3};
  Doubles five(5);
  Doubles two{8, 9};
  bool done = true;
  const int src =
      ExpectReport(Printed([&] { done = Doubles::RingCopy(five, three, 0, 0, 5); }), kSrcShort);
  EXPECT_FALSE(done);
  const int dst =
      ExpectReport(Printed([&] { done = Doubles::RingCopy(two, three, 0, 0, 3); }), kDstShort);
  EXPECT_FALSE(done);
  EXPECT_NE(src, dst);
  // Where both are too short, the source is reported, as it is looked at first.
  EXPECT_EQ(
      ExpectReport(Printed([&] { done = Doubles::RingCopy(two, three, 0, 0, 9); }), kSrcShort),
      src);
  EXPECT_EQ(Values(two), (std::vector<double>{8, 9}));
}

TEST(RingCopy, OfNothingIsTrueWhateverTheSizes) {
  Doubles empty;
  Doubles two{8, 9};
  EXPECT_EQ(Printed([&] {
              EXPECT_TRUE(Doubles::RingCopy(empty, empty, 5, 6, 0));
              EXPECT_TRUE(Doubles::RingCopy(two, empty, 5, 6, 0));
              EXPECT_TRUE(Doubles::RingCopy(empty, two, 5, 6, 0));
            }),
            "");
}

TEST(RingCopy, HugePositionsDoNotHang) {
  const Doubles src{0, 1, 2};
  Doubles dst(4);
  EXPECT_TRUE(Doubles::RingCopy(dst, src, ~uint64{0}, ~uint64{0}, 3));  // 0 in src, 3 in dst
  EXPECT_EQ(Values(dst), (std::vector<double>{1, 2, 0, 0}));
}

TEST(RingCopy, AgreesWithOneElementAfterTheOther) {
  std::mt19937_64 random(3);
  for (int round = 0; round < 2000; ++round) {
    Doubles src(1 + random() % 12);
    std::iota(src.begin(), src.end(), 1.0);
    Doubles dst(1 + random() % 12);
    const uint64 count = random() % (std::min(src.GetSize(), dst.GetSize()) + 1);
    const uint64 srcPos = random() % 40;
    const uint64 dstPos = random() % 40;
    const bool same = random() % 4 == 0;  // within one array, where an element may be read again
    std::vector<double> expected = Values(same ? src : dst);
    const std::vector<double> before = Values(src);
    for (uint64 k = 0; k < count; ++k) {
      const std::vector<double>& from = same ? expected : before;
      expected[(dstPos + k) % expected.size()] = from[(srcPos + k) % from.size()];
    }
    Doubles& target = same ? src : dst;
    ASSERT_TRUE(Doubles::RingCopy(target, src, srcPos, dstPos, count));
    ASSERT_EQ(Values(target), expected);
  }
}

// ---- Records -----------------------------------------------------------------------------------

TEST(DataArrayRecord, KeepsItsRecordWhateverHappensToTheStream) {
  test::CheckRecord(Doubles{1.5, -2.0, 1e300});
  test::CheckRecord(Doubles{});
}

TEST(DataArrayRecord, IsVersionCountAndTheBytesOfTheSamples) {
  const std::vector<unsigned char> expected{'u', 1, 0, 0, 0, 'U', 1, 0, 0, 0, 0, 0, 0, 0,    'r', 8,
                                            0,   0, 0, 0, 0, 0,   0, 0, 0, 0, 0, 0, 0, 0xF8, 0xBF};
  EXPECT_EQ(test::RecordOf(Doubles{-1.5}), expected);
}

TEST(DataArrayRecord, KeepsEveryBitOfASample) {
  Doubles source{kNaN, -0.0, std::numeric_limits<double>::denorm_min()};
  const auto record = test::RecordOf(source);
  Doubles back;
  ASSERT_TRUE(test::Load(record, &back));
  EXPECT_EQ(test::RecordOf(back), record);
}

TEST(DataArrayRecord, ACountBeyondTheBytesIsRefusedWithoutAllocating) {
  for (const uint64 count : {uint64{2}, uint64{1} << 40, uint64{1} << 61, (uint64{1} << 61) + 1,
                             uint64{1} << 63, ~uint64{0}}) {
    auto record = test::RecordOf(Doubles{1.0});
    std::memcpy(record.data() + 6, &count, sizeof count);
    Doubles array{7.0};
    EXPECT_FALSE(test::Load(record, &array)) << count;
    EXPECT_EQ(array.GetSize(), 0U);
    const uint64 bytes = 8 * count;  // the length of the run made to fit, where it can
    std::memcpy(record.data() + 15, &bytes, sizeof bytes);
    EXPECT_FALSE(test::Load(record, &array)) << count;
  }
}

TEST(DataArrayRecord, FewerSamplesThanTheRunLeaveTheRestOfItUnread) {
  auto record = test::RecordOf(Doubles{1.0, 2.0});
  record[6] = 1;  // one of the two
  CSerialData stream(record);
  Doubles array;
  EXPECT_TRUE(array.Serialize(&stream));
  EXPECT_EQ(Values(array), std::vector<double>{1.0});
  EXPECT_FALSE(stream.IsAtEnd());
}

TEST(DataArrayRecord, ALoadedArrayIsShrunkToItsSize) {
  Doubles array(100000);
  const double* const storage = array.GetData();
  ASSERT_TRUE(test::Load(test::RecordOf(Doubles{1.0}), &array));
  array.Resize(2);
  EXPECT_NE(array.GetData(), storage);
}

}  // namespace
}  // namespace qarv::common
