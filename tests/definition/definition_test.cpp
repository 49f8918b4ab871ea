// A definition from JSON and records, and back.
#include "definition/definition.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <string>
#include <vector>

#include "definition/check.h"
#include "json_text.h"
#include "temp_folder.h"

namespace qarv::test {
namespace {

using namespace definition;
using wave_def::CWaveDef;

constexpr const char* kPulse = R"({
  "UnitAmpl": "g",
  "Classical": {
    "WaveKind": "HALF_SINE",
    "MainAmpl": 50,
    "MainWidth": 0.011,
    "Fmax": 1000,
    "Nsamp": 512,
    "TolKind": "TOL_USER_DEF",
    "TolUserDef": {
      "TolMainU": 0.15,
      "TolMainL": 0.15
    }
  }
})";

constexpr const char* kMeasured = R"({
  "Fsamp": 1000,
  "Measure": {"MeasPath": "m.csv", "Samples": [0, 1.5, "nan", -2]}
})";

/// A text with one part replaced by another.
std::string With(std::string text, const std::string& part, const std::string& other) {
  const auto at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return text.replace(at, part.size(), other);
}

/// The error of a text that is no definition.
Error ErrorOf(const std::string& text) {
  try {
    FromJson(text);
  } catch (const Error& e) {
    return e;
  }
  ADD_FAILURE() << "is taken: " << text;
  return {Error::Kind::Input, "", "", 0};
}

std::vector<std::string> Examples() {
  std::vector<std::string> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(QARV_SOURCE_DIR "/examples/definitions")) {
    if (entry.path().extension() == ".json") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Samples for the example that has a file of them.
definition::Samples AFewSamples(const std::string& /*path*/, bool /*needsRate*/) {
  definition::Samples out;
  out.values.Resize(3);
  out.values[1] = 2.5;
  out.fsamp = 1280;
  return out;
}

TEST(DefinitionJson, ReadsAPulse) {
  const Definition definition = FromJson(kPulse);
  EXPECT_STREQ(definition.GetFamily().key, "Classical");
  EXPECT_EQ(definition.settings.GetFsamp(), 2560);
  const auto& set = std::get<wave_def::CWaveDefClassical>(definition.set);
  EXPECT_EQ(set.GetMainAmpl(), 50);
  EXPECT_EQ(set.GetDefTolUserDef().GetTolMainL(), 0.15);
  const CWaveDef def = Generate(definition);
  EXPECT_EQ(def.GetNsamp(), 512U);
  EXPECT_EQ(def.GetWave().GetAbsMax(0, 0), 50);
}

TEST(DefinitionJson, AnErrorHasItsKeyAndItsLine) {
  const struct {
    std::string text, key, what;
    std::size_t line;
  } cases[] = {
      {With(kPulse, "0.011", "\"wide\""), "Classical.MainWidth", "is not a number", 6},
      {With(kPulse, "\"TolMainL\": 0.15", "\"TolMainL\": true"), "Classical.TolUserDef.TolMainL",
       "is not a number", 12},
      {With(kPulse, "\"Fmax\": 1000,", ""), "Classical.Fmax", "missing", 3},
      {With(kPulse, "\"Nsamp\"", "\"N\\nsamp\""), "Classical.N\\x0asamp", "unknown key", 3},
      {With(kPulse, "\"g\"", "\"furlong\""), "UnitAmpl", "is not a known unit", 2},
      {With(kMeasured, "1.5", "[]"), "Measure.Samples[1]", "is not a number", 3},
      {R"({"Fsamp": 1,
          "Damping": {"Nsamp": 9, "SyncWaveType": "SYNC_WAVE_WAVELET",
          "Elements": [{"Freq": 1, "Ampl": 1},
                       {"Freq": 1}]}})",
       "Damping.Elements[1].Ampl", "missing", 4},
      {"{\n\n\"Single\": 1,}", "", "not JSON", 3},
      {"{}", "", "no waveform family", 0},
      {"[]", "", "is not a JSON object", 0},
  };
  for (const auto& c : cases) {
    const Error e = ErrorOf(c.text);
    EXPECT_EQ(e.GetKey(), c.key) << c.text;
    EXPECT_TRUE(e.GetText().starts_with(c.what)) << e.GetText();
    EXPECT_EQ(e.GetLine(), c.line) << c.text;
    EXPECT_EQ(e.GetKind(), Error::Kind::Input);
    EXPECT_EQ(e.what(), c.key.empty() ? e.GetText() : c.key + ": " + e.GetText());
  }
}

TEST(DefinitionJson, NoPartOfATextIsTaken) {
  const std::string text = kPulse;
  for (std::size_t n = 0; n < text.size(); ++n) {
    EXPECT_THROW(FromJson(text.substr(0, n)), Error) << n;
  }
}

TEST(DefinitionJson, TheSchemaThatATextNamesIsPassedOver) {
  const std::string text = With(kPulse, "\"UnitAmpl\"", "\"$schema\": \"x.json\", \"UnitAmpl\"");
  EXPECT_EQ(ToJson(FromJson(text)), ToJson(FromJson(kPulse)));
  EXPECT_EQ(
      ErrorOf(With(kPulse, "\"Nsamp\": 512,", "\"Nsamp\": 512, \"$schema\": \"x\",")).GetKey(),
      "Classical.$schema");
}

TEST(DefinitionJson, EveryExampleIsTheSameWhenItIsWrittenAndReadAgain) {
  int count = 0;
  for (const std::string& file : Examples()) {
    const Definition first = FromJson(ReadText(file), AFewSamples);
    const std::string text = ToJson(first);
    const Definition second = FromJson(text);
    EXPECT_EQ(ToJson(second), text) << file;
    CWaveDef a = Generate(first);
    CWaveDef b = Generate(second);
    EXPECT_EQ(ToRecord(a), ToRecord(b)) << file;
    ++count;
  }
  EXPECT_GT(count, 20);
}

// ---- Measured samples --------------------------------------------------------------------------

TEST(DefinitionJson, HoldsTheSamplesOfAMeasuredWaveform) {
  const CWaveDef def = Generate(FromJson(kMeasured));
  ASSERT_EQ(def.GetNsamp(), 4U);
  EXPECT_EQ(def.GetWave()[1], 1.5);
  EXPECT_TRUE(std::isnan(def.GetWave()[2]));
  EXPECT_EQ(def.GetDefMeasure().GetMeasPath(), "m.csv");
  const Definition again = FromJson(ToJson(DefinitionOf(def)));
  EXPECT_EQ(Generate(again).GetWave()[3], -2);
}

TEST(DefinitionJson, AsksItsSourceForSamplesThatItNamesOnly) {
  const std::string text = R"({"Measure": {"MeasPath": "folder/m.csv"}})";
  std::string asked;
  const auto source = [&](const std::string& path, bool needsRate) {
    asked = path;
    EXPECT_TRUE(needsRate);
    return AFewSamples(path, needsRate);
  };
  const Definition definition = FromJson(text, source);
  EXPECT_EQ(asked, "folder/m.csv");
  EXPECT_EQ(definition.settings.GetFsamp(), 1280);
  EXPECT_EQ(Generate(definition).GetNsamp(), 3U);
  EXPECT_NE(ToJson(definition, "s.csv").find("\"Samples\": \"s.csv\""), std::string::npos);
  EXPECT_EQ(ErrorOf(text).GetText(), "is not a list, and there are no files here");
  EXPECT_EQ(ErrorOf(With(kMeasured, "[0, 1.5, \"nan\", -2]", "[]")).GetText(), "has no samples");
  EXPECT_EQ(ErrorOf(With(kMeasured, "\"Fsamp\": 1000,", "")).GetKey(), "Fsamp");
}

// ---- Records -----------------------------------------------------------------------------------

TEST(DefinitionRecord, RestoresWaveformAndDefinition) {
  CWaveDef def = Generate(FromJson(kPulse));
  const std::vector<unsigned char> record = ToRecord(def);
  CWaveDef again = definition::FromRecord(record);
  EXPECT_EQ(again, def);
  EXPECT_EQ(ToJson(DefinitionOf(again)), ToJson(FromJson(ToJson(DefinitionOf(def)))));
}

TEST(DefinitionRecord, IsTakenWholeOrNotAtAll) {
  CWaveDef def = Generate(FromJson(kMeasured));
  std::vector<unsigned char> record = ToRecord(def);
  for (std::size_t n = 0; n < record.size(); ++n) {
    EXPECT_THROW(definition::FromRecord(std::span(record).first(n)), Error) << n;
  }
  record.push_back(0);
  EXPECT_THROW(definition::FromRecord(record), Error);
  CWaveDef none;
  EXPECT_THROW(ToRecord(none), Error);
  EXPECT_THROW(DefinitionOf(none), Error);
  EXPECT_THROW(FamilyOf(none), Error);
}

// ---- Refusals ----------------------------------------------------------------------------------

TEST(DefinitionCheck, ARefusalIsTheFirstFindingThatFails) {
  const Definition definition = FromJson(With(kPulse, "\"Nsamp\": 512", "\"Nsamp\": 20"));
  const auto findings = Check(definition);
  ASSERT_TRUE(definition::HasFailure(findings));
  try {
    Generate(definition);
    FAIL() << "is generated";
  } catch (const Error& e) {
    EXPECT_EQ(e.GetKind(), Error::Kind::Refused);
    EXPECT_EQ(e.GetKey(), "Classical");
    EXPECT_EQ(e.GetText(), FindingText(findings.front()));
  }
}

TEST(DefinitionCheck, FindingsAreJson) {
  const auto findings = Check(FromJson(With(kPulse, "\"Nsamp\": 512", "\"Nsamp\": 20")));
  const auto tree = definition::ParseJson("{\"F\":" + FindingsJson(findings) + "}");
  const auto& json = tree.Root()["F"];
  ASSERT_EQ(json.size(), findings.size());
  EXPECT_EQ(json[0]["Severity"], "fails");
  EXPECT_EQ(json[0]["Text"], findings[0].text);
  ASSERT_EQ(json[0]["Remedies"].size(), findings[0].remedies.size());
  EXPECT_EQ(json[0]["Remedies"][0]["Key"], findings[0].remedies[0].key);
  EXPECT_EQ(FindingsJson({}), "[]");
}

}  // namespace
}  // namespace qarv::test
