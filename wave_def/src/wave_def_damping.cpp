// CWaveDefDamping: its list of elements and its record.
#include "wave_def/wave_def_damping.h"

#include <cassert>
#include <cstddef>
#include <iterator>

#include "common/record/record_codec.h"

namespace qarv::wave_def {
namespace {

/// The place of element `index`, reached from the nearer end of the list.
auto At(auto& list, common::uint64 index) {
  assert(index < list.size());
  const auto i = static_cast<std::ptrdiff_t>(index);
  const auto n = static_cast<std::ptrdiff_t>(list.size());
  return i <= n / 2 ? std::next(list.begin(), i) : std::prev(list.end(), n - i);
}

}  // namespace

CWaveDefDamping::~CWaveDefDamping() = default;
bool CWaveDefDamping::Serialize(common::CSerialData* stream) { return set_.Serialize(stream); }

bool CWaveDefDamping::Insert(common::uint64 index, const CWaveDefDampingElm& elm) {
  return Insert(index, CWaveDefDampingElm(elm));
}

bool CWaveDefDamping::Insert(common::uint64 index, CWaveDefDampingElm&& elm) {
  if (index >= GetElmNum()) return false;
  set_->Elms.insert(At(set_->Elms, index), std::move(elm));
  return true;
}

bool CWaveDefDamping::Change(common::uint64 index, const CWaveDefDampingElm& elm) {
  if (index >= GetElmNum()) return false;
  (*this)[index] = elm;
  return true;
}

void CWaveDefDamping::DeleteElmByIndex(common::uint64 index) {
  set_->Elms.erase(At(set_->Elms, index));
}

CWaveDefDampingElm& CWaveDefDamping::operator[](common::uint64 index) {
  return *At(set_->Elms, index);
}

const CWaveDefDampingElm& CWaveDefDamping::operator[](common::uint64 index) const {
  return *At(set_->Elms, index);
}

}  // namespace qarv::wave_def
