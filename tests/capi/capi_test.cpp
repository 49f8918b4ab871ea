// The C interface: each function, its buffers, its errors, and what is left behind a failure.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "assess/motion.h"
#include "assess/report.h"
#include "definition/check.h"
#include "definition/definition.h"
#include "definition/fields.h"
#include "definition/main_pulse.h"
#include "interface.h"

namespace qarv::test {
namespace {

using wave_def::CWaveDef;

/// A text with one part replaced by another.
std::string With(std::string text, const std::string& part, const std::string& other) {
  const auto at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return text.replace(at, part.size(), other);
}

std::string ReportOf(const Handle& handle) {
  return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_report_json(handle.get(), buffer, capacity, needed);
  });
}

std::string SpectrumOf(const Handle& handle, const std::string& settings) {
  return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_spectrum_json(handle.get(), settings.data(), settings.size(), buffer, capacity,
                                   needed);
  });
}

std::string RecordSpectrumOf(const Handle& handle, const std::vector<double>& record, double fsamp,
                             const std::string& settings) {
  return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_record_spectrum_json(handle.get(), record.data(), record.size(), fsamp,
                                          settings.data(), settings.size(), buffer, capacity,
                                          needed);
  });
}

std::string VerdictOf(const Handle& handle, const std::vector<double>& record, double fsamp,
                      const std::string& settings) {
  return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_judge_json(handle.get(), record.data(), record.size(), fsamp, settings.data(),
                                settings.size(), buffer, capacity, needed);
  });
}

std::int32_t Judge(const Handle& handle, const std::vector<double>& record, double fsamp,
                   const std::string& settings) {
  std::size_t needed = 0;
  return qarv_wave_judge_json(handle.get(), record.data(), record.size(), fsamp, settings.data(),
                              settings.size(), nullptr, 0, &needed);
}

std::vector<double> WaveOf(const Handle& handle) {
  const double* const samples = qarv_wave_samples(handle.get());
  return {samples, samples + qarv_wave_size(handle.get())};
}

// Programs have these numbers compiled in.
static_assert(QARV_WAVE_OK == 0 && QARV_WAVE_REFUSED == 1 && QARV_WAVE_BAD_INPUT == 2 &&
              QARV_WAVE_OUT_OF_MEMORY == 3 && QARV_WAVE_WRONG_CALL == 4 &&
              QARV_WAVE_TOO_SMALL == 5);

// ---- The waveform ------------------------------------------------------------------------------

TEST(CInterface, HasTheVersionOfTheProject) { EXPECT_STREQ(qarv_wave_version(), QARV_VERSION); }

TEST(CInterface, ANewHandleHasNoWaveformAndNoError) {
  const Handle handle = NewHandle();
  ExpectNoWave(handle.get());
  EXPECT_STREQ(qarv_wave_error(handle.get()), "");
  EXPECT_STREQ(qarv_wave_error_key(handle.get()), "");
  EXPECT_EQ(qarv_wave_error_line(handle.get()), 0U);
}

TEST(CInterface, DefinesTheWaveformThatTheLibraryGenerates) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK) << qarv_wave_error(handle.get());
  const CWaveDef def = definition::Generate(definition::FromJson(kPulse));
  EXPECT_STREQ(qarv_wave_family(handle.get()), "Classical");
  ASSERT_EQ(qarv_wave_size(handle.get()), def.GetNsamp());
  EXPECT_EQ(qarv_wave_sample_rate(handle.get()), 2560.0);
  for (std::size_t i = 0; i < def.GetNsamp(); ++i) {
    ASSERT_EQ(qarv_wave_samples(handle.get())[i], def.GetWave()[i]) << i;
    ASSERT_EQ(qarv_wave_upper(handle.get())[i], def.GetTolU()[i]) << i;
    ASSERT_EQ(qarv_wave_lower(handle.get())[i], def.GetTolL()[i]) << i;
  }
}

TEST(CInterface, TakesMeasuredSamplesFromTheText) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kMeasured), QARV_WAVE_OK);
  EXPECT_STREQ(qarv_wave_family(handle.get()), "Measure");
  EXPECT_EQ(WaveOf(handle), (std::vector<double>{0, 1, 2, -4, 0}));
  EXPECT_EQ(qarv_wave_upper(handle.get())[1], 3.0);
  EXPECT_EQ(qarv_wave_lower(handle.get())[1], 0.0);
}

TEST(CInterface, KnowsWhereTheMainPulseLies) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  std::size_t first = 7;
  std::size_t last = 7;
  ASSERT_EQ(qarv_wave_main_pulse(handle.get(), &first, &last), QARV_WAVE_OK);
  // 11 ms are 28 samples of 2560 Hz, 14 to each side of the middle of 512, and one more each.
  EXPECT_EQ(first, 256U - 15U);
  EXPECT_EQ(last, 256U + 15U);
  EXPECT_EQ(qarv_wave_main_pulse(handle.get(), nullptr, &last), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_main_pulse(handle.get(), &first, nullptr), QARV_WAVE_WRONG_CALL);
  ASSERT_EQ(Define(handle, kMeasured), QARV_WAVE_OK);
  EXPECT_EQ(qarv_wave_main_pulse(handle.get(), &first, &last), QARV_WAVE_WRONG_CALL);
  EXPECT_STREQ(qarv_wave_error(handle.get()), "the waveform has no main pulse");
  EXPECT_EQ(first, 256U - 15U) << "is left alone";
}

TEST(CInterface, IntegratesAnAccelerationTwice) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kMeasured), QARV_WAVE_OK);
  // Trapezia of 1 ms: m/s^2 to m/s, and m/s to mm.
  const std::vector<double> velocity{0, 0.0005, 0.002, 0.001, -0.001};
  const std::vector<double> displacement{0, 0.00025, 0.0015, 0.003, 0.003};
  std::vector<double> v(5);
  std::vector<double> d(5);
  ASSERT_EQ(qarv_wave_motion(handle.get(), v.data(), d.data(), 5), QARV_WAVE_OK);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_NEAR(v[i], velocity[i], 1e-15) << i;
    EXPECT_NEAR(d[i], displacement[i], 1e-15) << i;
  }
  std::vector<double> longer(6, 8.0);
  ASSERT_EQ(qarv_wave_motion(handle.get(), nullptr, longer.data(), 6), QARV_WAVE_OK);
  EXPECT_EQ(longer[4], d[4]);
  EXPECT_EQ(longer[5], 8.0);
  EXPECT_EQ(qarv_wave_motion(handle.get(), longer.data(), nullptr, 5), QARV_WAVE_OK);
  EXPECT_EQ(longer[4], v[4]);
  EXPECT_EQ(qarv_wave_motion(handle.get(), nullptr, nullptr, 5), QARV_WAVE_OK);
  std::vector<double> shorter(4, 8.0);
  EXPECT_EQ(qarv_wave_motion(handle.get(), shorter.data(), nullptr, 4), QARV_WAVE_TOO_SMALL);
  EXPECT_EQ(shorter, std::vector<double>(4, 8.0));
}

// ---- Texts and records -------------------------------------------------------------------------

TEST(CInterface, GivesTheDefinitionAgainFromWhichTheSameIsMade) {
  for (const std::string& text : ExampleTexts()) {
    const Handle handle = NewHandle();
    if (Define(handle, text) != QARV_WAVE_OK) continue;  // samples in a file
    const std::vector<std::uint8_t> record = RecordOf(handle);
    const std::string again = DefinitionOf(handle);
    const Handle other = NewHandle();
    ASSERT_EQ(Define(other, again), QARV_WAVE_OK) << qarv_wave_error(other.get());
    EXPECT_EQ(RecordOf(other), record);
    EXPECT_EQ(DefinitionOf(other), again);
  }
}

TEST(CInterface, RestoresAWaveformFromItsRecord) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const std::vector<std::uint8_t> record = RecordOf(handle);
  CWaveDef def = definition::Generate(definition::FromJson(kPulse));
  EXPECT_EQ(record, definition::ToRecord(def));
  const Handle other = NewHandle();
  ASSERT_EQ(qarv_wave_load_record(other.get(), record.data(), record.size()), QARV_WAVE_OK);
  EXPECT_STREQ(qarv_wave_family(other.get()), "Classical");
  EXPECT_EQ(WaveOf(other), WaveOf(handle));
  EXPECT_EQ(RecordOf(other), record);
}

TEST(CInterface, ARecordWithShorterBandsHasNone) {
  using Samples = common::CDataArrayFloatT<double>;
  const auto bytesOf = [](Samples samples) {
    common::CSerialData stream;
    EXPECT_TRUE(samples.Serialize(&stream));
    return std::vector<std::uint8_t>(stream.GetData(), stream.GetData() + stream.GetSize());
  };
  CWaveDef two;
  ASSERT_TRUE(two.SetDefMeasure({}, {1.0, 2.0}));
  std::vector<std::uint8_t> record = definition::ToRecord(two);
  // It ends in its three arrays: another lower band takes the place of the last one.
  const std::vector<std::uint8_t> shorter = bytesOf({1.0});
  record.resize(record.size() - bytesOf({1.0, 2.0}).size());
  record.insert(record.end(), shorter.begin(), shorter.end());

  const Handle handle = NewHandle();
  ASSERT_EQ(qarv_wave_load_record(handle.get(), record.data(), record.size()), QARV_WAVE_OK);
  EXPECT_EQ(WaveOf(handle), (std::vector<double>{1, 2}));
  EXPECT_NE(qarv_wave_upper(handle.get()), nullptr);
  EXPECT_EQ(qarv_wave_lower(handle.get()), nullptr);
  EXPECT_EQ(RecordOf(handle), record);
  std::size_t needed = 7;
  EXPECT_EQ(qarv_wave_report_json(handle.get(), nullptr, 0, &needed), QARV_WAVE_BAD_INPUT);
  EXPECT_STREQ(qarv_wave_error(handle.get()), "has no samples with bands");
  EXPECT_EQ(needed, 0U);
  EXPECT_EQ(Judge(handle, {1, 2}, 1, ""), QARV_WAVE_BAD_INPUT);
}

TEST(CInterface, ABufferIsAskedForFilledOrLeftAlone) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const std::string settings = R"({"points": 3})";
  const std::vector<double> wave = WaveOf(handle);
  using Call = std::function<std::int32_t(char*, std::size_t, std::size_t*)>;
  qarv_wave* const h = handle.get();
  const std::vector<Call> calls{
      [=](char* b, std::size_t c, std::size_t* n) {
        return qarv_wave_save_record(h, reinterpret_cast<std::uint8_t*>(b), c, n);
      },
      [=](char* b, std::size_t c, std::size_t* n) { return qarv_wave_definition_json(h, b, c, n); },
      [=](char* b, std::size_t c, std::size_t* n) {
        return qarv_wave_check_json(h, kPulse, std::strlen(kPulse), b, c, n);
      },
      [=](char* b, std::size_t c, std::size_t* n) { return qarv_wave_schema(h, b, c, n); },
      [=](char* b, std::size_t c, std::size_t* n) { return qarv_wave_report_json(h, b, c, n); },
      [=](char* b, std::size_t c, std::size_t* n) {
        return qarv_wave_spectrum_json(h, settings.data(), settings.size(), b, c, n);
      },
      [=](char* b, std::size_t c, std::size_t* n) {
        return qarv_wave_record_spectrum_json(h, wave.data(), wave.size(), 2560, nullptr, 0, b, c,
                                              n);
      },
      [=](char* b, std::size_t c, std::size_t* n) {
        return qarv_wave_judge_json(h, wave.data(), wave.size(), 2560, nullptr, 0, b, c, n);
      },
  };
  for (std::size_t k = 0; k < calls.size(); ++k) {
    SCOPED_TRACE(k);
    const Call& call = calls[k];
    std::size_t needed = 0;
    ASSERT_EQ(call(nullptr, 0, &needed), QARV_WAVE_OK);
    ASSERT_GT(needed, 2U);
    const std::vector<char> untouched(needed + 1, '\x55');
    std::vector<char> buffer = untouched;
    for (const std::size_t capacity : {std::size_t{0}, std::size_t{1}, needed - 1}) {
      std::size_t told = 0;
      EXPECT_EQ(call(buffer.data(), capacity, &told), QARV_WAVE_TOO_SMALL);
      EXPECT_EQ(told, needed);
      EXPECT_EQ(buffer, untouched);
      EXPECT_STREQ(qarv_wave_error(h), "the buffer is too small");
    }
    EXPECT_EQ(call(buffer.data(), needed, nullptr), QARV_WAVE_OK);
    EXPECT_STREQ(qarv_wave_error(h), "");
    EXPECT_EQ(buffer.back(), '\x55');
    std::vector<char> larger = untouched;
    EXPECT_EQ(call(larger.data(), needed + 1, &needed), QARV_WAVE_OK);
    EXPECT_EQ(larger, buffer);
    EXPECT_EQ(call(nullptr, 1, &needed), QARV_WAVE_WRONG_CALL);
    EXPECT_EQ(needed, 0U);
    EXPECT_EQ(call(nullptr, 0, nullptr), QARV_WAVE_WRONG_CALL);
  }
}

TEST(CInterface, FindingsAreThoseOfTheRules) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kMeasured), QARV_WAVE_OK);
  const auto check = [&](const std::string& text) {
    return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
      return qarv_wave_check_json(handle.get(), text.data(), text.size(), buffer, capacity, needed);
    });
  };
  const std::string small = With(kPulse, "\"Nsamp\": 512", "\"Nsamp\": 20");
  const nlohmann::json findings = Json(check(small));
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings[0]["Severity"], "fails");
  EXPECT_EQ(check(small), definition::FindingsJson(definition::Check(definition::FromJson(small))));
  EXPECT_EQ(check(kPulse), "[]");
  EXPECT_EQ(qarv_wave_size(handle.get()), 5U) << "its own waveform stays";
}

TEST(CInterface, TheSchemaIsTheLibrarys) {
  const Handle handle = NewHandle();
  const std::string schema = TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_schema(handle.get(), buffer, capacity, needed);
  });
  EXPECT_EQ(schema, definition::SchemaText());
}

// ---- Assessment --------------------------------------------------------------------------------

TEST(CInterface, ReportsWhatTheCommandReports) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const CWaveDef def = definition::Generate(definition::FromJson(kPulse));
  EXPECT_EQ(ReportOf(handle), assess::AsJson(assess::ReportOf(def)));
  const nlohmann::json report = Json(ReportOf(handle));
  EXPECT_EQ(report["peak"]["value"], 50);
  EXPECT_EQ(report["peak"]["unit"], "g");
}

TEST(CInterface, ASpectrumHasListsOfOneLength) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const nlohmann::json spectrum = Json(SpectrumOf(handle, R"({"from": 10, "to": 160,
      "per-octave": 2, "damping": 0.05, "response": "acceleration"})"));
  EXPECT_EQ(spectrum["response"], "absolute acceleration");
  EXPECT_EQ(spectrum["unit"], "g");
  EXPECT_EQ(spectrum["damping"], 0.05);
  EXPECT_EQ(spectrum["warnings"], nlohmann::json::array());
  for (const char* const key : {"frequency", "maximax", "positive", "negative", "primary_positive",
                                "primary_negative", "residual_positive", "residual_negative"}) {
    EXPECT_EQ(spectrum[key].size(), 9U) << key;
  }
  EXPECT_EQ(spectrum["frequency"][0], 10);
  EXPECT_EQ(spectrum["frequency"][8], 160);
  // The primary response of a half-sine is largest near 0.8 / D, at about 1.65 times its peak.
  double largest = 0;
  for (const auto& v : spectrum["maximax"]) largest = std::max(largest, v.get<double>());
  EXPECT_NEAR(largest / 50, 1.65, 0.05);
}

TEST(CInterface, TheSpectrumOfARecordIsThatOfTheSameWaveform) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const std::string own = SpectrumOf(handle, R"({"to": 1000, "response": "displacement"})");
  EXPECT_EQ(Json(own)["unit"], "mm");
  EXPECT_EQ(Json(own)["warnings"].size(), 1U) << "coarse above a tenth of the rate";
  const Handle empty = NewHandle();
  EXPECT_EQ(RecordSpectrumOf(empty, WaveOf(handle), 2560,
                             R"({"to": 1000, "response": "displacement", "unit": "g"})"),
            own);
  std::size_t needed = 0;
  const std::string unit = R"({"unit": "g"})";
  EXPECT_EQ(qarv_wave_spectrum_json(handle.get(), unit.data(), unit.size(), nullptr, 0, &needed),
            QARV_WAVE_BAD_INPUT);
  EXPECT_STREQ(qarv_wave_error(handle.get()), "unit: unknown key") << "a waveform has its own";
}

TEST(CInterface, JudgesARecord) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  std::vector<double> record = WaveOf(handle);
  EXPECT_EQ(Json(VerdictOf(handle, record, 2560, ""))["verdict"]["value"], "pass");
  EXPECT_EQ(Json(VerdictOf(handle, record, 2560, ""))["warnings"]["value"],
            nlohmann::json::array());
  std::vector<double> inMetres = record;
  for (double& v : inMetres) v *= 9.80665;
  EXPECT_EQ(Json(VerdictOf(handle, inMetres, 2560, R"({"unit": "m/s^2", "begin": 1}
)"))["verdict"]["value"],
            "pass");
  for (double& v : record) v *= 1.13;
  const nlohmann::json off = Json(VerdictOf(handle, record, 2560, ""));
  EXPECT_EQ(off["verdict"]["value"], "fail");
  EXPECT_EQ(off["failed"]["value"], "velocity change");
  EXPECT_EQ(Json(VerdictOf(handle, record, 2560, R"({"dv-tol": 14})"))["verdict"]["value"], "pass");
}

TEST(CInterface, SaysWhyThereIsNoVerdict) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const std::vector<double> wave = WaveOf(handle);
  std::vector<double> odd = wave;
  odd[3] = std::nan("");
  const struct {
    std::vector<double> record;
    double fsamp;
    std::string settings, key, text;
    std::size_t line;
  } cases[] = {
      {wave, 0, "", "fsamp", "fsamp: is not above 0", 0},
      {wave, std::nan(""), "", "fsamp", "fsamp: is not above 0", 0},
      {{}, 2560, "", "", "has no samples", 0},
      {odd, 2560, "", "", "sample 3 is no number", 0},
      {wave, 2560, R"({"dv-tol": -1})", "dv-tol", "dv-tol: is not 0 or above", 0},
      {wave, 2560, "{\n\"force\": 1}", "force", "force: is neither true nor false", 2},
      {wave, 2560, "{\"q\": 1}", "q", "q: unknown key", 1},
      {wave, 2560, "[]", "", "is not a JSON object", 0},
      {wave, 2560, R"({"unit": "furlong"})", "", "its unit is furlong, not g", 0},
      {std::vector<double>(600, 0.0), 2560, "", "",
       "does not show the pulse: the correlation is 0.000, below 0.7", 0},
      {wave, 1280, "", "",
       "is sampled at 1280 Hz, below the 2560 Hz of the definition: ringing above 640 Hz is not "
       "seen; --force judges it all the same",
       0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Judge(handle, c.record, c.fsamp, c.settings), QARV_WAVE_BAD_INPUT) << c.text;
    EXPECT_EQ(qarv_wave_error(handle.get()), c.text);
    EXPECT_EQ(qarv_wave_error_key(handle.get()), c.key);
    EXPECT_EQ(qarv_wave_error_line(handle.get()), c.line) << c.text;
  }
}

// ---- Errors ------------------------------------------------------------------------------------

// ---- Synthesis ---------------------------------------------------------------------------------

/// Counts its calls and ends the work with one of them.
struct Watcher {
  int calls = 0;
  int last = 0;  // 0 for none
  double share = 0.0;
  bool rising = true;
};

std::int32_t Watch(double share, void* context) {
  auto* const watcher = static_cast<Watcher*>(context);
  if (!(share >= watcher->share && share <= 1.0)) watcher->rising = false;
  watcher->share = share;
  return ++watcher->calls == watcher->last ? 1 : 0;
}

TEST(CInterface, ASynthesisSaysHowFarItIsAndCanBeEndedAtAnyStep) {
  const std::string required = R"({"Points": [[45, 20], [500, 40]]})";
  const std::string quick = R"({"quick": true})";
  const auto run = [&](const Handle& handle, Watcher* watcher) {
    return qarv_wave_synthesize(handle.get(), required.data(), required.size(), nullptr, 0,
                                quick.data(), quick.size(), Watch, watcher);
  };
  const Handle handle = NewHandle();
  Watcher whole;
  ASSERT_EQ(run(handle, &whole), QARV_WAVE_OK) << qarv_wave_error(handle.get());
  EXPECT_GT(whole.calls, 10);
  EXPECT_TRUE(whole.rising);
  const std::vector<std::uint8_t> record = RecordOf(handle);
  for (int last = 1; last <= whole.calls; last += 1 + whole.calls / 8) {
    Watcher watcher;
    watcher.last = last;
    EXPECT_EQ(run(handle, &watcher), QARV_WAVE_CANCELLED);
    EXPECT_STREQ(qarv_wave_error(handle.get()), "cancelled");
    EXPECT_EQ(watcher.calls, last) << "it is not called again";
    ExpectNoWave(handle.get());
    std::size_t needed = 1;
    EXPECT_EQ(qarv_wave_synthesis_json(handle.get(), nullptr, 0, &needed), QARV_WAVE_WRONG_CALL);
  }
  Watcher again;
  ASSERT_EQ(run(handle, &again), QARV_WAVE_OK);
  EXPECT_EQ(RecordOf(handle), record);
  // The figures go with the waveform that they are of.
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  std::size_t needed = 0;
  EXPECT_EQ(qarv_wave_synthesis_json(handle.get(), nullptr, 0, &needed), QARV_WAVE_WRONG_CALL);
  EXPECT_STREQ(qarv_wave_error(handle.get()), "the waveform is of no synthesis");
  EXPECT_EQ(qarv_wave_synthesize(nullptr, nullptr, 0, nullptr, 0, nullptr, 0, nullptr, nullptr),
            QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(
      qarv_wave_synthesize(handle.get(), nullptr, 3, nullptr, 0, nullptr, 0, nullptr, nullptr),
      QARV_WAVE_WRONG_CALL);
}

TEST(CInterface, AnErrorHasTheTextOfTheLibraryItsKeyAndItsLine) {
  const struct {
    std::string text;
    std::int32_t status;
    std::size_t line;
  } cases[] = {
      {With(kPulse, "0.011", "\"wide\""), QARV_WAVE_BAD_INPUT, 6},
      {With(kPulse, "\"Fmax\": 1000,", ""), QARV_WAVE_BAD_INPUT, 3},
      {With(kPulse, "\"Nsamp\"", "\"N\\nsamp\""), QARV_WAVE_BAD_INPUT, 3},
      {With(kPulse, "\"Nsamp\": 512", "\"Nsamp\": 20"), QARV_WAVE_REFUSED, 0},
      {With(kPulse, "\"Nsamp\": 512", "\"Nsamp\": 4e9"), QARV_WAVE_REFUSED, 0},
      {"{\n\n\"Single\": 1,}", QARV_WAVE_BAD_INPUT, 3},
      {"{}", QARV_WAVE_BAD_INPUT, 0},
      {"", QARV_WAVE_BAD_INPUT, 1},
      {R"({"Measure": {"MeasPath": "/etc/passwd"}})", QARV_WAVE_BAD_INPUT, 1},
  };
  const Handle handle = NewHandle();
  for (const auto& c : cases) {
    if (c.text.find("4e9") != std::string::npos && sizeof(void*) == 8) continue;  // may well fit
    ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
    EXPECT_EQ(Define(handle, c.text), c.status) << c.text;
    EXPECT_EQ(qarv_wave_error_line(handle.get()), c.line) << c.text;
    try {
      definition::Generate(definition::FromJson(c.text));
      ADD_FAILURE() << "the library takes " << c.text;
    } catch (const definition::Error& e) {
      EXPECT_STREQ(qarv_wave_error(handle.get()), e.what());
      EXPECT_EQ(qarv_wave_error_key(handle.get()), e.GetKey());
    }
    ExpectNoWave(handle.get());
  }
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  EXPECT_STREQ(qarv_wave_error(handle.get()), "");
  EXPECT_STREQ(qarv_wave_error_key(handle.get()), "");
}

TEST(CInterface, AskingForWhatIsNotThereIsAnErrorAndTheErrorStaysBesidePlainNumbers) {
  const Handle handle = NewHandle();
  qarv_wave* const h = handle.get();
  std::size_t n = 0;
  std::size_t last = 0;
  double v = 0;
  EXPECT_EQ(qarv_wave_save_record(h, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_definition_json(h, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_main_pulse(h, &n, &last), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_motion(h, &v, &v, 1), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_report_json(h, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_spectrum_json(h, nullptr, 0, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(Judge(handle, {1, 2}, 1, ""), QARV_WAVE_WRONG_CALL);
  ExpectNoWave(h);
  EXPECT_STREQ(qarv_wave_error(h), "the handle has no waveform");
}

TEST(CInterface, NullPointersAreErrorsOfTheCall) {
  const Handle handle = NewHandle();
  qarv_wave* const h = handle.get();
  std::size_t n = 0;
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  EXPECT_EQ(qarv_wave_check_json(h, nullptr, 3, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_spectrum_json(h, nullptr, 3, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_record_spectrum_json(h, nullptr, 3, 1, nullptr, 0, nullptr, 0, &n),
            QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_judge_json(h, nullptr, 3, 1, nullptr, 0, nullptr, 0, &n),
            QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_judge_json(h, nullptr, 0, 1, nullptr, 3, nullptr, 0, &n),
            QARV_WAVE_WRONG_CALL);
  EXPECT_STREQ(qarv_wave_error(h), "a null pointer has no elements");
  EXPECT_EQ(qarv_wave_size(h), 512U);
  EXPECT_EQ(qarv_wave_load_record(h, nullptr, 0), QARV_WAVE_BAD_INPUT);
  EXPECT_STREQ(qarv_wave_error(h), "is not a whole record of a definition");
  EXPECT_EQ(qarv_wave_load_record(h, nullptr, 1), QARV_WAVE_WRONG_CALL);
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  EXPECT_EQ(qarv_wave_define_json(h, nullptr, 1), QARV_WAVE_WRONG_CALL);
  ExpectNoWave(h);
}

TEST(CInterface, ANullHandleIsNoCrash) {
  std::size_t n = 7;
  double v = 0;
  const std::uint8_t byte = 0;
  qarv_wave_free(nullptr);
  ExpectNoWave(nullptr);
  EXPECT_STREQ(qarv_wave_error(nullptr), "");
  EXPECT_STREQ(qarv_wave_error_key(nullptr), "");
  EXPECT_EQ(qarv_wave_error_line(nullptr), 0U);
  EXPECT_EQ(qarv_wave_define_json(nullptr, kPulse, 1), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_load_record(nullptr, &byte, 1), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_save_record(nullptr, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_definition_json(nullptr, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_check_json(nullptr, kPulse, 1, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_schema(nullptr, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_main_pulse(nullptr, &n, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_motion(nullptr, &v, &v, 1), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_report_json(nullptr, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_spectrum_json(nullptr, nullptr, 0, nullptr, 0, &n), QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_record_spectrum_json(nullptr, &v, 1, 1, nullptr, 0, nullptr, 0, &n),
            QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(qarv_wave_judge_json(nullptr, &v, 1, 1, nullptr, 0, nullptr, 0, &n),
            QARV_WAVE_WRONG_CALL);
  EXPECT_EQ(n, 7U);
}

}  // namespace
}  // namespace qarv::test
