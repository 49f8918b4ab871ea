// The value machinery: a list of fields becomes comparison, clearing and a record.
#include "common/record/field_set.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <list>
#include <string>

#include "common/record/record_codec.h"
#include "value_semantics.h"

namespace qarv::common {
namespace {

enum Colour : std::int32_t { kRed = 0, kBlue = -1 };

/// A set with one field of every kind that a record can hold.
class Part {
  struct Fields {
    double X = 2.5;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) { return std::tie(f.X); }
  };
  FieldSet<Fields> set_;

 public:
  bool operator==(const Part&) const = default;
  void Clear() { set_.Clear(); }
  bool Serialize(CSerialData* stream) { return set_.Serialize(stream); }
  double GetX() const { return set_->X; }
  void SetX(double v) { set_->X = v; }
};

class Whole {
 public:
  struct Fields {
    bool Flag = true;
    unsigned int Small = 3;
    uint64 Large = 4;
    double Number = 0.5;
    std::string Text = "text";
    Colour Kind = kRed;
    Part Nested;
    std::list<Part> Parts;
    bool operator==(const Fields&) const = default;
    static auto Record(auto& f) {
      return std::tie(f.Flag, f.Small, f.Large, f.Number, f.Text, f.Kind, f.Nested, f.Parts);
    }
  };

  bool operator==(const Whole&) const = default;
  void Clear() { set_.Clear(); }
  bool Serialize(CSerialData* stream) { return set_.Serialize(stream); }
  Fields* operator->() { return set_.operator->(); }

 private:
  FieldSet<Fields> set_;
};

struct OneKind {
  Colour Kind = kRed;
  static auto Record(auto& f) { return std::tie(f.Kind); }
};

Whole Filled() {
  Whole whole;
  whole->Flag = false;
  whole->Text = "other";
  whole->Kind = kBlue;
  whole->Nested.SetX(-1);
  whole->Parts.resize(3);
  whole->Parts.back().SetX(9);
  return whole;
}

TEST(FieldSet, IsAValue) { test::CheckValueOperations(Filled()); }

TEST(FieldSet, KeepsItsRecordWhateverHappensToTheStream) { test::CheckRecord(Filled()); }

TEST(FieldSet, IsUnequalWhenAnyFieldAloneDiffers) {
  test::CheckEachFieldAlone<Whole>({
      [](Whole& w) { w->Flag = false; },
      [](Whole& w) { w->Small = 0; },
      [](Whole& w) { w->Large = 0; },
      [](Whole& w) { w->Number = 0; },
      [](Whole& w) { w->Text = ""; },
      [](Whole& w) { w->Kind = kBlue; },
      [](Whole& w) { w->Nested.SetX(0); },
      [](Whole& w) { w->Parts.emplace_back(); },
  });
}

TEST(FieldSet, ClearsToTheInitialisersOfItsFields) {
  Whole whole = Filled();
  whole.Clear();
  EXPECT_TRUE(whole->Flag);
  EXPECT_EQ(whole->Text, "text");
  EXPECT_EQ(whole->Nested.GetX(), 2.5);
}

TEST(FieldSet, ANaNEqualsOnlyItsOwnObject) {
  Whole whole;
  whole->Number = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(whole == Whole(whole));
  const Whole& same = whole;
  EXPECT_TRUE(whole == same);
}

TEST(RecordCodec, AnEnumerationIsWidenedWithItsSignAndKeepsItsLow32Bits) {
  FieldSet<OneKind> set;
  set->Kind = kBlue;
  CSerialData stream;
  ASSERT_TRUE(set.Serialize(&stream));
  stream.Finalize();
  unsigned int version = 0;
  uint64 wide = 0;
  EXPECT_TRUE(stream.Read(&version) && stream.Read(&wide));
  EXPECT_EQ(version, 1U);
  EXPECT_EQ(wide, ~uint64{0});

  CSerialData other;
  EXPECT_TRUE(other.Write(1U) && other.Write(uint64{0x1234567800000007}));
  other.Finalize();
  EXPECT_TRUE(set.Serialize(&other));
  EXPECT_EQ(static_cast<int>(set->Kind), 7);
}

TEST(RecordCodec, AHostileCountOfElementsEndsWithTheBytes) {
  Whole source;
  source->Parts.resize(2);
  auto record = test::RecordOf(source);
  const std::size_t count = record.size() - 2 * 14 - 8;  // behind its tag, before the two parts
  ASSERT_EQ(record[count], 2);
  for (const uint64 n : {uint64{3}, uint64{1} << 40, ~uint64{0}}) {
    std::memcpy(record.data() + count, &n, sizeof n);
    Whole back = Filled();
    EXPECT_FALSE(test::Load(record, &back));
    EXPECT_TRUE(back == Whole());
  }
}

}  // namespace
}  // namespace qarv::common
