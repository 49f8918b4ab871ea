// The serial stream: what is written comes back, and hostile bytes do no harm.
#include "common/serial/serial_data.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace qarv::common {
namespace {

std::vector<unsigned char> BytesOf(const CSerialData& stream) {
  return {stream.GetData(), stream.GetData() + stream.GetSize()};
}

TEST(SerialData, GivesBackWhatWasWritten) {
  CSerialData stream;
  EXPECT_FALSE(stream.IsFinalize());
  const unsigned char raw[] = {9, 8, 7};
  EXPECT_TRUE(stream.Write(true));
  EXPECT_TRUE(stream.Write(4000000000U));
  EXPECT_TRUE(stream.Write(~uint64{0}));
  EXPECT_TRUE(stream.Write(-0.5));
  EXPECT_TRUE(stream.Write(std::string("a\0b", 3)));
  EXPECT_TRUE(stream.Write(raw, 3));
  EXPECT_TRUE(stream.Write(false));
  stream.Finalize();
  EXPECT_TRUE(stream.IsFinalize());
  for (int pass = 0; pass < 2; ++pass) {
    bool yes = false;
    unsigned int small = 0;
    uint64 large = 0;
    double number = 0;
    std::string text = "before";
    bool no = true;
    EXPECT_TRUE(stream.Read(&yes) && stream.Read(&small) && stream.Read(&large) &&
                stream.Read(&number) && stream.Read(&text));
    EXPECT_FALSE(stream.IsAtEnd());
    const unsigned char* const run = stream.ReadPtr(3);
    ASSERT_NE(run, nullptr);
    EXPECT_EQ(std::memcmp(run, raw, 3), 0);
    EXPECT_TRUE(stream.Read(&no));
    EXPECT_TRUE(yes);
    EXPECT_EQ(small, 4000000000U);
    EXPECT_EQ(large, ~uint64{0});
    EXPECT_EQ(number, -0.5);
    EXPECT_EQ(text, std::string("a\0b", 3));
    EXPECT_FALSE(no);
    EXPECT_TRUE(stream.IsAtEnd());
    stream.Finalize();  // starts over
  }
}

TEST(SerialData, HasLittleEndianValuesBehindATypeTag) {
  CSerialData stream;
  EXPECT_TRUE(stream.Write(true) && stream.Write(0x01020304U) &&
              stream.Write(uint64{0x1122334455667788}) && stream.Write(1.0) &&
              stream.Write(std::string("hi")));
  const std::vector<unsigned char> expected{
      'b', 1,                                                        //
      'u', 4,    3,    2,    1,                                      //
      'U', 0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11,           //
      'd', 0,    0,    0,    0,    0,    0,    0xF0, 0x3F,           //
      's', 2,    0,    0,    0,    0,    0,    0,    0,    'h', 'i'  //
  };
  EXPECT_EQ(BytesOf(stream), expected);
}

TEST(SerialData, ReadingAnotherTypeIsFalseAndMovesNothing) {
  CSerialData stream;
  const unsigned char byte = 5;
  EXPECT_TRUE(stream.Write(true) && stream.Write(1U) && stream.Write(uint64{2}) &&
              stream.Write(3.0) && stream.Write(std::string("x")) && stream.Write(&byte, 1));
  stream.Finalize();
  bool b = false;
  unsigned int u = 77;
  uint64 w = 77;
  double d = 77;
  std::string s = "77";
  // Before each value, every other type is refused.
  for (int at = 0; at < 6; ++at) {
    if (at != 0) {
      EXPECT_FALSE(stream.Read(&b));
    }
    if (at != 1) {
      EXPECT_FALSE(stream.Read(&u));
    }
    if (at != 2) {
      EXPECT_FALSE(stream.Read(&w));
    }
    if (at != 3) {
      EXPECT_FALSE(stream.Read(&d));
    }
    if (at != 4) {
      EXPECT_FALSE(stream.Read(&s));
    }
    if (at != 5) {
      EXPECT_EQ(stream.ReadPtr(1), nullptr);
    }
    EXPECT_EQ(u, at > 1 ? 1U : 77U);
    EXPECT_EQ(w, at > 2 ? 2U : 77U);
    EXPECT_EQ(d, at > 3 ? 3.0 : 77.0);
    EXPECT_EQ(s, at > 4 ? "x" : "77");
    const bool moved = at == 0   ? stream.Read(&b)
                       : at == 1 ? stream.Read(&u)
                       : at == 2 ? stream.Read(&w)
                       : at == 3 ? stream.Read(&d)
                       : at == 4 ? stream.Read(&s)
                                 : stream.ReadPtr(1) != nullptr;
    EXPECT_TRUE(moved) << at;
  }
  EXPECT_FALSE(stream.Read(&b)) << "the end of the data";
  EXPECT_FALSE(stream.Read(&s));
  EXPECT_EQ(stream.ReadPtr(1), nullptr);
}

TEST(SerialData, NullTargetsAndNullDataAreRefused) {
  CSerialData stream;
  EXPECT_FALSE(stream.Write(nullptr, uint64{3}));
  EXPECT_TRUE(stream.Write(nullptr, uint64{0}));
  EXPECT_EQ(stream.GetSize(), 0U);
  EXPECT_TRUE(stream.Write(1U));
  stream.Finalize();
  EXPECT_FALSE(stream.Read(static_cast<bool*>(nullptr)));
  EXPECT_FALSE(stream.Read(static_cast<unsigned int*>(nullptr)));
  EXPECT_FALSE(stream.Read(static_cast<unsigned long*>(nullptr)));
  EXPECT_FALSE(stream.Read(static_cast<unsigned long long*>(nullptr)));
  EXPECT_FALSE(stream.Read(static_cast<double*>(nullptr)));
  EXPECT_FALSE(stream.Read(static_cast<std::string*>(nullptr)));
  EXPECT_EQ(CSerialData(nullptr, 5).GetSize(), 0U);
}

TEST(SerialData, HasOneDirectionAtATime) {
  CSerialData stream;
  EXPECT_TRUE(stream.Write(1U));
  unsigned int v = 7;
  EXPECT_FALSE(stream.Read(&v)) << "being written";
  EXPECT_EQ(stream.ReadPtr(0), nullptr);
  EXPECT_FALSE(stream.IsAtEnd());
  stream.Finalize();
  EXPECT_FALSE(stream.Write(2U)) << "finished";
  const unsigned char byte = 1;
  EXPECT_FALSE(stream.Write(&byte, 1));
  EXPECT_EQ(stream.GetSize(), 5U);
  EXPECT_TRUE(stream.Read(&v));
  EXPECT_EQ(v, 1U);
}

TEST(SerialData, TakesBothSpellingsOf64Bits) {
  CSerialData stream;
  EXPECT_TRUE(stream.Write(static_cast<unsigned long>(1)) &&
              stream.Write(static_cast<unsigned long long>(2)) && stream.Write(std::uint64_t{3}));
  stream.Finalize();
  unsigned long long a = 0;
  unsigned long b = 0;
  std::uint64_t c = 0;
  EXPECT_TRUE(stream.Read(&a) && stream.Read(&b) && stream.Read(&c));
  EXPECT_EQ(a, 1U);
  EXPECT_EQ(b, 2U);
  EXPECT_EQ(c, 3U);
  unsigned long kept = 9;
  EXPECT_FALSE(stream.Read(&kept));
  EXPECT_EQ(kept, 9U);
}

TEST(SerialData, ALimitRefusesWhatWouldGoBeyondIt) {
  const std::string text = "12345";
  const unsigned char raw[4] = {};
  for (uint64 limit = 0; limit < 45; ++limit) {
    CSerialData stream;
    stream.SetSizeLimit(limit);
    uint64 size = 0;
    const auto expect = [&](bool written, uint64 n) {
      const bool fits = size + n <= limit;
      EXPECT_EQ(written, fits) << limit;
      if (fits) size += n;
      EXPECT_EQ(stream.GetSize(), size);
    };
    expect(stream.Write(text), 9 + 5);
    expect(stream.Write(1.0), 9);
    expect(stream.Write(raw, 4), 9 + 4);
    expect(stream.Write(1U), 5);
    expect(stream.Write(true), 2);
  }
  CSerialData stream;
  EXPECT_TRUE(stream.Write(1U));
  stream.SetSizeLimit(2);  // below what is there already
  EXPECT_FALSE(stream.Write(true));
  EXPECT_EQ(stream.GetSize(), 5U);
}

TEST(SerialData, ARunCanBeTakenInPieces) {
  const unsigned char raw[] = {1, 2, 3, 4, 5};
  CSerialData stream;
  EXPECT_TRUE(stream.Write(raw, 5) && stream.Write(7U));
  stream.Finalize();
  EXPECT_EQ(stream.ReadPtr(6), nullptr) << "more than the run holds, though bytes follow";
  const unsigned char* const first = stream.ReadPtr(2);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first[1], 2);
  unsigned int v = 0;
  EXPECT_FALSE(stream.Read(&v)) << "in the middle of a run";
  EXPECT_EQ(stream.ReadPtr(4), nullptr);
  EXPECT_NE(stream.ReadPtr(0), nullptr);
  const unsigned char* const second = stream.ReadPtr(3);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second, first + 2);
  EXPECT_TRUE(stream.Read(&v));
  EXPECT_EQ(v, 7U);
}

TEST(SerialData, TakesItsOwnBytesAsARun) {
  CSerialData stream;
  EXPECT_TRUE(stream.Write(std::string("some bytes to begin with")));
  for (int round = 0; round < 10; ++round) {  // the memory grows and moves in between
    const std::vector<unsigned char> before = BytesOf(stream);
    const uint64 skipped = static_cast<uint64>(round);
    ASSERT_TRUE(stream.Write(stream.GetData() + skipped, stream.GetSize() - skipped));
    std::vector<unsigned char> expected(before);
    expected.push_back('r');
    for (uint64 n = before.size() - skipped, k = 0; k < 8; ++k, n >>= 8) {
      expected.push_back(static_cast<unsigned char>(n & 0xff));
    }
    expected.insert(expected.end(), before.begin() + round, before.end());
    ASSERT_EQ(BytesOf(stream), expected) << round;
  }
}

TEST(SerialData, LengthsBeyondTheBytesAreRefused) {
  for (const unsigned char tag : std::vector<unsigned char>{'s', 'r'}) {
    for (const uint64 length :
         {uint64{4}, uint64{1} << 32, uint64{1} << 63, ~uint64{0} - 8, ~uint64{0}}) {
      std::vector<unsigned char> bytes{tag, 0, 0, 0, 0, 0, 0, 0, 0, 'a', 'b', 'c'};
      std::memcpy(bytes.data() + 1, &length, sizeof length);
      CSerialData stream(bytes);
      std::string text = "kept";
      EXPECT_FALSE(stream.Read(&text));
      EXPECT_EQ(text, "kept");
      EXPECT_EQ(stream.ReadPtr(length), nullptr);
      EXPECT_EQ(stream.ReadPtr(1), nullptr);
    }
  }
}

TEST(SerialData, ABoolHasTwoValues) {
  CSerialData stream(std::vector<unsigned char>{'b', 2});
  bool v = true;
  EXPECT_FALSE(stream.Read(&v));
  EXPECT_TRUE(v);
  EXPECT_FALSE(stream.IsAtEnd());
}

TEST(SerialData, EveryTruncationIsNoticed) {
  CSerialData whole;
  const unsigned char raw[3] = {1, 2, 3};
  EXPECT_TRUE(whole.Write(true) && whole.Write(1U) && whole.Write(uint64{2}) && whole.Write(3.0) &&
              whole.Write(std::string("text")) && whole.Write(raw, 3));
  for (uint64 n = 0; n <= whole.GetSize(); ++n) {
    CSerialData cut(whole.GetData(), n);
    bool b = false;
    unsigned int u = 0;
    uint64 w = 0;
    double d = 0;
    std::string s;
    const bool all = cut.Read(&b) && cut.Read(&u) && cut.Read(&w) && cut.Read(&d) && cut.Read(&s) &&
                     cut.ReadPtr(3) != nullptr;
    EXPECT_EQ(all, n == whole.GetSize()) << n;
  }
}

TEST(SerialData, ArbitraryBytesAreReadInBounds) {
  std::mt19937_64 random(4);
  for (int round = 0; round < 20000; ++round) {
    std::vector<unsigned char> bytes(random() % 40);
    for (unsigned char& byte : bytes) {
      constexpr unsigned char kTags[] = {'b', 'u', 'U', 'd', 's', 'r', 0, 1};
      byte = random() % 3 == 0 ? static_cast<unsigned char>(random()) : kTags[random() % 8];
    }
    CSerialData stream(bytes);
    for (int step = 0; step < 12; ++step) {
      bool b = false;
      unsigned int u = 0;
      uint64 w = 0;
      double d = 0;
      std::string s;
      switch (random() % 6) {
        case 0:
          static_cast<void>(stream.Read(&b));
          break;
        case 1:
          static_cast<void>(stream.Read(&u));
          break;
        case 2:
          static_cast<void>(stream.Read(&w));
          break;
        case 3:
          static_cast<void>(stream.Read(&d));
          break;
        case 4:
          if (stream.Read(&s)) {
            EXPECT_LE(s.size(), bytes.size());
          }
          break;
        default: {
          const uint64 n = 1 + random() % 20;
          const unsigned char* const run = stream.ReadPtr(n);
          if (run != nullptr) {
            EXPECT_GE(run, stream.GetData());
            EXPECT_LE(run + n, stream.GetData() + stream.GetSize());
          }
        }
      }
    }
    EXPECT_EQ(BytesOf(stream), bytes);
  }
}

TEST(SerialData, IsAValueOnCopies) {
  CSerialData stream;
  EXPECT_TRUE(stream.Write(1U) && stream.Write(2U));
  stream.Finalize();
  unsigned int v = 0;
  EXPECT_TRUE(stream.Read(&v));
  CSerialData copy(stream);
  EXPECT_TRUE(copy.Read(&v));
  EXPECT_EQ(v, 2U) << "the copy goes on where the original was";
  EXPECT_TRUE(stream.Read(&v));
}

}  // namespace
}  // namespace qarv::common
