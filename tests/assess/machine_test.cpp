// Machines: what their text may say, and what a waveform asks of them.
#include "assess/machine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "assess/requirement.h"
#include "definition/definition.h"

namespace qarv::test {
namespace {

using assess::Machine;
using assess::MachineComparison;
using assess::MachineRow;

constexpr double kG = 9.80665;

Machine MachineOf(const std::string& text) { return assess::MachineFromJson(text); }

/// A waveform of five samples at 100 Hz.
wave_def::CWaveDef WaveOf(const std::string& samples, const std::string& unit = "m/s^2") {
  return definition::Generate(definition::FromJson(R"({"Fsamp": 100, "UnitAmpl": ")" + unit +
                                                   R"(", "Measure": {"MeasPath": "", "Samples": )" +
                                                   samples + "}}"));
}

const MachineRow* RowOf(const MachineComparison& comparison, const std::string& key) {
  for (const MachineRow& row : comparison.rows) {
    if (row.key == "machine_" + key) return &row;
  }
  return nullptr;
}

/// The row of a quantity of a waveform beside a machine.
MachineRow Compared(const wave_def::CWaveDef& def, const std::string& machine,
                    const std::string& key) {
  const MachineComparison comparison = assess::CompareWithMachine(def, MachineOf(machine));
  const MachineRow* const row = RowOf(comparison, key);
  EXPECT_NE(row, nullptr) << key;
  return row == nullptr ? MachineRow{} : *row;
}

TEST(MachineText, ANumberIsInTheUnitOfItsKey) {
  const Machine m = MachineOf(R"({"Name": "V-100", "About": "x", "MaxAccel": 100, "MovingMass": 5,
      "MaxVelocity": 2, "Stroke": 51, "StartPosition": 0.25, "MaxJerk": 3, "LowestFrequency": 5})");
  EXPECT_EQ(m.name, "V-100");
  EXPECT_DOUBLE_EQ(*m.acceleration, 100 * kG);
  EXPECT_EQ(*m.mass, 5.0);
  EXPECT_EQ(*m.velocity, 2.0);
  EXPECT_EQ(*m.stroke, 51.0);
  EXPECT_EQ(m.start, 0.25);
  EXPECT_DOUBLE_EQ(*m.jerk, 3 * kG);
  EXPECT_EQ(*m.lowestFrequency, 5.0);
  EXPECT_FALSE(m.force);
}

TEST(MachineText, ATextHasAUnitOfItsOwn) {
  const Machine m =
      MachineOf(R"({"MaxForce": "9 kN", "MovingMass": "11 lb", "MaxVelocity": "78 in/s",
      "Stroke": " 2in ", "MaxJerk": "1e4 m/s^3", "LowestFrequency": "0.002 kHz"})");
  EXPECT_DOUBLE_EQ(*m.force, 9000.0);
  EXPECT_DOUBLE_EQ(*m.mass, 4.98951607);
  EXPECT_DOUBLE_EQ(*m.velocity, 1.9812);
  EXPECT_DOUBLE_EQ(*m.stroke, 50.8);
  EXPECT_DOUBLE_EQ(*m.jerk, 1e4);
  EXPECT_DOUBLE_EQ(*m.lowestFrequency, 2.0);
  EXPECT_DOUBLE_EQ(*MachineOf(R"({"MaxAccel": "100 g"})").acceleration, 100 * kG);
  EXPECT_DOUBLE_EQ(*MachineOf(R"({"MaxAccel": 7, "UnitAmpl": "m/s^2"})").acceleration, 7.0);
  EXPECT_DOUBLE_EQ(*MachineOf(R"({"MaxJerk": "2 g/s"})").jerk, 2 * kG);
  EXPECT_DOUBLE_EQ(*MachineOf(R"({"MaxJerk": 2, "UnitAmpl": "m/s^2"})").jerk, 2.0);
}

TEST(MachineText, WhatIsNoMachineIsOneLineWithItsKeyAndLine) {
  struct Case {
    const char *members, *key, *says;
  };
  const Case cases[] = {
      {R"("MaxAccel": 0)", "MaxAccel", "is not a number above 0"},
      {R"("MaxAccel": -1)", "MaxAccel", "is not a number above 0"},
      {R"("MaxVelocity": "-2 m/s")", "MaxVelocity", "is not a number above 0"},
      {R"("MaxVelocity": 1e308, "Stroke": "1e308 m")", "Stroke", "is not a number above 0"},
      {R"("MaxVelocity": "nan")", "MaxVelocity", "is not a number with its unit"},
      {R"("MaxVelocity": "inf m/s")", "MaxVelocity", "is not a number with its unit"},
      {R"("MaxVelocity": "fast")", "MaxVelocity", "is not a number with its unit"},
      {R"("MaxVelocity": "")", "MaxVelocity", "is not a number with its unit"},
      {R"("MaxVelocity": null)", "MaxVelocity", "is not a number"},
      {R"("MaxVelocity": [2])", "MaxVelocity", "is not a number"},
      {R"("MaxVelocity": "2 mm")", "MaxVelocity", "has no unit like m/s: 'mm'"},
      {R"("Stroke": "51 furlong")", "Stroke", "has no unit like mm: 'furlong'"},
      {R"("MaxAccel": "5 g/s")", "MaxAccel", "has no unit like g: 'g/s'"},
      {R"("MaxJerk": "5 g")", "MaxJerk", "has no unit like g/s: 'g'"},
      {R"("LowestFrequency": 0)", "LowestFrequency", "is not a number above 0"},
      {R"("MaxForce": 100)", "MaxForce", "needs MovingMass"},
      {R"("MaxForce": 100, "MovingMass": 0)", "MovingMass", "is not a number above 0"},
      {R"("MaxForce": 1e308, "MovingMass": 1e-300)", "MovingMass", "is too small for the force"},
      {R"("MaxForce": 100, "MovingMass": 1, "MaxAccel": 1)", "MaxForce", "stands beside MaxAccel"},
      {R"("StartPosition": 0.5, "MaxAccel": 1)", "StartPosition", "needs Stroke"},
      {R"("Stroke": 51, "StartPosition": 1.5)", "StartPosition", "is not within 0 to 1"},
      {R"("Stroke": 51, "StartPosition": "left")", "StartPosition", "is neither"},
      {R"("MaxAccel": 1, "UnitAmpl": "V")", "UnitAmpl", "is not a known acceleration"},
      {R"("MaxAccell": 1)", "MaxAccell", "unknown key"},
      {R"("MaxAccel": 1, "MaxAccel": 2)", "MaxAccel", "stands twice"},
      {R"("Name": 1, "MaxAccel": 2)", "Name", "is not a string"},
  };
  for (const Case& c : cases) {
    const std::string text = std::string("{\n") + c.members + "\n}";
    try {
      MachineOf(text);
      ADD_FAILURE() << text;
    } catch (const assess::Error& e) {
      EXPECT_EQ(e.GetKey(), c.key) << text;
      EXPECT_EQ(std::string(e.what()).find(c.says), 0U) << text << e.what();
      EXPECT_EQ(e.GetLine(), 2U) << text;
    }
  }
  for (const char* const text : {"", "[", "[]", "1", "{", R"({"MaxAccel": nan})"}) {
    EXPECT_THROW(MachineOf(text), assess::Error) << text;
  }
  for (const char* const text : {"{}", R"({"Name": "x", "MovingMass": 2})"}) {
    try {
      MachineOf(text);
      ADD_FAILURE() << text;
    } catch (const assess::Error& e) {
      EXPECT_EQ(std::string(e.what()).find("states no limit"), 0U) << e.what();
    }
  }
}

TEST(RequirementText, SaysTheLineAndRefusesAKeyThatStandsTwice) {
  try {
    assess::RequirementFromJson("{\"Points\": [[1, 1], [2, 1]],\n \"Q\": 5,\n \"Q\": 10}");
    ADD_FAILURE();
  } catch (const assess::Error& e) {
    EXPECT_EQ(e.GetKey(), "Q");
    EXPECT_STREQ(e.what(), "stands twice");
  }
  try {
    assess::RequirementFromJson("{\"Points\": [[1, 1],\n [2, \"a\"]]}");
    ADD_FAILURE();
  } catch (const assess::Error& e) {
    EXPECT_EQ(e.GetKey(), "Points[1]");
    EXPECT_EQ(e.GetLine(), 2U);
  }
}

// ---- The comparison ----------------------------------------------------------------------------

// At 100 Hz: velocity 0, 0.03, 0.06, 0.03, 0 m/s; displacement 0, 0.15, 0.6, 1.05, 1.2 mm.
constexpr const char* kThereAndBack = "[0, 6, 0, -6, 0]";

TEST(MachineComparison, HasEachQuantityThatIsLimitedWithItsMargin) {
  const auto def = WaveOf(kThereAndBack);
  const MachineRow a = Compared(def, R"({"MaxAccel": "8 m/s^2"})", "acceleration");
  EXPECT_EQ(a.value, 6.0);
  EXPECT_EQ(a.limit, 8.0);
  EXPECT_EQ(a.margin, 25.0);
  EXPECT_EQ(a.unit, "m/s^2");
  EXPECT_TRUE(a.fits);
  const MachineRow v = Compared(def, R"({"MaxVelocity": 0.05})", "velocity");
  EXPECT_NEAR(v.value, 0.06, 1e-15);
  EXPECT_NEAR(v.margin, -20.0, 1e-9);
  EXPECT_FALSE(v.fits);
  const MachineRow s = Compared(def, R"({"Stroke": 2.4})", "stroke");
  EXPECT_NEAR(s.value, 1.2, 1e-12);
  EXPECT_NEAR(s.margin, 50.0, 1e-9);
  const MachineRow jerk = Compared(def, R"({"MaxJerk": "1200 m/s^3"})", "jerk");
  EXPECT_NEAR(jerk.value, 600.0, 1e-9);
  EXPECT_EQ(jerk.unit, "m/s^2/s");
  EXPECT_EQ(assess::CompareWithMachine(def, MachineOf(R"({"MaxJerk": 3})")).rows.size(), 1U);
}

TEST(MachineComparison, CountsFromTheStartPositionToBothSides) {
  const auto up = WaveOf(kThereAndBack);
  const auto down = WaveOf("[0, -6, 0, 6, 0]");
  const auto fits = [](const auto& def, const char* start) {
    return assess::CompareWithMachine(
               def, MachineOf(std::string(R"({"Stroke": 2, "StartPosition": )") + start + "}"))
        .Fits();
  };
  EXPECT_FALSE(fits(up, "\"centred\""));
  EXPECT_FALSE(fits(up, "0.41"));
  EXPECT_TRUE(fits(up, "0.4")) << "equal to the limit";
  EXPECT_TRUE(fits(up, "0"));
  EXPECT_FALSE(fits(down, "0"));
  EXPECT_FALSE(fits(down, "0.59"));
  EXPECT_TRUE(fits(down, "0.6"));
  EXPECT_TRUE(fits(down, "1"));
  const MachineRow row = Compared(down, R"({"Stroke": 2, "StartPosition": 0.8})", "down");
  EXPECT_NEAR(row.value, 1.2, 1e-12);
  EXPECT_NEAR(row.limit, 1.6, 1e-12);
  EXPECT_NEAR(row.margin, 25.0, 1e-9);
  EXPECT_EQ(Compared(down, R"({"Stroke": 2})", "up").value, 0.0);
}

TEST(MachineComparison, AForceMovesItsMassInTheUnitOfTheWaveform) {
  const auto def = WaveOf("[0, 4, 0, -6, 0]", "g");
  const MachineRow row =
      Compared(def, R"({"MaxForce": 980.665, "MovingMass": 10})", "acceleration");
  EXPECT_DOUBLE_EQ(row.limit, 10.0);
  EXPECT_EQ(row.value, 6.0);
  EXPECT_EQ(row.unit, "g");
  const MachineRow equal = Compared(def, R"({"MaxAccel": 6})", "acceleration");
  EXPECT_EQ(equal.margin, 0.0);
  EXPECT_TRUE(equal.fits);
}

TEST(MachineComparison, TheJerkBeginsAndEndsAtRest) {
  const char* const machine = R"({"MaxJerk": "1 m/s^3"})";
  EXPECT_EQ(Compared(WaveOf("[5, 5, 6, 5, 5]"), machine, "jerk").value, 500.0);
  EXPECT_EQ(Compared(WaveOf("[1, 2, 3, 4, 5]"), machine, "jerk").value, 500.0);
}

TEST(MachineComparison, TheLowestFrequencyIsThatOfWhatAWaveformIsMadeOf) {
  const auto lowest = [](const std::string& set) {
    const auto def = definition::Generate(
        definition::FromJson(R"({"Fsamp": 1000, "UnitAmpl": "g", )" + set + "}"));
    const auto comparison =
        assess::CompareWithMachine(def, MachineOf(R"({"LowestFrequency": 10})"));
    return comparison.rows.empty() ? 0.0 : comparison.rows.front().value;
  };
  EXPECT_EQ(lowest(R"("Single": {"Period": 0.0625, "PeakLevel": 2, "Nsamp": 100})"), 16.0);
  EXPECT_EQ(lowest(R"("Gradual": {"Period": 0.0625, "LevelBeg": 1, "LevelEnd": 2,
      "LengthType": "LENGTH_BY_TIME", "WaveTime": 0.1, "Nsamp": 200})"),
            16.0);
  EXPECT_EQ(lowest(R"("SineBeatBurst": {"WaveKind": "SINE_BURST", "Ampl": 1, "Freq": 20, "Cycle": 5,
      "Frame": 1, "RestTime": 0.1})"),
            20.0);
  const std::string elements = R"("Elements": [{"Freq": 40, "Ampl": 1, "Zeta": 0.05, "NumHalf": 5},
      {"Freq": 30, "Ampl": 1, "Zeta": 0.05, "NumHalf": 5}]}})";
  EXPECT_EQ(lowest(R"("Damping": {"Nsamp": 500, "SyncWaveType": "SYNC_WAVE_WAVELET", )" +
                   elements.substr(0, elements.size() - 1)),
            30.0);
  EXPECT_EQ(lowest(R"("Damping": {"Nsamp": 500, "SyncWaveType": "SYNC_WAVE_DAMPED_SINE",
      "Freq": 8, "Zeta": 0.5, )" +
                   elements.substr(0, elements.size() - 1)),
            8.0)
      << "the compensating sine is one of them";
  EXPECT_EQ(lowest(R"("Measure": {"MeasPath": "", "Samples": [0, 1, 0]})"), 0.0);

  const auto sine = definition::Generate(definition::FromJson(
      R"({"Fsamp": 1000, "UnitAmpl": "g", "Single": {"Period": 0.125, "PeakLevel": 2, "Nsamp": 100}})"));
  const MachineRow row = Compared(sine, R"({"LowestFrequency": 10})", "lowest_frequency");
  EXPECT_EQ(row.value, 8.0);
  EXPECT_NEAR(row.margin, -20.0, 1e-12);
  EXPECT_FALSE(row.fits);
  EXPECT_TRUE(Compared(sine, R"({"LowestFrequency": 5})", "lowest_frequency").fits);
}

TEST(MachineComparison, WhatIsNoNumberFitsNothing) {
  auto def = WaveOf("[0, \"nan\", 0, 0]");
  const auto comparison = assess::CompareWithMachine(
      def, MachineOf(R"({"MaxAccel": 1, "MaxVelocity": 1, "Stroke": 1, "MaxJerk": 1})"));
  ASSERT_EQ(comparison.rows.size(), 6U);
  for (const MachineRow& row : comparison.rows) EXPECT_FALSE(row.fits) << row.key;
}

TEST(MachineComparison, AWaveformThatIsNoAccelerationCannotBeCompared) {
  try {
    assess::CompareWithMachine(WaveOf(kThereAndBack, "V"), MachineOf(R"({"MaxAccel": 1})"));
    ADD_FAILURE();
  } catch (const assess::Error& e) {
    EXPECT_EQ(e.GetKey(), "machine");
  }
}

TEST(MachineComparison, SaysWhatIsPassedAndByHowMuch) {
  const auto def = WaveOf(kThereAndBack);
  const auto warnings = [&](const char* machine) {
    return assess::MachineWarnings(assess::CompareWithMachine(def, MachineOf(machine)));
  };
  EXPECT_EQ(warnings(R"({"Name": "V-1", "MaxVelocity": 0.05, "MaxAccel": 2})"),
            std::vector<std::string>{
                "velocity: 0.06 m/s, and the machine V-1 has at most 0.05 m/s (margin -20 %)"});
  EXPECT_TRUE(warnings(R"({"MaxVelocity": 0.07})").empty());
}

}  // namespace
}  // namespace qarv::test
