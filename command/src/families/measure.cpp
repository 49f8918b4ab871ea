// The key "Measure": the samples stand in a CSV file beside the definition.
#include <filesystem>

#include "csv_reader.h"
#include "definition.h"

namespace qarv::command {

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
  Json json = Json::array();
  for (const double v : edit.GetParams()) json.push_back(WriteValue(v));
  return json;
}

const FieldTable<Edit> kEditFields{
    Enumeration("Kind", kEditKinds, &Edit::GetKind, &Edit::SetKind, Need::Required),
    Value("First", &Edit::GetFirst, &Edit::SetFirst),
    Value("Last", &Edit::GetLast, &Edit::SetLast),
    {"Params", false, ReadParams, WriteParams},
    Value("Note", &Edit::GetNote, &Edit::SetNote),
};

const FieldTable<Set> kFields{
    Value("MeasPath", &Set::GetMeasPath, &Set::SetMeasPath, Need::Required),
    {"DataEditLog", false,
     [](const Json& json, const Place& at, Set& set) {
       CDataEditLog log;
       for (const Edit& edit : ReadList(kEditFields, json, at)) log.Add(edit);
       set.SetDataEditLog(log);
     },
     [](const Set& set) { return WriteList(kEditFields, set.GetDataEditLog().GetElmList()); }},
};

// Not a field of the set: where the samples are read from, if not from MeasPath.
constexpr const char* kSamples = "Samples";

ParameterSet Read(const Json& json, const Place& at, bool hasFsamp) {
  MeasuredSet out{};
  ReadFields(kFields, json, at, out.set, kSamples);
  std::string path = out.set.GetMeasPath();
  if (json.contains(kSamples)) ReadValue(json[kSamples], at.Key(kSamples), &path);
  // A stream has no folder of its own: the working folder is meant.
  const bool stream = IsStream(at.GetFile());
  const auto folder = std::filesystem::path(stream ? "" : at.GetFile()).parent_path();
  MeasuredCsv csv = ReadCsv((folder / path).string());
  if (!hasFsamp) out.fsamp = SampleRateOf(csv);
  out.samples = std::move(csv.values);
  return out;
}

double OwnFsamp(const ParameterSet& set) { return std::get<MeasuredSet>(set).fsamp; }

Json Write(const CWaveDef& def, const std::string& samplesFile) {
  Json json = WriteFields(kFields, def.GetDefMeasure());
  json[kSamples] = WriteValue(samplesFile);
  return json;
}

}  // namespace

const Family kMeasureFamily{
    .key = "Measure",
    .title = "measured waveform",
    .type = CWaveDef::WAVE_TYPE_MEASURE,
    .read = Read,
    .ownFsamp = OwnFsamp,
    .write = Write,
};

}  // namespace qarv::command
