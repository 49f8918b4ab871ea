// The log of edits: a value with a record.
#include "data_edit_log/data_edit_log.h"

#include <gtest/gtest.h>

#include "value_semantics.h"

namespace qarv::data_edit_log {
namespace {

CDataEditLogElm Edit() {
  CDataEditLogElm edit;
  edit.SetKind(CDataEditLogElm::EDIT_LOW_PASS);
  edit.SetFirst(10);
  edit.SetLast(20);
  edit.SetParams({500.0, 4.0});
  edit.SetNote("anti-alias");
  return edit;
}

CDataEditLog Log() {
  CDataEditLog log;
  log.Add(Edit());
  log.Add(CDataEditLogElm());
  return log;
}

TEST(DataEditLog, AnEditIsAValueWithARecord) {
  test::CheckValueOperations(Edit());
  test::CheckRecord(Edit());
  test::CheckEachFieldAlone<CDataEditLogElm>({
      [](CDataEditLogElm& e) { e.SetKind(CDataEditLogElm::EDIT_CUT); },
      [](CDataEditLogElm& e) { e.SetFirst(1); },
      [](CDataEditLogElm& e) { e.SetLast(1); },
      [](CDataEditLogElm& e) { e.SetParams({1.0}); },
      [](CDataEditLogElm& e) { e.SetNote("x"); },
  });
}

TEST(DataEditLog, IsAValueWithARecord) {
  test::CheckValueOperations(Log());
  test::CheckRecord(Log());
}

TEST(DataEditLog, KeepsTheOrderOfTheEdits) {
  const CDataEditLog log = Log();
  ASSERT_EQ(log.GetElmNum(), 2U);
  EXPECT_EQ(log.GetElmList().front().GetNote(), "anti-alias");
  EXPECT_EQ(log.GetElmList().back().GetKind(), CDataEditLogElm::EDIT_NONE);
}

}  // namespace
}  // namespace qarv::data_edit_log
