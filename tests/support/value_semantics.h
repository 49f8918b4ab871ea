// What every parameter set must do as a value and as a record, checked once for all of them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "common/serial/serial_data.h"

namespace qarv::test {

using common::CSerialData;
using common::uint64;

template <class Set>
std::vector<unsigned char> RecordOf(const Set& set) {
  Set source(set);
  CSerialData stream;
  EXPECT_TRUE(source.Serialize(&stream));
  return {stream.GetData(), stream.GetData() + stream.GetSize()};
}

template <class Set>
bool Load(const std::vector<unsigned char>& bytes, Set* set) {
  CSerialData stream(bytes);
  return set->Serialize(&stream);
}

/// Defaults, copy, move, assignment to itself, comparison.
template <class Set>
void CheckValueOperations(const Set& filled) {
  const Set fresh;
  EXPECT_TRUE(fresh == Set{});
  EXPECT_FALSE(fresh != Set{});
  EXPECT_TRUE(filled != fresh);

  Set copy(filled);
  EXPECT_TRUE(copy == filled);
  Set& alias = copy;
  copy = alias;
  EXPECT_TRUE(copy == filled) << "copy assignment to itself does nothing";
  copy = std::move(alias);
  EXPECT_TRUE(copy == filled) << "move assignment to itself does nothing";

  Set moved(std::move(copy));
  EXPECT_TRUE(moved == filled);
  EXPECT_TRUE(copy == fresh) << "a move leaves the source cleared";
  copy = std::move(moved);
  EXPECT_TRUE(copy == filled);
  EXPECT_TRUE(moved == fresh) << "a move assignment leaves the source cleared";
  moved = copy;
  EXPECT_TRUE(moved == filled);
  copy.Clear();
  EXPECT_TRUE(copy == fresh);
}

/// Round trip, any version word, every truncation, a writer that fails at every byte, a null
/// stream.
template <class Set>
void CheckRecord(const Set& filled) {
  const Set fresh;
  Set source(filled);
  EXPECT_FALSE(source.Serialize(nullptr));
  EXPECT_TRUE(source == filled) << "a null stream touches nothing";

  const std::vector<unsigned char> record = RecordOf(filled);
  Set back;
  EXPECT_TRUE(Load(record, &back));
  EXPECT_TRUE(back == filled);
  EXPECT_EQ(RecordOf(back), record);

  std::vector<unsigned char> otherVersion = record;
  otherVersion[1] = 7;  // behind the tag, the lowest byte of the version word
  Set fromOther;
  EXPECT_TRUE(Load(otherVersion, &fromOther));
  EXPECT_TRUE(fromOther == filled) << "any version word is accepted";

  for (std::size_t n = 0; n < record.size(); ++n) {
    Set cut(filled);
    EXPECT_FALSE(Load({record.begin(), record.begin() + static_cast<std::ptrdiff_t>(n)}, &cut))
        << "cut at byte " << n;
    EXPECT_TRUE(cut == fresh) << "cleared when cut at byte " << n;

    CSerialData full;
    full.SetSizeLimit(n);
    EXPECT_FALSE(source.Serialize(&full)) << "no room beyond byte " << n;
    EXPECT_TRUE(source == filled) << "a failed write changes nothing";
    EXPECT_TRUE(std::equal(full.GetData(), full.GetData() + full.GetSize(), record.begin()))
        << "what was written before the failure stays, up to byte " << n;
  }
}

/// Every field alone makes a set unequal, in either direction, and comes back from its record.
/// `changes` holds one function per field, each setting that field away from its default.
template <class Set>
void CheckEachFieldAlone(const std::vector<void (*)(Set&)>& changes) {
  const Set fresh;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE("field " + std::to_string(i + 1));
    Set changed;
    changes[i](changed);
    EXPECT_TRUE(changed != fresh);
    EXPECT_FALSE(fresh == changed);
    Set back;
    EXPECT_TRUE(Load(RecordOf(changed), &back));
    EXPECT_TRUE(back == changed);
  }
}

}  // namespace qarv::test
