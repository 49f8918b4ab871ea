// The conversions and constants that the controller's libraries share.
#include <gtest/gtest.h>

#include <limits>

#include "com_def/com_def_const.h"
#include "com_def/com_def_system_const.h"
#include "common/numeric/constants.h"

namespace qarv::com_def {
namespace {

using namespace comdefsystemconst;

TEST(ComDef, SamplesAt2Point56TimesTheAnalysisFrequency) {
  EXPECT_EQ(ConvFmaxToFsampByVal(1000.0), 2560.0);
  EXPECT_EQ(ConvFmaxToFsampByVal(0.0), 0.0);
  EXPECT_EQ(ConvFmaxToFsampByVal(-100.0), -256.0);
  EXPECT_EQ(ConvFmaxToFsampByVal(0.1), 2.56 * 0.1);
}

TEST(ComDef, AFrameHasHalfAsManyLines) {
  EXPECT_EQ(ConvNsampToNlineByVal(0), 0U);
  EXPECT_EQ(ConvNsampToNlineByVal(1), 0U);
  EXPECT_EQ(ConvNsampToNlineByVal(2), 1U);
  EXPECT_EQ(ConvNsampToNlineByVal(1025), 512U);
  EXPECT_EQ(ConvNsampToNlineByVal(~common::uint64{0}), ~common::uint64{0} / 2);
}

TEST(ComDef, TheMethodsOfTheDampedSineSynthesisKeepTheirNumbers) {
  EXPECT_EQ(comdefconst::SYNC_WAVE_NONE, 0);
  EXPECT_EQ(comdefconst::SYNC_WAVE_DAMPED_SINE, 1);
  EXPECT_EQ(comdefconst::SYNC_WAVE_DAMPED_SINE_MODIFIED, 2);
  EXPECT_EQ(comdefconst::SYNC_WAVE_WAVELET, 3);
}

TEST(Constants, PiIsTheNearestDouble) {
  EXPECT_EQ(common::kPi, 3.141592653589793);
  EXPECT_EQ(common::kTwoPi, 6.283185307179586);
}

}  // namespace
}  // namespace qarv::com_def
