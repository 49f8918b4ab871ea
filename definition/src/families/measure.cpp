// The key "Measure": the samples stand in the definition, or where its source finds them.
#include <utility>

#include "family.h"

namespace qarv::definition {

using data_edit_log::CDataEditLog;
using wave_def::CWaveDef;
using Set = wave_def::CWaveDefMeasure;
using Edit = data_edit_log::CDataEditLogElm;

namespace {

const EnumNames kEditKinds{
    {Edit::EDIT_NONE, "EDIT_NONE"},           {Edit::EDIT_CUT, "EDIT_CUT"},
    {Edit::EDIT_ZERO, "EDIT_ZERO"},           {Edit::EDIT_OFFSET, "EDIT_OFFSET"},
    {Edit::EDIT_SCALE, "EDIT_SCALE"},         {Edit::EDIT_DETREND, "EDIT_DETREND"},
    {Edit::EDIT_TAPER, "EDIT_TAPER"},         {Edit::EDIT_LOW_PASS, "EDIT_LOW_PASS"},
    {Edit::EDIT_HIGH_PASS, "EDIT_HIGH_PASS"}, {Edit::EDIT_RESAMPLE, "EDIT_RESAMPLE"},
    {Edit::EDIT_INTEGRATE, "EDIT_INTEGRATE"}, {Edit::EDIT_DIFFERENTIATE, "EDIT_DIFFERENTIATE"},
};

void ReadParams(const Json& json, const Place& at, Edit& edit) {
  if (!json.is_array()) at.Fail("is not a list");
  common::CDataArrayFloatT<double> params(json.size());
  for (std::size_t i = 0; i < json.size(); ++i) ReadValue(json[i], at.Element(i), &params[i]);
  edit.SetParams(params);
}

Json WriteParams(const Edit& edit) {
  JsonTree json(Json::array());
  for (const double v : edit.GetParams()) json.Root().push_back(WriteValue(v));
  return json.Take();
}

const FieldTable<Edit> kEditFields{
    Enumeration("Kind", kEditKinds, &Edit::GetKind, &Edit::SetKind, {"", "what was done"},
                Need::Required),
    Value("First", &Edit::GetFirst, &Edit::SetFirst, {"samples", "first sample that was edited"}),
    Value("Last", &Edit::GetLast, &Edit::SetLast, {"samples", "last sample that was edited"}),
    Special<Edit>("Params", ValueKind::Numbers, "", ReadParams, WriteParams,
                  {"", "parameters of the edit, as its kind has them"}),
    Value("Note", &Edit::GetNote, &Edit::SetNote, {"", "note to the edit, free text"}),
};

const FieldTable<Set> kFields{
    Value("MeasPath", &Set::GetMeasPath, &Set::SetMeasPath,
          {"", "file that was measured; the samples are read from it, unless there are Samples"},
          Need::Required),
    Special<Set>(
        "DataEditLog", ValueKind::List, "DataEditLog",
        [](const Json& json, const Place& at, Set& set) {
          CDataEditLog log;
          for (const Edit& edit : ReadList(kEditFields, json, at)) log.Add(edit);
          set.SetDataEditLog(log);
        },
        [](const Set& set) { return WriteList(kEditFields, set.GetDataEditLog().GetElmList()); },
        {"", "edits that were made to the samples"}),
};

// Not a field of the set: the samples, or where they are read from, if not from MeasPath.
constexpr const char* kSamples = "Samples";

Samples ReadSamples(const Json& json, const Place& at) {
  Samples out;
  out.values.Resize(json.size());
  for (std::size_t i = 0; i < json.size(); ++i) {
    ReadValue(json[i], at.Element(i), &out.values[i]);
  }
  return out;
}

ParameterSet Read(const Json& json, const Place& at, const ReadContext& context) {
  MeasuredSet out;
  ReadFields(kFields, json, at, out.set, {kSamples});
  std::string path = out.set.GetMeasPath();
  const auto given = json.find(kSamples);
  if (given != json.end() && given->is_array()) {
    out.samples = ReadSamples(*given, at.Key(kSamples));
    if (out.samples.values.GetSize() == 0) at.Key(kSamples).Fail("has no samples");
    return out;
  }
  if (given != json.end()) ReadValue(*given, at.Key(kSamples), &path);
  if (!context.source) at.Key(kSamples).Fail("is not a list, and there are no files here");
  out.samples = context.source(path, !context.hasFsamp);
  return out;
}

double OwnFsamp(const ParameterSet& set) { return std::get<MeasuredSet>(set).samples.fsamp; }

Json Write(const ParameterSet& set, const std::string& samplesFile) {
  const auto& measured = std::get<MeasuredSet>(set);
  JsonTree json(WriteFields(kFields, measured.set));
  if (samplesFile.empty()) {
    Json& samples = Member(json.Root(), kSamples) = Json::array();
    for (const double v : measured.samples.values) samples.push_back(WriteValue(v));
  } else {
    Member(json.Root(), kSamples) = WriteValue(samplesFile);
  }
  return json.Take();
}

std::vector<SetInfo> DescribeAll(const Family& family) {
  SetInfo set = Describe(family.key, family.title, true, kFields);
  set.fields.push_back(InfoOf(kSamples, ValueKind::Samples, Need::Optional,
                              {"amplitude unit",
                               "samples, or the file to read them from while "
                               "MeasPath stays as it is"}));
  return {std::move(set),
          Describe("DataEditLog", "an edit of measured samples", false, kEditFields)};
}

}  // namespace

template <>
const FieldTable<Set>& FieldsOf<Set>() {
  return kFields;
}
template <>
const FieldTable<Edit>& FieldsOf<Edit>() {
  return kEditFields;
}

const FamilyTable kMeasureFamily{
    .family = {"Measure", "measured waveform", CWaveDef::WAVE_TYPE_MEASURE},
    .read = Read,
    .ownFsamp = OwnFsamp,
    .write = Write,
    .parametersOf =
        [](const CWaveDef& def) {
          return ParameterSet(MeasuredSet{def.GetDefMeasure(), {def.GetWave(), def.GetFsamp()}});
        },
    .describe = DescribeAll,
};

}  // namespace qarv::definition
