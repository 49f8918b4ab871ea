// The value operations and the record of every parameter set.
#include "value_semantics.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

#include "wave_def/wave_def.h"

namespace {

using namespace qarv;
using namespace qarv::wave_def;
using com_def::comdefconst::SYNC_WAVE_WAVELET;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Per set: one change for each field, in record order, and one that puts a NaN into it.
template <class Set>
struct Changes;

template <>
struct Changes<CWaveDefSingle> {
  using Set = CWaveDefSingle;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetPeriod(0.01); },
        [](Set& s) { s.SetPeakLevel(-2.0); },
        [](Set& s) { s.SetLengthType(static_cast<Set::LENGTH_TYPE>(-1)); },
        [](Set& s) { s.SetWaveTime(1.5); },
        [](Set& s) { s.SetWavePeriod(150.0); },
        [](Set& s) { s.SetEdgeTime(0.05); },
        [](Set& s) { s.SetNsamp(4294967295U); },
    };
  }
  static void PutNaN(Set& s) { s.SetWavePeriod(kNaN); }
};

template <>
struct Changes<CWaveDefGradual> {
  using Set = CWaveDefGradual;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetPeriod(0.01); },  [](Set& s) { s.SetLevelBeg(1.0); },
        [](Set& s) { s.SetLevelEnd(3.0); }, [](Set& s) { s.SetLengthType(Set::LENGTH_BY_SLOPE); },
        [](Set& s) { s.SetWaveTime(0.2); }, [](Set& s) { s.SetWaveSlope(10.0); },
        [](Set& s) { s.SetPreTime(0.1); },  [](Set& s) { s.SetEdgeTime(0.3); },
        [](Set& s) { s.SetNsamp(500); },
    };
  }
  static void PutNaN(Set& s) { s.SetEdgeTime(kNaN); }
};

template <>
struct Changes<CWaveDefSineBeatBurst> {
  using Set = CWaveDefSineBeatBurst;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetWaveKind(Set::SINE_BURST); },
        [](Set& s) { s.SetAmpl(2.0); },
        [](Set& s) { s.SetFreq(100.0); },
        [](Set& s) { s.SetCycle(10); },
        [](Set& s) { s.SetFrame(3); },
        [](Set& s) { s.SetRestTime(0.5); },
        [](Set& s) { s.SetEdging(true, 0, 0, Set::WINDOW_NONE); },
        [](Set& s) { s.SetEdging(true, 2, 0, Set::WINDOW_NONE); },
        [](Set& s) { s.SetEdging(true, 0, 3, Set::WINDOW_NONE); },
        [](Set& s) { s.SetEdging(true, 0, 0, Set::WINDOW_RAMP); },
    };
  }
  static void PutNaN(Set& s) { s.SetRestTime(kNaN); }
};

template <>
struct Changes<CWaveDefSymmetry> {
  using Set = CWaveDefSymmetry;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetWaveKind(wave_def_sub::HAVERSINE); },
        [](Set& s) { s.SetPeak(5.0); },
        [](Set& s) { s.SetWidth(0.01); },
        [](Set& s) { s.SetPeakPos(0.3); },
        [](Set& s) { s.SetPreZero(0.005); },
        [](Set& s) { s.SetMidZero(0.002); },
        [](Set& s) { s.SetPostZero(0.003); },
        [](Set& s) { s.SetDevideComp(true); },
        [](Set& s) { s.SetCompForward(true); },
        [](Set& s) { s.SetMidBackward(true); },
        [](Set& s) { s.SetMidZeroBackward(0.004); },
    };
  }
  static void PutNaN(Set& s) { s.SetMidZeroBackward(kNaN); }
};

data_edit_log::CDataEditLog OneEdit(double parameter) {
  data_edit_log::CDataEditLogElm elm;
  elm.SetKind(data_edit_log::CDataEditLogElm::EDIT_SCALE);
  elm.SetParams({parameter});
  data_edit_log::CDataEditLog log;
  log.Add(elm);
  return log;
}

template <>
struct Changes<CWaveDefMeasure> {
  using Set = CWaveDefMeasure;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetMeasPath("D:\\meas\\drop_\x83\x65\x83\x58\x83\x67.csv"); },
        [](Set& s) { s.SetDataEditLog(OneEdit(2.0)); },
    };
  }
  static void PutNaN(Set& s) { s.SetDataEditLog(OneEdit(kNaN)); }
};

template <>
struct Changes<CWaveDefTolUserDef> {
  using Set = CWaveDefTolUserDef;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetTolLeftU(0.1); },
        [](Set& s) { s.SetTolLeftL(0.2); },
        [](Set& s) { s.SetTolFrontA(0.3); },
        [](Set& s) { s.SetTolMainU(0.4); },
        [](Set& s) { s.SetTolMainL(0.5); },
        [](Set& s) { s.SetTolRightU(0.6); },
        [](Set& s) { s.SetTolRightL(0.7); },
        [](Set& s) { s.SetTolRearA(0.8); },
        [](Set& s) { s.SetTolPulsParam(true, 0.0, 0.0, 0.0, 0.0); },
        [](Set& s) { s.SetTolPulsParam(true, 0.1, 0.0, 0.0, 0.0); },
        [](Set& s) { s.SetTolPulsParam(true, 0.0, 0.2, 0.0, 0.0); },
        [](Set& s) { s.SetTolPulsParam(true, 0.0, 0.0, 0.3, 0.0); },
        [](Set& s) { s.SetTolPulsParam(true, 0.0, 0.0, 0.0, 0.4); },
    };
  }
  static void PutNaN(Set& s) { s.SetTolPulsParam(true, 0.0, 0.0, 0.0, kNaN); }
};

template <>
struct Changes<CWaveDefTolSpecify> {
  using Set = CWaveDefTolSpecify;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetStdName("Half-sine, severity 3, as delivered to the test house"); },
        [](Set& s) { s.SetWaveKind(wave_def_sub::TRAPEZOID); },
        [](Set& s) { s.SetBaseStandard(Set::BASE_STD_4); },
        [](Set& s) { s.SetTolBeginHi(0.01); },
        [](Set& s) { s.SetTolBeginLo(0.02); },
        [](Set& s) { s.SetPulseBeforeHi(0.03); },
        [](Set& s) { s.SetPulseBeforeLo(0.04); },
        [](Set& s) { s.SetPulseSlopeHi(0.05); },
        [](Set& s) { s.SetPulseSlopeLo(0.06); },
        [](Set& s) { s.SetMainPulseHi(1.15); },
        [](Set& s) { s.SetMainPulseLo(0.85); },
        [](Set& s) { s.SetTolEndHi(0.07); },
        [](Set& s) { s.SetTolEndLo(0.08); },
        [](Set& s) { s.SetPulseBeforeWidth(0.4); },
        [](Set& s) { s.SetPulseAfterWidth(0.1); },
        [](Set& s) { s.SetPulseRiseWidth(0.09); },
        [](Set& s) { s.SetPulseFallWidth(0.11); },
    };
  }
  static void PutNaN(Set& s) { s.SetPulseFallWidth(kNaN); }
};

template <>
struct Changes<CWaveDefClassical> {
  using Set = CWaveDefClassical;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetWaveKind(wave_def_sub::HALF_SINE); },
        [](Set& s) { s.SetMainAmpl(50.0); },
        [](Set& s) { s.SetMainWidth(0.011); },
        [](Set& s) { s.SetMainRise(0.1); },
        [](Set& s) { s.SetMainFall(0.2); },
        [](Set& s) { s.SetMainShift(-0.1); },
        [](Set& s) { s.SetRestPre(0.001); },
        [](Set& s) { s.SetRestPost(0.002); },
        [](Set& s) { s.SetFmax(2000.0); },
        [](Set& s) { s.SetNsamp(4096); },
        [](Set& s) { s.SetWaveShift(0.01); },
        [](Set& s) { s.SetTolKind(static_cast<Set::TOL_KIND>(-1)); },
        [](Set& s) {
          CWaveDefTolUserDef tol;
          tol.SetTolMainU(0.15);
          s.SetTolKind(Set::TOL_USER_DEF);
          EXPECT_TRUE(s.SetDefTolUserDef(tol));
          s.SetTolKind(Set::TOL_NONE);
        },
        [](Set& s) {
          CWaveDefTolSpecify tol;
          tol.SetStdName("standard");
          s.SetTolKind(Set::TOL_SPECIFY);
          EXPECT_TRUE(s.SetDefTolSpecify(tol));
          s.SetTolKind(Set::TOL_NONE);
        },
        [](Set& s) { s.SetAddCmp(true); },
        [](Set& s) { s.SetCmpNonSym(true); },
        [](Set& s) { s.SetCmpType(Set::CMP_OPTIMIZED); },
        [](Set& s) { s.SetCmpPre(0.2); },
        [](Set& s) { s.SetCmpPost(0.3); },
        [](Set& s) { s.SetCmpPcal(0.4); },
        [](Set& s) { s.SetCmpU1(0.5); },
        [](Set& s) { s.SetCmpU2(0.6); },
        [](Set& s) { s.SetCmpRgm1(0.7); },
        [](Set& s) { s.SetCmpRgm2(0.8); },
        [](Set& s) { s.SetCmpCparam(1e4); },
        [](Set& s) { s.SetCmpErr(true); },
        [](Set& s) { s.SetOptRatLevel(1.0); },
    };
  }
  static void PutNaN(Set& s) { s.SetMainAmpl(kNaN); }
};

template <>
struct Changes<CWaveDefDampingElm> {
  using Set = CWaveDefDampingElm;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetFreq(100.0); },   [](Set& s) { s.SetAmpl(-3.0); },
        [](Set& s) { s.SetZeta(0.05); },    [](Set& s) { s.SetNumHalf(4294967295U); },
        [](Set& s) { s.SetDelay(-0.001); },
    };
  }
  static void PutNaN(Set& s) { s.SetDelay(kNaN); }
};

CWaveDefDampingElm Element(double freq) {
  CWaveDefDampingElm elm;
  elm.SetFreq(freq);
  return elm;
}

template <>
struct Changes<CWaveDefDamping> {
  using Set = CWaveDefDamping;
  static std::vector<void (*)(Set&)> Fields() {
    return {
        [](Set& s) { s.SetNsamp(~0ULL); },
        [](Set& s) { s.SetSyncWaveType(SYNC_WAVE_WAVELET); },
        [](Set& s) { s.SetFreq(5.0); },
        [](Set& s) { s.SetZeta(0.9); },
        [](Set& s) {
          s.Add(Element(100.0));
          s.Add(Element(200.0));
          s.Add(Element(300.0));
        },
    };
  }
  static void PutNaN(Set& s) { s.SetFreq(kNaN); }
};

template <class Set>
class ParameterSet : public testing::Test {
 protected:
  static Set Filled() {
    Set set;
    for (const auto change : Changes<Set>::Fields()) change(set);
    return set;
  }
};

using Sets =
    testing::Types<CWaveDefSingle, CWaveDefGradual, CWaveDefSineBeatBurst, CWaveDefSymmetry,
                   CWaveDefMeasure, CWaveDefTolUserDef, CWaveDefTolSpecify, CWaveDefClassical,
                   CWaveDefDampingElm, CWaveDefDamping>;
TYPED_TEST_SUITE(ParameterSet, Sets);

TYPED_TEST(ParameterSet, IsAValue) { test::CheckValueOperations(this->Filled()); }

TYPED_TEST(ParameterSet, KeepsItsRecordWhateverHappensToTheStream) {
  test::CheckRecord(this->Filled());
}

TYPED_TEST(ParameterSet, IsUnequalWhenAnyFieldAloneDiffers) {
  test::CheckEachFieldAlone<TypeParam>(Changes<TypeParam>::Fields());
}

TYPED_TEST(ParameterSet, WithANaNEqualsItselfButNoCopyOfItself) {
  TypeParam set;
  Changes<TypeParam>::PutNaN(set);
  const TypeParam copy(set);
  const TypeParam& same = set;
  EXPECT_TRUE(set == same);
  EXPECT_FALSE(set == copy);
  EXPECT_TRUE(set != copy);
}

TYPED_TEST(ParameterSet, ClearedIsAsConstructedInItsRecordToo) {
  TypeParam set = this->Filled();
  set.Clear();
  EXPECT_EQ(test::RecordOf(set), test::RecordOf(TypeParam{}));
  TypeParam back = this->Filled();
  EXPECT_TRUE(test::Load(test::RecordOf(TypeParam{}), &back));
  EXPECT_TRUE(back == TypeParam{});
}

TYPED_TEST(ParameterSet, HasAVirtualDestructorAndMovesWithoutThrowing) {
  static_assert(std::has_virtual_destructor_v<TypeParam>);
  static_assert(std::is_nothrow_move_constructible_v<TypeParam>);
  static_assert(std::is_nothrow_move_assignable_v<TypeParam>);
  TypeParam target = this->Filled();
  TypeParam source = this->Filled();
  target = std::move(source);
  EXPECT_TRUE(target == this->Filled());
}

}  // namespace
