// Records that were written without the library: what each loads to, and that it is written the
// same again.  tests/golden/make_records.py has the values.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "golden.h"
#include "value_semantics.h"
#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using data_edit_log::CDataEditLogElm;
using Samples = common::CDataArrayFloatT<double>;

// ---- What each set holds -----------------------------------------------------------------------

void ExpectFields(const CWaveDefSingle& s) {
  EXPECT_EQ(s.GetPeriod(), 1.25);
  EXPECT_EQ(s.GetPeakLevel(), 2.25);
  EXPECT_EQ(s.GetLengthType(), 3);
  EXPECT_EQ(s.GetWaveTime(), 4.25);
  EXPECT_EQ(s.GetWavePeriod(), 5.25);
  EXPECT_EQ(s.GetEdgeTime(), 6.25);
  EXPECT_EQ(s.GetNsamp(), 7U);
}

void ExpectFields(const CWaveDefGradual& s) {
  EXPECT_EQ(s.GetPeriod(), 1.5);
  EXPECT_EQ(s.GetLevelBeg(), 2.5);
  EXPECT_EQ(s.GetLevelEnd(), 3.5);
  EXPECT_EQ(s.GetLengthType(), CWaveDefGradual::LENGTH_BY_SLOPE);
  EXPECT_EQ(s.GetWaveTime(), 5.5);
  EXPECT_EQ(s.GetWaveSlope(), 6.5);
  EXPECT_EQ(s.GetPreTime(), 7.5);
  EXPECT_EQ(s.GetEdgeTime(), 8.5);
  EXPECT_EQ(s.GetNsamp(), 9U);
}

void ExpectFields(const CWaveDefSineBeatBurst& s) {
  EXPECT_EQ(s.GetWaveKind(), CWaveDefSineBeatBurst::SINE_BURST);
  EXPECT_EQ(s.GetAmpl(), 2.75);
  EXPECT_EQ(s.GetFreq(), 3.75);
  EXPECT_EQ(s.GetCycle(), 4U);
  EXPECT_EQ(s.GetFrame(), 5U);
  EXPECT_EQ(s.GetRestTime(), 6.75);
  EXPECT_TRUE(s.GetEdging());
  EXPECT_EQ(s.GetEdgeRise(), 8U);
  EXPECT_EQ(s.GetEdgeFall(), 9U);
  EXPECT_EQ(s.GetEdgeWindow(), CWaveDefSineBeatBurst::WINDOW_HALF_HANNING);
}

void ExpectFields(const CWaveDefSymmetry& s, bool forward = true) {
  EXPECT_EQ(s.GetWaveKind(), wave_def_sub::HAVERSINE);
  EXPECT_EQ(s.GetPeak(), 2.125);
  EXPECT_EQ(s.GetWidth(), 3.125);
  EXPECT_EQ(s.GetPeakPos(), 4.125);
  EXPECT_EQ(s.GetPreZero(), 5.125);
  EXPECT_EQ(s.GetMidZero(), 6.125);
  EXPECT_EQ(s.GetPostZero(), 7.125);
  EXPECT_TRUE(s.GetDevideComp());
  EXPECT_EQ(s.GetCompForward(), forward);
  EXPECT_TRUE(s.GetMidBackward());
  EXPECT_EQ(s.GetMidZeroBackward(), 11.125);
}

void ExpectFields(const CWaveDefDampingElm& s, double first = 10.375) {
  EXPECT_EQ(s.GetFreq(), first);
  EXPECT_EQ(s.GetAmpl(), first + 1);
  EXPECT_EQ(s.GetZeta(), first + 2);
  EXPECT_EQ(s.GetNumHalf(), first + 3 - 0.375);
  EXPECT_EQ(s.GetDelay(), first + 4);
}

void ExpectFields(const CWaveDefDamping& s) {
  EXPECT_EQ(s.GetNsamp(), 6000000001U);
  EXPECT_EQ(s.GetSyncWaveType(), com_def::comdefconst::SYNC_WAVE_DAMPED_SINE_MODIFIED);
  EXPECT_EQ(s.GetFreq(), 3.375);
  EXPECT_EQ(s.GetZeta(), 4.375);
  ASSERT_EQ(s.GetElmNum(), 2U);
  ExpectFields(s.GetElmByIndex(0), 10.375);
  ExpectFields(s.GetElmByIndex(1), 20.375);
}

void ExpectEdit(const CDataEditLogElm& edit, unsigned int kind, const std::string& note) {
  EXPECT_EQ(edit.GetKind(), static_cast<CDataEditLogElm::EDIT_KIND>(kind));
  EXPECT_EQ(edit.GetFirst(), 7000000000U + kind);
  EXPECT_EQ(edit.GetLast(), 8000000000U + kind);
  EXPECT_EQ(edit.GetParams(), (Samples{kind + 0.625, kind + 1.625}));
  EXPECT_EQ(edit.GetNote(), note);
}

void ExpectFields(const CWaveDefMeasure& s) {
  EXPECT_EQ(s.GetMeasPath(), "D:\\meas\\drop.csv");
  ASSERT_EQ(s.GetDataEditLog().GetElmNum(), 2U);
  ExpectEdit(s.GetDataEditLog().GetElmList().front(), CDataEditLogElm::EDIT_SCALE, "scaled");
  ExpectEdit(s.GetDataEditLog().GetElmList().back(), CDataEditLogElm::EDIT_TAPER, "tapered");
}

void ExpectFields(const CWaveDefTolUserDef& s) {
  EXPECT_EQ(s.GetTolLeftU(), 1.0625);
  EXPECT_EQ(s.GetTolLeftL(), 2.0625);
  EXPECT_EQ(s.GetTolFrontA(), 3.0625);
  EXPECT_EQ(s.GetTolMainU(), 4.0625);
  EXPECT_EQ(s.GetTolMainL(), 5.0625);
  EXPECT_EQ(s.GetTolRightU(), 6.0625);
  EXPECT_EQ(s.GetTolRightL(), 7.0625);
  EXPECT_EQ(s.GetTolRearA(), 8.0625);
  EXPECT_TRUE(s.GetTolPulsSet());
  EXPECT_EQ(s.GetTolPulsBegU(), 10.0625);
  EXPECT_EQ(s.GetTolPulsBegL(), 11.0625);
  EXPECT_EQ(s.GetTolPulsEndU(), 12.0625);
  EXPECT_EQ(s.GetTolPulsEndL(), 13.0625);
}

void ExpectFields(const CWaveDefTolSpecify& s) {
  EXPECT_EQ(s.GetStdName(), "house \x83\x65 7");
  EXPECT_EQ(s.GetWaveKind(), wave_def_sub::TRAPEZOID);
  EXPECT_EQ(s.GetBaseStandard(), CWaveDefTolSpecify::BASE_STD_5);
  EXPECT_EQ(s.GetTolBeginHi(), 3.1875);
  EXPECT_EQ(s.GetTolBeginLo(), 4.1875);
  EXPECT_EQ(s.GetPulseBeforeHi(), 5.1875);
  EXPECT_EQ(s.GetPulseBeforeLo(), 6.1875);
  EXPECT_EQ(s.GetPulseSlopeHi(), 7.1875);
  EXPECT_EQ(s.GetPulseSlopeLo(), 8.1875);
  EXPECT_EQ(s.GetMainPulseHi(), 9.1875);
  EXPECT_EQ(s.GetMainPulseLo(), 10.1875);
  EXPECT_EQ(s.GetTolEndHi(), 11.1875);
  EXPECT_EQ(s.GetTolEndLo(), 12.1875);
  EXPECT_EQ(s.GetPulseBeforeWidth(), 13.1875);
  EXPECT_EQ(s.GetPulseAfterWidth(), 14.1875);
  EXPECT_EQ(s.GetPulseRiseWidth(), 15.1875);
  EXPECT_EQ(s.GetPulseFallWidth(), 16.1875);
}

void ExpectFields(const CWaveDefClassical& s, bool nonSym = true) {
  EXPECT_EQ(s.GetWaveKind(), wave_def_sub::USER_TRAPEZOID);
  EXPECT_EQ(s.GetMainAmpl(), 2.875);
  EXPECT_EQ(s.GetMainWidth(), 3.875);
  EXPECT_EQ(s.GetMainRise(), 4.875);
  EXPECT_EQ(s.GetMainFall(), 5.875);
  EXPECT_EQ(s.GetMainShift(), 6.875);
  EXPECT_EQ(s.GetRestPre(), 7.875);
  EXPECT_EQ(s.GetRestPost(), 8.875);
  EXPECT_EQ(s.GetFmax(), 9.875);
  EXPECT_EQ(s.GetNsamp(), 10U);
  EXPECT_EQ(s.GetWaveShift(), 11.875);
  EXPECT_EQ(s.GetTolKind(), CWaveDefClassical::TOL_SPECIFY);
  ExpectFields(s.GetDefTolUserDef());
  ExpectFields(s.GetDefTolSpecify());
  EXPECT_TRUE(s.GetAddCmp());
  EXPECT_EQ(s.GetCmpNonSym(), nonSym);
  EXPECT_EQ(s.GetCmpType(), CWaveDefClassical::CMP_OPTIMIZED);
  EXPECT_EQ(s.GetCmpPre(), 17.875);
  EXPECT_EQ(s.GetCmpPost(), 18.875);
  EXPECT_EQ(s.GetCmpPcal(), 19.875);
  EXPECT_EQ(s.GetCmpU1(), 20.875);
  EXPECT_EQ(s.GetCmpU2(), 21.875);
  EXPECT_EQ(s.GetCmpRgm1(), 22.875);
  EXPECT_EQ(s.GetCmpRgm2(), 23.875);
  EXPECT_EQ(s.GetCmpCparam(), 24.875);
  EXPECT_TRUE(s.GetCmpErr());
  EXPECT_EQ(s.GetOptRatLevel(), 26.875);
}

// ---- Records of the sets -----------------------------------------------------------------------

/// Loads a golden record and expects it to be written the same again.
template <class Set>
Set Loaded(const std::string& name) {
  const std::vector<unsigned char> record = test::GoldenRecord(name);
  Set set;
  EXPECT_TRUE(test::Load(record, &set)) << name;
  EXPECT_EQ(test::RecordOf(set), record) << name;
  return set;
}

TEST(GoldenRecord, OfEachParameterSetLoadsEveryFieldAndIsWrittenAgain) {
  ExpectFields(Loaded<CWaveDefClassical>("set_classical"));
  ExpectFields(Loaded<CWaveDefDamping>("set_damping"));
  ExpectFields(Loaded<CWaveDefDampingElm>("set_damping_elm"));
  ExpectFields(Loaded<CWaveDefGradual>("set_gradual"));
  ExpectFields(Loaded<CWaveDefMeasure>("set_measure"));
  ExpectFields(Loaded<CWaveDefSineBeatBurst>("set_sine_beat_burst"));
  ExpectFields(Loaded<CWaveDefSingle>("set_single"));
  ExpectFields(Loaded<CWaveDefSymmetry>("set_symmetry"));
  ExpectFields(Loaded<CWaveDefTolSpecify>("set_tol_specify"));
  ExpectFields(Loaded<CWaveDefTolUserDef>("set_tol_user_def"));
}

TEST(GoldenRecord, TellsNeighbouringFlagsApart) {
  ExpectFields(Loaded<CWaveDefClassical>("set_classical_flags"), false);
  ExpectFields(Loaded<CWaveDefSymmetry>("set_symmetry_flags"), false);
}

// ---- Records of the families -------------------------------------------------------------------

void ExpectUnit(const common::CUnitCtrl& unit) {
  const int codes[] = {14, 25, 8, 11};
  const int calcs[] = {1, 3, 2, 4};
  for (int i = 0; i < common::CUnitCtrl::kFactors; ++i) {
    EXPECT_EQ(unit.GetCode(i), codes[i]) << i;
    EXPECT_EQ(unit.GetCalc(i), calcs[i]) << i;
  }
  EXPECT_EQ(unit.GetSuffix(), 5);
}

/// Loads a golden record and expects everything that is not the family's own.
CWaveDef LoadedFamily(const std::string& name, CWaveDef::WAVE_TYPE type, bool autoFsamp = true) {
  const CWaveDef def = Loaded<CWaveDef>(name);
  EXPECT_EQ(def.GetWaveType(), type) << name;
  EXPECT_TRUE(def.GetLongWave()) << name;
  EXPECT_EQ(def.GetMaxNsamp(), 5000000003U) << name;
  EXPECT_EQ(def.GetAutoFsamp(), autoFsamp) << name;
  EXPECT_EQ(def.GetFsamp(), 5.0) << name;
  ExpectUnit(def.GetUnitAmpl());
  EXPECT_EQ(def.GetTolUpperRat(), 7.0) << name;
  EXPECT_EQ(def.GetTolLowerRat(), 8.0) << name;
  EXPECT_EQ(def.GetWave(), (Samples{30.0, 31.0, 32.0})) << name;
  EXPECT_EQ(def.GetTolU(), (Samples{40.0, 41.0, 42.0})) << name;
  EXPECT_EQ(def.GetTolL(), (Samples{50.0, 51.0, 52.0})) << name;
  return def;
}

TEST(GoldenRecord, OfEachFamilyLoadsEveryFieldAndIsWrittenAgain) {
  ExpectFields(LoadedFamily("family_classical", CWaveDef::WAVE_TYPE_CLASSICAL).GetDefClassical());
  ExpectFields(LoadedFamily("family_symmetry", CWaveDef::WAVE_TYPE_SYMMETRY).GetDefSymmetry());
  ExpectFields(LoadedFamily("family_sine_beat_burst", CWaveDef::WAVE_TYPE_SINE_BEAT_BURST)
                   .GetDefSineBeatBurst());
  ExpectFields(LoadedFamily("family_measure", CWaveDef::WAVE_TYPE_MEASURE).GetDefMeasure());
  ExpectFields(LoadedFamily("family_gradual", CWaveDef::WAVE_TYPE_GRADUAL).GetDefGradual());
  ExpectFields(LoadedFamily("family_single", CWaveDef::WAVE_TYPE_SINGLE).GetDefSingle());
  ExpectFields(LoadedFamily("family_damping", CWaveDef::WAVE_TYPE_DAMPING).GetDefDamping());
}

TEST(GoldenRecord, OfAFamilyTellsItsFlagsApart) {
  ExpectFields(
      LoadedFamily("family_single_flags", CWaveDef::WAVE_TYPE_SINGLE, false).GetDefSingle());
}

}  // namespace
