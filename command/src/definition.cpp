// A definition as a JSON file.
#include "definition.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <new>
#include <set>

#include "com_def/com_def_system_const.h"
#include "rules/rules.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

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

/// Looks at a file before it becomes a tree.  A key that stands twice in one object is an error,
/// not a silent choice.  Depth and number of keys are bounded far above every definition: what is
/// kept and looked through stays small, whatever the file holds.
///
/// Not the parser's callback, for which it goes through all elements of a list at the end of each.
class Watch : public nlohmann::json_sax<Json> {
 public:
  explicit Watch(const std::string& file) : at_(file) {}

  bool start_object(std::size_t /*size*/) override { return Open(); }
  bool start_array(std::size_t /*size*/) override { return Open(); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool key(std::string& name) override {
    constexpr std::size_t kMostKeys = 100;  // of an object
    if (!open_.back().insert(name).second) at_.Key(name).Fail("stands twice");
    if (open_.back().size() > kMostKeys) {
      at_.Fail(fmt::format("has an object of more than {} keys", kMostKeys));
    }
    return true;
  }
  bool null() override { return true; }
  bool boolean(bool /*v*/) override { return true; }
  bool number_integer(std::int64_t /*v*/) override { return true; }
  bool number_unsigned(std::uint64_t /*v*/) override { return true; }
  bool number_float(double /*v*/, const std::string& /*text*/) override { return true; }
  bool string(std::string& /*v*/) override { return true; }
  bool binary(Json::binary_t& /*v*/) override { return true; }
  bool parse_error(std::size_t /*at*/, const std::string& /*last*/,
                   const Json::exception& /*e*/) override {
    return false;  // and the parser says it
  }

 private:
  bool Open() {
    constexpr std::size_t kDeepest = 32;
    if (open_.size() == kDeepest) {
      at_.Fail(fmt::format("is nested deeper than {} levels", kDeepest));
    }
    open_.emplace_back();
    return true;
  }
  bool Close() {
    open_.pop_back();
    return true;
  }

  Place at_;
  std::vector<std::set<std::string>> open_;  // the keys of what is open, of a list none
};

Json Parse(InputFile file) {
  const std::vector<unsigned char> text = file.ReadAll(kLargestDefinition);
  Watch watch(file.GetName());
  try {
    static_cast<void>(Json::sax_parse(text, &watch));
    return Json::parse(text);
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
