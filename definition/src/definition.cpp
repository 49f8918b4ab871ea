// A definition: JSON, record, waveform.
#include "definition/definition.h"

#include <array>

#include "com_def/com_def_system_const.h"
#include "common/serial/serial_data.h"
#include "family.h"
#include "json_text.h"
#include "rules/rules.h"

namespace qarv::definition {

using wave_def::CWaveDef;

namespace {

const std::array<const FamilyTable*, 7> kFamilies{
    &kClassicalFamily, &kSymmetryFamily, &kSineBeatBurstFamily, &kMeasureFamily,
    &kGradualFamily,   &kSingleFamily,   &kDampingFamily,
};

// Where an editor finds the schema; it says nothing of the waveform.
constexpr const char* kSchema = "$schema";

}  // namespace

template <>
const FieldTable<CWaveDef>& FieldsOf<CWaveDef>() {
  static const FieldTable<CWaveDef> table{
      Value("LongWave", &CWaveDef::GetLongWave, &CWaveDef::SetLongWave,
            {"", "long-wave mode; kept for the controller"}),
      Value("MaxNsamp", &CWaveDef::GetMaxNsamp, &CWaveDef::SetMaxNsamp,
            {"samples", "largest length that is allowed; kept for the controller"}),
      Value("AutoFsamp", &CWaveDef::GetAutoFsamp, &CWaveDef::SetAutoFsamp,
            {"", "automatic sampling; kept for the controller"}),
      Value("Fsamp", &CWaveDef::GetFsamp, &CWaveDef::SetFsamp,
            {"Hz", "sampling frequency; a classical pulse has its own, 2.56 Fmax", kPositive}),
      Value("UnitAmpl", &CWaveDef::GetUnitAmpl, &CWaveDef::SetUnitAmpl,
            {"", "unit of the amplitude"}),
      Value("TolUpperRat", &CWaveDef::GetTolUpperRat, &CWaveDef::SetTolUpperRat,
            {"ratio to the peak", "distance of the upper band from the waveform", kFromZero}),
      Value("TolLowerRat", &CWaveDef::GetTolLowerRat, &CWaveDef::SetTolLowerRat,
            {"ratio to the peak",
             "distance of the lower band from the waveform; negative",
             {.high = 0.0}}),
  };
  return table;
}

namespace {

/// The family that a definition names, the only one.
const FamilyTable& FindFamily(const Json& json) {
  const FamilyTable* found = nullptr;
  std::string keys;
  for (const FamilyTable* table : kFamilies) {
    const char* const key = table->family.key;
    keys += (keys.empty() ? "" : ", ") + std::string(key);
    if (!json.contains(key)) continue;
    if (found != nullptr) Place().Key(key).Fail(std::string("stands beside ") + found->family.key);
    found = table;
  }
  if (found == nullptr) Place().Fail("no waveform family: one of " + keys);
  return *found;
}

const FamilyTable& TableOf(const CWaveDef& def) {
  for (const FamilyTable* table : kFamilies) {
    if (table->family.type == def.GetWaveType()) return *table;
  }
  throw Error(Error::Kind::Input, "", "no waveform is defined");
}

/// A function of several types, each with its own body.
template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

const FamilyTable& TableOf(const ParameterSet& set) {
  using namespace wave_def;
  return *std::visit(Overloaded{
                         [](const CWaveDefClassical&) { return &kClassicalFamily; },
                         [](const CWaveDefSymmetry&) { return &kSymmetryFamily; },
                         [](const CWaveDefSineBeatBurst&) { return &kSineBeatBurstFamily; },
                         [](const MeasuredSet&) { return &kMeasureFamily; },
                         [](const CWaveDefGradual&) { return &kGradualFamily; },
                         [](const CWaveDefSingle&) { return &kSingleFamily; },
                         [](const CWaveDefDamping&) { return &kDampingFamily; },
                     },
                     set);
}

Definition Read(std::string_view text, const SampleSource& source) {
  const JsonTree tree = ParseJson(text);
  const Json& json = tree.Root();
  const Place at;
  if (!json.is_object()) at.Fail("is not a JSON object");
  const FamilyTable& table = FindFamily(json);
  const char* const key = table.family.key;
  Definition out{{}, {}};
  ReadFields(FieldsOf<CWaveDef>(), json, at, out.settings, {key, kSchema});
  const bool hasFsamp = json.contains("Fsamp");
  if (table.ownFsamp == nullptr && !hasFsamp) at.Key("Fsamp").Fail("missing");
  out.set = table.read(json[key], at.Key(key), {hasFsamp, source});
  if (hasFsamp) return out;
  const double own = table.ownFsamp(out.set);
  if (own == 0.0 && table.family.type == CWaveDef::WAVE_TYPE_MEASURE)
    at.Key("Fsamp").Fail("missing");
  out.settings.SetFsamp(own);
  return out;
}

}  // namespace

// ---- JSON --------------------------------------------------------------------------------------

Definition FromJson(std::string_view text, const SampleSource& source) {
  try {
    return Read(text, source);
  } catch (const Error& e) {
    if (e.GetLine() != 0 || e.GetKey().empty()) throw;
    throw Error(e.GetKind(), e.GetKey(), e.GetText(), LineOf(text, e.GetKey()));
  }
}

std::string ToJson(const Definition& definition, const std::string& samplesFile) {
  const FamilyTable& table = TableOf(definition.set);
  JsonTree json(WriteFields(FieldsOf<CWaveDef>(), definition.settings));
  JsonTree set(table.write(definition.set, samplesFile));
  Json& member = Member(json.Root(), table.family.key);
  member = set.Take();
  return json.Root().dump(2) + "\n";
}

const std::vector<SetInfo>& AllSets() {
  static const std::vector<SetInfo> sets = [] {
    std::vector<SetInfo> all{Describe("", "settings", false, FieldsOf<CWaveDef>())};
    for (const FamilyTable* table : kFamilies) {
      for (SetInfo& set : table->describe(table->family)) all.push_back(std::move(set));
    }
    return all;
  }();
  return sets;
}

// ---- Records -----------------------------------------------------------------------------------

CWaveDef FromRecord(std::span<const unsigned char> record) {
  common::CSerialData stream(std::vector<unsigned char>(record.begin(), record.end()));
  CWaveDef def;
  if (!def.Serialize(&stream)) {
    throw Error(Error::Kind::Input, "", "is not a whole record of a definition");
  }
  if (!stream.IsAtEnd()) throw Error(Error::Kind::Input, "", "goes on behind the record");
  return def;
}

std::vector<unsigned char> ToRecord(CWaveDef& def) {
  common::CSerialData stream;
  if (!def.Serialize(&stream))
    throw Error(Error::Kind::Refused, "", "the definition has no record");
  const auto* const bytes = stream.GetData();
  return {bytes, bytes + stream.GetSize()};
}

Definition DefinitionOf(const CWaveDef& def) {
  Definition out{{}, TableOf(def).parametersOf(def)};
  for (const Field<CWaveDef>& field : FieldsOf<CWaveDef>()) {
    const JsonTree value(field.write(def));
    field.read(value.Root(), Place().Key(field.info.key), out.settings);
  }
  return out;
}

// ---- The waveform ------------------------------------------------------------------------------

const Family& Definition::GetFamily() const { return TableOf(set).family; }

const Family& FamilyOf(const CWaveDef& def) { return TableOf(def).family; }

bool TryToGenerate(const Definition& definition, CWaveDef* def) {
  *def = definition.settings;
  using namespace wave_def;
  return std::visit(
      Overloaded{
          [&](const CWaveDefClassical& set) { return def->SetDefClassical(set); },
          [&](const CWaveDefSymmetry& set) { return def->SetDefSymmetry(set); },
          [&](const CWaveDefSineBeatBurst& set) { return def->SetDefSineBeatBurst(set); },
          [&](const MeasuredSet& m) { return def->SetDefMeasure(m.set, m.samples.values); },
          [&](const CWaveDefGradual& set) { return def->SetDefGradual(set); },
          [&](const CWaveDefSingle& set) { return def->SetDefSingle(set); },
          [&](const CWaveDefDamping& set) { return def->SetDefDamping(set); },
      },
      definition.set);
}

CWaveDef Generate(const Definition& definition) {
  CWaveDef def;
  const std::string reason = GenerateOrExplain(definition, &def);
  if (reason.empty()) return def;
  throw Error(Error::Kind::Refused, definition.GetFamily().key, reason);
}

double SampleRateOf(const CWaveDef& def) {
  if (def.GetWaveType() != CWaveDef::WAVE_TYPE_CLASSICAL) return def.GetFsamp();
  return com_def::comdefsystemconst::ConvFmaxToFsampByVal(def.GetDefClassical().GetFmax());
}

bool HasBands(const CWaveDef& def) {
  const common::uint64 n = def.GetNsamp();
  return n != 0 && def.GetTolU().GetSize() == n && def.GetTolL().GetSize() == n;
}

}  // namespace qarv::definition
