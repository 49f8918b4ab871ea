// Settings of spectra and verdicts from JSON.
#include "settings.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "definition/error.h"
#include "json_fields.h"
#include "json_text.h"

namespace qarv::capi {

using definition::Error;
using definition::Field;
using definition::FieldTable;
using definition::Json;
using definition::Place;

namespace {

void Read(const Json& json, const Place& at, int* v) {
  unsigned int count = 0;
  definition::ReadValue(json, at, &count);
  constexpr unsigned int kMost = std::numeric_limits<int>::max();
  *v = static_cast<int>(std::min(count, kMost));  // what is too large is said where it is used
}

template <class T>
void Read(const Json& json, const Place& at, T* v) {
  definition::ReadValue(json, at, v);
}

template <class T>
void Read(const Json& json, const Place& at, std::optional<T>* v) {
  T value{};
  Read(json, at, &value);
  *v = value;
}

/// A member that a key sets.
template <class Set, class Owner, class T>
Field<Set> Setting(const char* key, T Owner::*member) {
  Field<Set> field;
  field.info.key = key;
  field.read = [member](const Json& json, const Place& at, Set& set) {
    Read(json, at, &(set.*member));
  };
  return field;
}

FieldTable<SpectrumRequest> OfSpectrum() {
  using R = SpectrumRequest;
  return {
      Setting<R>("response", &R::response),
      Setting<R>("q", &R::q),
      Setting<R>("damping", &R::damping),
      Setting<R>("from", &R::from),
      Setting<R>("to", &R::to),
      Setting<R>("per-octave", &R::perOctave),
      Setting<R>("points", &R::points),
  };
}

FieldTable<JudgeRequest> OfJudgement() {
  using R = JudgeRequest;
  return {
      Setting<R>("dv-tol", &R::dvTol),
      Setting<R>("force", &R::force),
      Setting<R>("unit", &R::unit),
      Setting<R>("begin", &R::begin),
  };
}

FieldTable<SynthesisRequest> OfSynthesis() {
  using R = SynthesisRequest;
  return {
      Setting<R>("shape", &R::shape),       Setting<R>("method", &R::method),
      Setting<R>("minimize", &R::minimize), Setting<R>("within", &R::within),
      Setting<R>("seed", &R::seed),         Setting<R>("quick", &R::quick),
      Setting<R>("force", &R::force),
  };
}

template <class Set>
Set RequestOf(std::string_view text, const FieldTable<Set>& table) {
  Set request;
  if (text.empty()) return request;
  const definition::JsonTree tree = definition::ParseJson(text);
  const Json& json = tree.Root();
  if (!json.is_object()) Place().Fail("is not a JSON object");
  try {
    definition::ReadFields(table, json, Place(), request);
  } catch (const Error& e) {
    throw Error(e.GetKind(), e.GetKey(), e.GetText(), definition::LineOf(text, e.GetKey()));
  }
  return request;
}

}  // namespace

SpectrumRequest WaveSpectrumRequest(std::string_view text) { return RequestOf(text, OfSpectrum()); }

SpectrumRequest RecordSpectrumRequest(std::string_view text) {
  FieldTable<SpectrumRequest> table = OfSpectrum();
  table.push_back(Setting<SpectrumRequest>("unit", &SpectrumRequest::unit));
  return RequestOf(text, table);
}

JudgeRequest JudgeRequestOf(std::string_view text) { return RequestOf(text, OfJudgement()); }

SynthesisRequest SynthesisRequestOf(std::string_view text) {
  return RequestOf(text, OfSynthesis());
}

}  // namespace qarv::capi
