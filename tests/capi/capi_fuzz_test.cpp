// The C interface under damaged texts and records, calls in any order, and memory that runs out:
// the same answers as the library below it, and never an end of the process.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "definition/definition.h"
#include "interface.h"
#include "random_values.h"
#include "throwing_new.h"

namespace qarv::test {
namespace {

/// What the library says of a text or a record: the error, or none.
template <class Make>
std::optional<definition::Error> ErrorOf(Make make) {
  try {
    make();
    return {};
  } catch (const definition::Error& e) {
    return e;
  }
}

std::int32_t StatusOf(const std::optional<definition::Error>& error) {
  if (!error) return QARV_WAVE_OK;
  return error->GetKind() == definition::Error::Kind::Refused ? QARV_WAVE_REFUSED
                                                              : QARV_WAVE_BAD_INPUT;
}

/// The interface has said the same of an input as the library.
void ExpectSame(const Handle& handle, std::int32_t status,
                const std::optional<definition::Error>& error) {
  EXPECT_EQ(status, StatusOf(error));
  EXPECT_STREQ(qarv_wave_error(handle.get()), error ? error->what() : "");
  EXPECT_EQ(qarv_wave_error_key(handle.get()), error ? error->GetKey() : "");
  EXPECT_EQ(qarv_wave_error_line(handle.get()), error ? error->GetLine() : 0);
  if (error) ExpectNoWave(handle.get());
}

void CompareText(const Handle& handle, const std::string& text) {
  SCOPED_TRACE(text);
  const auto error = ErrorOf([&] { definition::Generate(definition::FromJson(text)); });
  ExpectSame(handle, Define(handle, text), error);
}

void CompareRecord(const Handle& handle, const std::vector<std::uint8_t>& record) {
  const auto error = ErrorOf([&] { definition::FromRecord(record); });
  ExpectSame(handle, qarv_wave_load_record(handle.get(), record.data(), record.size()), error);
}

/// Every question to a handle, whatever it holds; what it is told has to be consistent.
void AskEverything(const Handle& handle) {
  qarv_wave* const h = handle.get();
  const std::size_t size = qarv_wave_size(h);
  const double* const wave = qarv_wave_samples(h);
  EXPECT_EQ(wave == nullptr, size == 0);
  std::vector<char> text(1 << 16);
  std::vector<double> motion(size);
  std::size_t needed = 0;
  const auto expectKnown = [&](std::int32_t status) {
    EXPECT_GE(status, QARV_WAVE_OK);
    EXPECT_LE(status, QARV_WAVE_TOO_SMALL);
    EXPECT_EQ(*qarv_wave_error(h) == '\0', status == QARV_WAVE_OK);
  };
  expectKnown(qarv_wave_save_record(h, nullptr, 0, &needed));
  expectKnown(qarv_wave_definition_json(h, text.data(), text.size(), &needed));
  expectKnown(qarv_wave_report_json(h, text.data(), text.size(), &needed));
  const std::string machine = R"({"MaxAccel": 5, "Stroke": 9, "LowestFrequency": 5})";
  expectKnown(qarv_wave_machine_report_json(h, machine.data(), machine.size(), text.data(),
                                            text.size(), &needed));
  expectKnown(qarv_wave_synthesis_json(h, text.data(), text.size(), &needed));
  expectKnown(qarv_wave_motion(h, motion.data(), motion.data(), size));
  std::size_t first = 0;
  std::size_t last = 0;
  const std::int32_t pulse = qarv_wave_main_pulse(h, &first, &last);
  expectKnown(pulse);
  if (pulse == QARV_WAVE_OK) {
    EXPECT_LT(last, size);
    EXPECT_LE(first, last);
  }
  const std::string settings = R"({"points": 2})";
  expectKnown(qarv_wave_spectrum_json(h, settings.data(), settings.size(), text.data(), text.size(),
                                      &needed));
  expectKnown(
      qarv_wave_judge_json(h, wave, size, 1000.0, nullptr, 0, text.data(), text.size(), &needed));
}

/// Byte by byte another text or record.
template <class Bytes>
Bytes Damaged(Bytes bytes, RandomValues* random) {
  using Byte = typename Bytes::value_type;
  for (unsigned int n = 1 + random->Below(3); n > 0 && !bytes.empty(); --n) {
    const auto at = bytes.begin() + random->Below(static_cast<unsigned int>(bytes.size()));
    const auto telling = random->Pick({'0', '9', '-', 'e', '.', '"', '{', ']', ',', '\n', '\0'});
    switch (random->Below(4)) {
      case 0:
        *at = static_cast<Byte>(random->Below(256));
        break;
      case 1:
        bytes.erase(at);
        break;
      case 2:
        bytes.insert(at, static_cast<Byte>(telling));
        break;
      default:
        *at = static_cast<Byte>(static_cast<unsigned char>(*at) ^ (1U << random->Below(8)));
    }
  }
  return bytes;
}

/// The examples that hold all they need, and are short.
std::vector<std::string> Seeds() {
  std::vector<std::string> seeds{kPulse, kMeasured};
  for (const std::string& text : ExampleTexts()) {
    if (!ErrorOf([&] { definition::Generate(definition::FromJson(text)); })) seeds.push_back(text);
  }
  EXPECT_GT(seeds.size(), 20U);
  return seeds;
}

TEST(CInterfaceFuzz, NoPartOfATextIsADefinition) {
  const Handle handle = NewHandle();
  for (const std::string text : {kPulse, kMeasured}) {
    for (std::size_t n = 0; n < text.size(); ++n) CompareText(handle, text.substr(0, n));
  }
}

TEST(CInterfaceFuzz, NoPartOfARecordIsOne) {
  const Handle handle = NewHandle();
  for (const std::string text : {kPulse, kMeasured}) {
    ASSERT_EQ(Define(handle, text), QARV_WAVE_OK);
    std::vector<std::uint8_t> record = RecordOf(handle);
    for (std::size_t n = 0; n < record.size(); ++n) {
      SCOPED_TRACE(n);
      const std::vector<std::uint8_t> part(record.begin(),
                                           record.begin() + static_cast<std::ptrdiff_t>(n));
      ASSERT_EQ(qarv_wave_load_record(handle.get(), part.data(), n), QARV_WAVE_BAD_INPUT);
      ASSERT_STREQ(qarv_wave_error(handle.get()), "is not a whole record of a definition");
    }
    record.push_back(0);
    CompareRecord(handle, record);
    EXPECT_STREQ(qarv_wave_error(handle.get()), "goes on behind the record");
  }
}

TEST(CInterfaceFuzz, OfADamagedTextItSaysWhatTheLibrarySays) {
  RandomValues random(1);
  const std::vector<std::string> seeds = Seeds();
  const Handle handle = NewHandle();
  int defined = 0;
  for (int i = 0; i < 2000; ++i) {
    std::string text = seeds[random.Below(static_cast<unsigned int>(seeds.size()))];
    text = Damaged(std::move(text), &random);
    // A number that has grown may ask for gigabytes, which is another test's matter.
    if (text.find("00000") != std::string::npos) continue;
    CompareText(handle, text);
    if (i % 20 == 0) AskEverything(handle);
    if (qarv_wave_size(handle.get()) != 0) ++defined;
    if (HasFailure()) return;
  }
  EXPECT_GT(defined, 100);
}

TEST(CInterfaceFuzz, OfADamagedRecordItSaysWhatTheLibrarySays) {
  RandomValues random(2);
  std::vector<std::vector<std::uint8_t>> records;
  const Handle handle = NewHandle();
  for (const std::string& text : Seeds()) {
    ASSERT_EQ(Define(handle, text), QARV_WAVE_OK);
    if (qarv_wave_size(handle.get()) <= 4096) records.push_back(RecordOf(handle));
  }
  int restored = 0;
  for (int i = 0; i < 2000; ++i) {
    std::vector<std::uint8_t> record =
        records[random.Below(static_cast<unsigned int>(records.size()))];
    // Most of a record is samples: the parameters come first, and are what is hit half of the time.
    if (random.OneIn(2)) {
      const std::size_t head = std::min<std::size_t>(record.size(), 600);
      record[random.Below(static_cast<unsigned int>(head))] =
          static_cast<std::uint8_t>(random.Below(256));
    } else {
      record = Damaged(std::move(record), &random);
    }
    SCOPED_TRACE(i);
    CompareRecord(handle, record);
    if (qarv_wave_size(handle.get()) != 0) ++restored;
    if (i % 10 == 0) AskEverything(handle);
    if (HasFailure()) return;
  }
  EXPECT_GT(restored, 100);
}

TEST(CInterfaceFuzz, OfDamagedSettingsItSaysWhatIsWrong) {
  RandomValues random(3);
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const std::string spectrum = R"({"response": "pseudo-velocity", "q": 10, "from": 10, "to": 99,
                                   "per-octave": 3})";
  const std::string judge = R"({"dv-tol": 10, "force": true, "unit": "g", "begin": 0.5})";
  const double* const wave = qarv_wave_samples(handle.get());
  const std::size_t size = qarv_wave_size(handle.get());
  std::size_t needed = 0;
  int taken = 0;
  for (int i = 0; i < 500; ++i) {
    const std::string a = Damaged(spectrum, &random);
    const std::string b = Damaged(judge, &random);
    for (const std::int32_t status :
         {qarv_wave_spectrum_json(handle.get(), a.data(), a.size(), nullptr, 0, &needed),
          qarv_wave_judge_json(handle.get(), wave, size, 2560, b.data(), b.size(), nullptr, 0,
                               &needed)}) {
      EXPECT_TRUE(status == QARV_WAVE_OK || status == QARV_WAVE_BAD_INPUT) << a << b;
      if (status == QARV_WAVE_OK) ++taken;
    }
  }
  EXPECT_GT(taken, 10);
}

TEST(CInterfaceFuzz, CallsInAnyOrderAreAnswered) {
  RandomValues random(4);
  const std::vector<std::string> seeds = Seeds();
  Handle handle = NewHandle();
  std::vector<std::uint8_t> record;
  for (int i = 0; i < 3000; ++i) {
    switch (random.Below(8)) {
      case 0:
        handle = NewHandle();
        break;
      case 1:
        Define(handle, seeds[random.Below(static_cast<unsigned int>(seeds.size()))]);
        break;
      case 2:
        Define(handle, "{}");
        break;
      case 3:
        qarv_wave_load_record(handle.get(), record.data(), record.size());
        break;
      case 4:
        if (qarv_wave_size(handle.get()) != 0) record = RecordOf(handle);
        break;
      case 5:
        if (random.OneIn(10)) AskEverything(handle);
        break;
      case 6: {
        std::size_t needed = 0;
        EXPECT_EQ(qarv_wave_check_json(handle.get(), kPulse, std::char_traits<char>::length(kPulse),
                                       nullptr, 0, &needed),
                  QARV_WAVE_OK);
        break;
      }
      default: {
        // What is borrowed can be read to its end.
        const std::size_t size = qarv_wave_size(handle.get());
        double sum = 0;
        for (const double* samples :
             {qarv_wave_samples(handle.get()), qarv_wave_upper(handle.get()),
              qarv_wave_lower(handle.get())}) {
          for (std::size_t k = 0; samples != nullptr && k < size; ++k) sum += samples[k];
        }
        EXPECT_FALSE(std::isinf(sum));
      }
    }
  }
}

// ---- Memory that runs out ----------------------------------------------------------------------

/// Runs `call` with each of its allocations failing; it says that, or has done its work all the
/// same.
template <class Call, class Look>
void StarveEveryAllocation(Starved::How how, Call call, Look look) {
  const unsigned long long allocations = AllocationsOf([&] { call(); });
  ASSERT_GT(allocations, 0U);
  int failed = 0;
  for (unsigned long long k = 1; k <= allocations; ++k) {
    SCOPED_TRACE(k);
    std::int32_t status = QARV_WAVE_OK;
    {
      const Starved starved(k, how);
      status = call();
    }
    if (status != QARV_WAVE_OK) ++failed;
    look(status);
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(failed, 0);
}

TEST(CInterfaceMemory, ARecordThatFindsNoneLeavesNoWaveformAndSaysSo) {
  const Handle handle = NewHandle();
  ASSERT_EQ(Define(handle, kPulse), QARV_WAVE_OK);
  const std::vector<std::uint8_t> record = RecordOf(handle);
  for (const auto how : {Starved::How::Once, Starved::How::FromThenOn}) {
    StarveEveryAllocation(
        how, [&] { return qarv_wave_load_record(handle.get(), record.data(), record.size()); },
        [&](std::int32_t status) {
          if (status == QARV_WAVE_OK) return;
          EXPECT_EQ(status, QARV_WAVE_OUT_OF_MEMORY);
          EXPECT_STREQ(qarv_wave_error(handle.get()), "out of memory");
          ExpectNoWave(handle.get());
        });
    ASSERT_EQ(qarv_wave_load_record(handle.get(), record.data(), record.size()), QARV_WAVE_OK);
    EXPECT_EQ(RecordOf(handle), record);
    std::vector<std::uint8_t> again(record.size());
    StarveEveryAllocation(
        how,
        [&] { return qarv_wave_save_record(handle.get(), again.data(), again.size(), nullptr); },
        [&](std::int32_t status) {
          if (status == QARV_WAVE_OK) {
            EXPECT_EQ(again, record);
          } else {
            EXPECT_EQ(status, QARV_WAVE_OUT_OF_MEMORY);
          }
        });
    std::vector<double> motion(qarv_wave_size(handle.get()));
    StarveEveryAllocation(
        how, [&] { return qarv_wave_motion(handle.get(), motion.data(), nullptr, motion.size()); },
        [&](std::int32_t status) {
          EXPECT_TRUE(status == QARV_WAVE_OK || status == QARV_WAVE_OUT_OF_MEMORY) << status;
        });
  }
}

TEST(CInterfaceMemory, ADefinitionThatFindsNoneLeavesNoWaveformAndSaysSo) {
  const Handle handle = NewHandle();
  // An object that grows while it has a list in it already.
  const char* const growing = R"({"Measure": {"Samples": [1, 2, 3], "MeasPath": "m.csv"},
      "UnitAmpl": "g", "TolUpperRat": 0.1, "TolLowerRat": -0.1, "MaxNsamp": 9, "Fsamp": 50})";
  for (const std::string text : {kPulse, kMeasured, growing}) {
    ASSERT_EQ(Define(handle, text), QARV_WAVE_OK);
    const std::vector<std::uint8_t> record = RecordOf(handle);
    for (const auto how : {Starved::How::Once, Starved::How::FromThenOn}) {
      StarveEveryAllocation(
          how, [&] { return Define(handle, text); },
          [&](std::int32_t status) {
            if (status == QARV_WAVE_OK) return;
            if (status == QARV_WAVE_REFUSED) {
              EXPECT_NE(std::string(qarv_wave_error(handle.get())).find("fit into memory"),
                        std::string::npos);
            } else {
              EXPECT_EQ(status, QARV_WAVE_OUT_OF_MEMORY);
              EXPECT_STREQ(qarv_wave_error(handle.get()), "out of memory");
            }
            ExpectNoWave(handle.get());
          });
    }
    ASSERT_EQ(Define(handle, text), QARV_WAVE_OK) << "there is memory again";
    EXPECT_EQ(RecordOf(handle), record);
  }
}

TEST(CInterfaceMemory, AnOutputThatFindsNoneSaysSo) {
  const Handle handle = NewHandle();
  qarv_wave* const h = handle.get();
  const std::string bad =
      R"({"Classical": {"WaveKind": "HALF_SINE", "MainAmpl": -1, "MainWidth": 0.011, "Fmax": 1000,
          "Nsamp": 20, "TolKind": "TOL_FIXED_4"}})";
  const std::string settings = R"({"points": 5})";
  const std::string machine =
      R"({"Name": "a name that needs memory of its own", "MaxAccel": "5 g", "Stroke": 9})";
  std::vector<char> buffer(1 << 16);
  for (const std::string text : {kPulse, kMeasured}) {
    ASSERT_EQ(Define(handle, text), QARV_WAVE_OK);
    const std::vector<double> wave(qarv_wave_samples(h), qarv_wave_samples(h) + qarv_wave_size(h));
    const double fsamp = qarv_wave_sample_rate(h);
    std::vector<double> failing(wave);  // by its bands and by its velocity change
    for (double& v : failing) v *= 1.5;
    const std::function<std::int32_t(std::size_t*)> calls[] = {
        [&](std::size_t* n) { return qarv_wave_definition_json(h, buffer.data(), 1 << 16, n); },
        [&](std::size_t* n) {
          return qarv_wave_check_json(h, bad.data(), bad.size(), buffer.data(), 1 << 16, n);
        },
        [&](std::size_t* n) { return qarv_wave_report_json(h, buffer.data(), 1 << 16, n); },
        [&](std::size_t* n) {
          return qarv_wave_machine_report_json(h, machine.data(), machine.size(), buffer.data(),
                                               1 << 16, n);
        },
        [&](std::size_t* n) {
          return qarv_wave_spectrum_json(h, settings.data(), settings.size(), buffer.data(),
                                         1 << 16, n);
        },
        [&](std::size_t* n) {
          return qarv_wave_judge_json(h, wave.data(), wave.size(), fsamp, nullptr, 0, buffer.data(),
                                      1 << 16, n);
        },
        [&](std::size_t* n) {
          return qarv_wave_judge_json(h, failing.data(), failing.size(), fsamp, nullptr, 0,
                                      buffer.data(), 1 << 16, n);
        },
    };
    for (const auto& call : calls) {
      SCOPED_TRACE(&call - calls);
      std::size_t needed = 0;
      ASSERT_EQ(call(&needed), QARV_WAVE_OK) << qarv_wave_error(h);
      const std::string whole = buffer.data();
      for (const auto how : {Starved::How::Once, Starved::How::FromThenOn}) {
        StarveEveryAllocation(
            how,
            [&] {
              std::size_t unused = 0;
              return call(&unused);
            },
            [&](std::int32_t status) {
              if (status == QARV_WAVE_OUT_OF_MEMORY) {
                EXPECT_STREQ(qarv_wave_error(h), "out of memory");
              } else {
                EXPECT_EQ(status, QARV_WAVE_OK);
              }
              EXPECT_EQ(qarv_wave_size(h), wave.size());
            });
        EXPECT_EQ(call(&needed), QARV_WAVE_OK);
        EXPECT_EQ(buffer.data(), whole);
      }
    }
  }
}

// Not each of its allocations, of which there are many: the first ones, and further apart the
// later.
TEST(CInterfaceMemory, ASynthesisThatFindsNoneSaysSoAndLeavesNoWaveform) {
  const Handle handle = NewHandle();
  const std::string required = R"({"Name": "a name that needs memory of its own",
      "Points": [[45, 20], [200, 40]]})";
  const std::string machine = R"({"Stroke": "9 m"})";
  const std::string settings = R"({"quick": true, "shape": "sweep"})";
  const auto call = [&] {
    return qarv_wave_synthesize(handle.get(), required.data(), required.size(), machine.data(),
                                machine.size(), settings.data(), settings.size(), nullptr, nullptr);
  };
  std::int32_t status = QARV_WAVE_OUT_OF_MEMORY;
  const unsigned long long allocations = AllocationsOf([&] { status = call(); });
  ASSERT_EQ(status, QARV_WAVE_OK) << qarv_wave_error(handle.get());
  const std::vector<std::uint8_t> record = RecordOf(handle);
  const auto expectNone = [&](unsigned long long k, Starved::How how) {
    SCOPED_TRACE(k);
    {
      const Starved starved(k, how);
      status = call();
    }
    if (status == QARV_WAVE_OK) return;
    const bool refused = status == QARV_WAVE_REFUSED;  // the definition that was found
    EXPECT_EQ(status, refused ? QARV_WAVE_REFUSED : QARV_WAVE_OUT_OF_MEMORY);
    EXPECT_STREQ(qarv_wave_error(handle.get()),
                 refused ? "Damping: the waveform does not fit into memory" : "out of memory");
    ExpectNoWave(handle.get());
  };
  for (const auto how : {Starved::How::Once, Starved::How::FromThenOn}) {
    for (unsigned long long k = 1; k <= allocations; k += 1 + k / 2) {
      expectNone(k, how);
      if (HasFailure()) return;
    }
    // The last ones make the figures.
    for (unsigned long long k = 1; k < allocations && k < 400; k += 29) {
      expectNone(allocations - k, how);
      if (HasFailure()) return;
    }
  }
  ASSERT_EQ(call(), QARV_WAVE_OK);
  EXPECT_EQ(RecordOf(handle), record);
}

TEST(CInterfaceMemory, AHandleThatFindsNoneIsNull) {
  const Starved starved(1, Starved::How::FromThenOn);
  EXPECT_EQ(qarv_wave_new(), nullptr);
}

}  // namespace
}  // namespace qarv::test
