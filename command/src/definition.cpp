// A definition as a JSON file.
#include "definition.h"

#include <fmt/format.h>

#include <array>
#include <new>
#include <set>

#include "com_def/com_def_system_const.h"
#include "input_file.h"
#include "rules/rules.h"

namespace qarv::command {

using wave_def::CWaveDef;

namespace {

const std::array<const Family*, 7> kFamilies{
    &kClassicalFamily, &kSymmetryFamily, &kSineBeatBurstFamily, &kMeasureFamily,
    &kGradualFamily,   &kSingleFamily,   &kDampingFamily,
};

const FieldTable<CWaveDef>& Settings() {
  static const FieldTable<CWaveDef> table{
      Value("LongWave", &CWaveDef::GetLongWave, &CWaveDef::SetLongWave),
      Value("MaxNsamp", &CWaveDef::GetMaxNsamp, &CWaveDef::SetMaxNsamp),
      Value("AutoFsamp", &CWaveDef::GetAutoFsamp, &CWaveDef::SetAutoFsamp),
      Value("Fsamp", &CWaveDef::GetFsamp, &CWaveDef::SetFsamp),
      Value("UnitAmpl", &CWaveDef::GetUnitAmpl, &CWaveDef::SetUnitAmpl),
      Value("TolUpperRat", &CWaveDef::GetTolUpperRat, &CWaveDef::SetTolUpperRat),
      Value("TolLowerRat", &CWaveDef::GetTolLowerRat, &CWaveDef::SetTolLowerRat),
  };
  return table;
}

/// Parses a JSON file; a key that stands twice in one object is an error, not a silent choice.
Json ParseFile(const std::string& file) {
  const std::vector<unsigned char> text = ReadFile(file);
  std::vector<std::set<std::string>> open;  // the keys of the objects that are being parsed
  const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) open.emplace_back();
    if (event == Json::parse_event_t::object_end) open.pop_back();
    if (event == Json::parse_event_t::key) {
      const auto key = parsed.get<std::string>();
      if (!open.back().insert(key).second) Place(file).Key(key).Fail("stands twice");
    }
    return true;
  };
  try {
    return Json::parse(text, watch);
  } catch (const Json::exception& e) {
    Fail(file, std::string("not JSON: ").append(e.what()));
  }
}

/// The family that a definition names, the only one.
const Family& FindFamily(const Json& json, const Place& at) {
  const Family* found = nullptr;
  std::string keys;
  for (const Family* family : kFamilies) {
    keys += (keys.empty() ? "" : ", ") + std::string(family->key);
    if (!json.contains(family->key)) continue;
    if (found != nullptr) at.Key(family->key).Fail(fmt::format("stands beside {}", found->key));
    found = family;
  }
  if (found == nullptr) at.Fail("no waveform family: one of " + keys);
  return *found;
}

/// A function of several types, each with its own body.
template <class... F>
struct Overloaded : F... {
  using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

}  // namespace

const Family& FamilyOf(const CWaveDef& def) {
  for (const Family* family : kFamilies) {
    if (family->type == def.GetWaveType()) return *family;
  }
  throw CommandError(kBadInput, "no waveform is defined");
}

double SampleRateOf(const CWaveDef& def) {
  if (def.GetWaveType() != CWaveDef::WAVE_TYPE_CLASSICAL) return def.GetFsamp();
  return com_def::comdefsystemconst::ConvFmaxToFsampByVal(def.GetDefClassical().GetFmax());
}

void RequireBands(const CWaveDef& def, const std::string& source) {
  const common::uint64 n = def.GetNsamp();
  if (n == 0 || def.GetTolU().GetSize() != n || def.GetTolL().GetSize() != n) {
    Fail(source, "has no samples with bands");
  }
}

Definition ReadDefinition(const std::string& file) {
  const Json json = ParseFile(file);
  const Place at(file);
  if (!json.is_object()) at.Fail("is not a JSON object");
  const Family& family = FindFamily(json, at);
  Json settings = json;
  settings.erase(family.key);
  Definition out{&family, {}, {}};
  ReadFields(Settings(), settings, at, out.settings);
  const bool hasFsamp = json.contains("Fsamp");
  if (family.ownFsamp == nullptr && !hasFsamp) at.Key("Fsamp").Fail("missing");
  out.set = family.read(json[family.key], at.Key(family.key), hasFsamp);
  if (!hasFsamp) out.settings.SetFsamp(family.ownFsamp(out.set));
  return out;
}

bool DefineWave(const Definition& definition, CWaveDef* def) {
  *def = definition.settings;
  using namespace wave_def;
  return std::visit(
      Overloaded{
          [&](const CWaveDefClassical& set) { return def->SetDefClassical(set); },
          [&](const CWaveDefSymmetry& set) { return def->SetDefSymmetry(set); },
          [&](const CWaveDefSineBeatBurst& set) { return def->SetDefSineBeatBurst(set); },
          [&](const MeasuredSet& set) { return def->SetDefMeasure(set.set, set.samples); },
          [&](const CWaveDefGradual& set) { return def->SetDefGradual(set); },
          [&](const CWaveDefSingle& set) { return def->SetDefSingle(set); },
          [&](const CWaveDefDamping& set) { return def->SetDefDamping(set); },
      },
      definition.set);
}

std::string TryToDefine(const Definition& definition, CWaveDef* def) {
  try {
    return DefineWave(definition, def) ? std::string() : WhyRefused(definition);
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
  return "the waveform does not fit into memory";
}

std::string RefusalLine(const Definition& definition, const std::string& file,
                        const std::string& reason) {
  return OneLine(fmt::format("{}: {}: {}", file, definition.family->key, reason));
}

CWaveDef Generated(const Definition& definition, const std::string& file) {
  CWaveDef def;
  const std::string reason = TryToDefine(definition, &def);
  if (reason.empty()) return def;
  throw CommandError(kRefused, RefusalLine(definition, file, reason));
}

CWaveDef LoadDefinition(const std::string& file) { return Generated(ReadDefinition(file), file); }

std::string DefinitionText(const CWaveDef& def, const std::string& samplesFile) {
  const Family& family = FamilyOf(def);
  Json json = WriteFields(Settings(), def);
  json[family.key] = family.write(def, samplesFile);
  return json.dump(2) + "\n";
}

}  // namespace qarv::command
