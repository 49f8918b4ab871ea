// What a CWaveDef without a definition shows.
#pragma once

#include <gtest/gtest.h>

#include "wave_def/wave_def.h"

namespace qarv::test {

/// Neither a type, nor any family's set, nor bands.  The waveform may hold what a generator has
/// left.
inline void ExpectUndefined(const wave_def::CWaveDef& def) {
  using namespace wave_def;
  EXPECT_EQ(def.GetWaveType(), CWaveDef::WAVE_TYPE_NONE);
  EXPECT_TRUE(def.GetDefClassical() == CWaveDefClassical{});
  EXPECT_TRUE(def.GetDefSymmetry() == CWaveDefSymmetry{});
  EXPECT_TRUE(def.GetDefSineBeatBurst() == CWaveDefSineBeatBurst{});
  EXPECT_TRUE(def.GetDefMeasure() == CWaveDefMeasure{});
  EXPECT_TRUE(def.GetDefGradual() == CWaveDefGradual{});
  EXPECT_TRUE(def.GetDefSingle() == CWaveDefSingle{});
  EXPECT_TRUE(def.GetDefDamping() == CWaveDefDamping{});
  EXPECT_EQ(def.GetTolU().GetSize(), 0U);
  EXPECT_EQ(def.GetTolL().GetSize(), 0U);
}

}  // namespace qarv::test
