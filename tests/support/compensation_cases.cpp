// The reference cases of the compensation.
#include "compensation_cases.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "classical/classical_pipeline.h"
#include "common/numeric/calc_wave.h"

namespace qarv::test {

using namespace wave_def;

namespace {

constexpr double kRate = 8192;  // [Hz]

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> out;
  std::stringstream in(line);
  for (std::string item; std::getline(in, item, ',');) out.push_back(item);
  return out;
}

}  // namespace

CWaveDefClassical CompensationCase::Definition(int type, bool nonSymmetric,
                                               double optRatLevel) const {
  CWaveDefClassical set;
  set.SetWaveKind(static_cast<wave_def_sub::WAVE_KIND>(static_cast<int>(At("WaveKind"))));
  set.SetMainAmpl(At("MainAmpl"));
  set.SetMainWidth(At("width_samples") / kRate);
  set.SetMainRise(At("MainRise"));
  set.SetMainFall(At("MainFall"));
  set.SetMainShift(At("MainShift"));
  set.SetRestPre(At("rest_pre_samples") / kRate);
  set.SetRestPost(At("rest_post_samples") / kRate);
  set.SetFmax(kRate / 2.56);
  set.SetNsamp(static_cast<unsigned int>(At("Nsamp")));
  CWaveDefTolUserDef user;
  user.SetTolLeftU(At("user_leftU"));
  user.SetTolLeftL(At("user_leftL"));
  user.SetTolFrontA(At("user_frontA"));
  user.SetTolMainU(At("user_mainU"));
  user.SetTolMainL(At("user_mainL"));
  user.SetTolRightU(At("user_rightU"));
  user.SetTolRightL(At("user_rightL"));
  user.SetTolRearA(At("user_rearA"));
  user.SetTolPulsParam(At("user_pset") != 0, At("user_begU"), At("user_begL"), At("user_endU"),
                       At("user_endL"));
  CWaveDefTolSpecify tol;
  tol.SetWaveKind(static_cast<wave_def_sub::WAVE_KIND>(static_cast<int>(At("std_kind"))));
  tol.SetBaseStandard(
      static_cast<CWaveDefTolSpecify::BASE_STANDARD_TYPE>(static_cast<int>(At("std_bs"))));
  tol.SetTolBeginHi(At("std_beginHi"));
  tol.SetTolBeginLo(At("std_beginLo"));
  tol.SetPulseBeforeHi(At("std_beforeHi"));
  tol.SetPulseBeforeLo(At("std_beforeLo"));
  tol.SetMainPulseHi(At("std_mainHi"));
  tol.SetMainPulseLo(At("std_mainLo"));
  tol.SetTolEndHi(At("std_endHi"));
  tol.SetTolEndLo(At("std_endLo"));
  tol.SetPulseBeforeWidth(At("std_beforeW"));
  tol.SetPulseAfterWidth(At("std_afterW"));
  tol.SetPulseRiseWidth(At("std_riseW"));
  tol.SetPulseFallWidth(At("std_fallW"));
  set.SetTolKind(CWaveDefClassical::TOL_USER_DEF);
  set.SetDefTolUserDef(user);
  set.SetTolKind(CWaveDefClassical::TOL_SPECIFY);
  set.SetDefTolSpecify(tol);
  set.SetTolKind(static_cast<CWaveDefClassical::TOL_KIND>(static_cast<int>(At("TolKind"))));
  set.SetAddCmp(true);
  set.SetCmpType(static_cast<CWaveDefClassical::COMP_TYPE>(type));
  set.SetCmpNonSym(nonSymmetric);
  set.SetCmpPre(At("CmpPre"));
  set.SetCmpPost(At("CmpPost"));
  set.SetOptRatLevel(optRatLevel);
  return set;
}

CWaveDefClassical CompensationCase::NominalDefinition() const {
  CWaveDefClassical set = Definition(CWaveDefClassical::CMP_NONE, false, 0.0);
  set.SetAddCmp(false);
  return set;
}

double CompensationCase::LeastStroke(const char* pulse, bool nonSymmetric) const {
  return At(std::string(nonSymmetric ? "lp_peak0_" : "lp_peak1_").append(pulse));
}

std::vector<CompensationCase> ReadCompensationCases(const std::string& file) {
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  const std::vector<std::string> columns = Split(line);
  std::vector<CompensationCase> cases;
  while (std::getline(in, line)) {
    const std::vector<std::string> items = Split(line);
    std::map<std::string, double> values;
    for (std::size_t i = 0; i < columns.size() && i < items.size(); ++i)
      values[columns[i]] = std::strtod(items[i].c_str(), nullptr);
    cases.emplace_back(std::move(values));
  }
  return cases;
}

StrokeResult Compensate(const CWaveDefClassical& definition) {
  StrokeResult result{};
  result.params = definition;
  common::CDataArrayFloatT<double> wave;
  common::CDataArrayFloatT<double> upper;
  common::CDataArrayFloatT<double> lower;
  result.done = GenerateClassical(result.params, kRate, &wave, &upper, &lower, false);
  result.wave.assign(wave.begin(), wave.end());
  result.upper.assign(upper.begin(), upper.end());
  result.lower.assign(lower.begin(), lower.end());
  if (!result.done) return result;
  const double A = std::fabs(definition.GetMainAmpl());
  std::vector<double> x(result.wave);
  common::CCalcWave::IntegTime(x.size(), x.data(), x.data(), 1.0);
  for (const double v : x) result.velocity = std::max(result.velocity, std::fabs(v) / A);
  result.endVelocity = std::fabs(x.back()) / A / result.velocity;
  common::CCalcWave::IntegTime(x.size(), x.data(), x.data(), 1.0);
  const auto [low, high] = std::minmax_element(x.begin(), x.end());
  result.stroke = std::max(*high, -*low) / A;
  result.up = *high / A;
  result.swing = (*high - *low) / A;
  result.endDisplacement = std::fabs(x.back()) / A / result.stroke;
  return result;
}

double VelocityLoss(const StrokeResult& nominal, const StrokeResult& result) {
  const double frame = static_cast<double>(result.wave.size());
  const auto shift = static_cast<std::ptrdiff_t>(std::lround(result.params.GetWaveShift() * frame));
  double whole = 0.0;
  double left = 0.0;
  const auto isZero = [](double v) { return v == 0.0; };
  const auto first = std::find_if_not(nominal.wave.begin(), nominal.wave.end(), isZero);
  const auto last = std::find_if_not(nominal.wave.rbegin(), nominal.wave.rend(), isZero).base();
  for (auto i = first - nominal.wave.begin(); i < last - nominal.wave.begin(); ++i) {
    whole += nominal.wave[static_cast<std::size_t>(i)];
    left += result.wave[static_cast<std::size_t>(i + shift)];
  }
  return 1.0 - left / whole;
}

double Quantile(std::vector<double> values, double q) {
  if (values.empty()) return std::nan("");
  std::sort(values.begin(), values.end());
  const double at = q * static_cast<double>(values.size() - 1);
  const auto below = static_cast<std::size_t>(at);
  if (below + 1 == values.size()) return values.back();
  const double part = at - static_cast<double>(below);
  return values[below] + part * (values[below + 1] - values[below]);
}

}  // namespace qarv::test
