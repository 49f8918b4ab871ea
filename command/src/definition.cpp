// A definition as a JSON file.
#include "definition.h"

#include <fmt/format.h>

#include <array>
#include <functional>
#include <new>
#include <set>

#include "com_def/com_def_system_const.h"
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

/// What the parser found wrong, without its own marks and at a length that can be read.
std::string ParserMessage(const Json::exception& e) {
  constexpr std::size_t kLongest = 160;  // [byte]
  const std::string_view text = e.what();
  const std::size_t mark = text.find("] ");
  const std::string_view said = mark == std::string_view::npos ? text : text.substr(mark + 2);
  return std::string(said.substr(0, kLongest)).append(said.size() > kLongest ? "..." : "");
}

/// Watches a file being parsed.  A key that stands twice in one object is an error, not a silent
/// choice.  Depth and number of keys are bounded far above every definition: what the parser
/// keeps and looks through stays small, whatever the file holds.
class Watch {
 public:
  explicit Watch(const std::string& file) : at_(file) {}

  bool operator()(int depth, Json::parse_event_t event, const Json& parsed) {
    constexpr int kDeepest = 32;
    constexpr std::size_t kMostKeys = 100;  // of an object
    using enum Json::parse_event_t;
    if ((event == object_start || event == array_start) && depth >= kDeepest) {
      at_.Fail(fmt::format("is nested deeper than {} levels", kDeepest));
    }
    if (event == object_start) open_.emplace_back();
    if (event == object_end) open_.pop_back();
    if (event == key) {
      const auto& name = parsed.get_ref<const std::string&>();
      if (!open_.back().insert(name).second) at_.Key(name).Fail("stands twice");
      if (open_.back().size() > kMostKeys) {
        at_.Fail(fmt::format("has an object of more than {} keys", kMostKeys));
      }
    }
    return true;
  }

 private:
  Place at_;
  std::vector<std::set<std::string>> open_;  // the keys of the objects that are being parsed
};

Json Parse(InputFile file) {
  const std::vector<unsigned char> text = file.ReadAll(kLargestDefinition);
  Watch watch(file.GetName());
  try {
    return Json::parse(text, std::ref(watch));
  } catch (const Json::exception& e) {
    Fail(file.GetName(), "not JSON: " + ParserMessage(e));
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

Definition ReadDefinition(InputFile file) {
  const Place at(file.GetName());
  const Json json = Parse(std::move(file));
  if (!json.is_object()) at.Fail("is not a JSON object");
  const Family& family = FindFamily(json, at);
  Definition out{&family, {}, {}};
  ReadFields(Settings(), json, at, out.settings, family.key);
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

CWaveDef LoadDefinition(InputFile file) {
  const std::string name = file.GetName();
  return Generated(ReadDefinition(std::move(file)), name);
}

std::string DefinitionText(const CWaveDef& def, const std::string& samplesFile) {
  const Family& family = FamilyOf(def);
  Json json = WriteFields(Settings(), def);
  json[family.key] = family.write(def, samplesFile);
  return json.dump(2) + "\n";
}

}  // namespace qarv::command
