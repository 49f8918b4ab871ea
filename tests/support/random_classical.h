// Arbitrary classical definitions: every shape and tolerance kind, mostly with a pulse that fits.
#pragma once

#include "random_values.h"
#include "wave_def/wave_def_classical.h"

namespace qarv::test {

/// The levels of a band as the user and a standard would have them, now and then hostile.
inline wave_def::CWaveDefTolUserDef RandomUserLevels(RandomValues* random) {
  wave_def::CWaveDefTolUserDef tol;
  const auto level = [&] { return random->OneIn(6) ? 0.0 : random->Value(-0.1, 0.5); };
  tol.SetTolLeftU(level());
  tol.SetTolLeftL(level());
  tol.SetTolFrontA(level());
  tol.SetTolMainU(level());
  tol.SetTolMainL(level());
  tol.SetTolRightU(level());
  tol.SetTolRightL(level());
  tol.SetTolRearA(level());
  const bool set = random->OneIn(2);  // one call at a time: arguments have no order
  const double begU = level();
  const double begL = level();
  const double endU = level();
  const double endL = level();
  tol.SetTolPulsParam(set, begU, begL, endU, endL);
  return tol;
}

inline wave_def::CWaveDefTolSpecify RandomStandard(RandomValues* random,
                                                   wave_def::wave_def_sub::WAVE_KIND shape) {
  using Std = wave_def::CWaveDefTolSpecify;
  Std tol;
  const auto level = [&] { return random->OneIn(6) ? 0.0 : random->Value(-0.1, 0.5); };
  tol.SetWaveKind(random->OneIn(12) ? wave_def::wave_def_sub::TRIANGLE : shape);
  tol.SetBaseStandard(
      static_cast<Std::BASE_STANDARD_TYPE>(random->OneIn(12) ? 0 : 1 + random->Below(5)));
  tol.SetTolBeginHi(level());
  tol.SetTolBeginLo(level());
  tol.SetPulseBeforeHi(level());
  tol.SetPulseBeforeLo(level());
  tol.SetPulseSlopeHi(level());
  tol.SetPulseSlopeLo(level());
  tol.SetMainPulseHi(random->Value(0.9, 1.4));
  tol.SetMainPulseLo(random->Value(0.6, 1.1));
  tol.SetTolEndHi(level());
  tol.SetTolEndLo(level());
  tol.SetPulseBeforeWidth(level());
  tol.SetPulseAfterWidth(level());
  tol.SetPulseRiseWidth(random->Value(0, 0.6));
  tol.SetPulseFallWidth(random->Value(0, 0.6));
  return tol;
}

inline wave_def::CWaveDefClassical RandomClassical(RandomValues* random) {
  using Set = wave_def::CWaveDefClassical;
  using wave_def::wave_def_sub::WAVE_KIND;
  Set set;
  const auto shape = static_cast<WAVE_KIND>(random->OneIn(40) ? 7 : 1 + random->Below(6));
  set.SetWaveKind(shape);
  set.SetMainAmpl(random->OneIn(4) ? random->Value(-60, 0) : random->Value(0, 60));
  set.SetNsamp(random->OneIn(8) ? random->Below(8) : 8 + random->Below(200));
  set.SetFmax(random->Value(100, 2000));
  const double frame = set.GetNsamp() / (2.56 * set.GetFmax());  // [s]
  set.SetMainWidth(random->OneIn(10) ? random->Value(0.3, 1.5) * frame
                                     : random->Between(0.02, 0.5) * frame);
  if (random->OneIn(12)) set.SetMainWidth(random->Hostile());
  set.SetMainRise(random->Value(0, 0.7));
  set.SetMainFall(random->OneIn(4) ? 1 - set.GetMainRise() : random->Value(0, 0.7));
  set.SetMainShift(random->OneIn(2) ? 0.0 : random->Value(-0.4, 0.4));
  set.SetTolKind(Set::TOL_USER_DEF);
  set.SetDefTolUserDef(RandomUserLevels(random));
  set.SetTolKind(Set::TOL_SPECIFY);
  set.SetDefTolSpecify(RandomStandard(random, shape));
  set.SetTolKind(static_cast<Set::TOL_KIND>(random->Below(13)));
  return set;
}

}  // namespace qarv::test
