// NumPy files: ours read by NumPy itself, its own and those laid out by hand read by us.
#include "exchange/npy.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "exchange/csv.h"
#include "sample_files.h"
#include "temp_folder.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::Signal;
using exchange::Sink;

std::vector<Signal> Read(const std::string& bytes) { return exchange::ReadNpy(BytesOf(bytes)); }

std::string WriteNpy(const OwnedWaveform& wave) {
  return Written([&](const Sink& sink) { exchange::WriteNpy(wave.View(), sink); });
}

/// A file with the header of this dictionary.
std::string FileOf(const std::string& dictionary, const std::string& array, int version = 1) {
  std::string bytes = "\x93NUMPY";
  bytes += static_cast<char>(version);
  bytes += '\0';
  const std::string header = dictionary + "\n";
  for (int i = 0; i < (version == 1 ? 2 : 4); ++i) {
    bytes += static_cast<char>(header.size() >> (8 * i) & 0xFF);
  }
  return bytes + header + array;
}

/// The numbers as bytes, most significant first or last.
template <class T>
std::string BytesOfNumbers(const std::vector<T>& numbers, bool bigEndian) {
  std::string bytes;
  for (const T v : numbers) {
    std::string number(sizeof(T), '\0');
    std::memcpy(number.data(), &v, sizeof(T));
    const bool swaps = bigEndian == (std::endian::native == std::endian::little);
    bytes += swaps ? std::string(number.rbegin(), number.rend()) : number;
  }
  return bytes;
}

/// Runs a script with arguments that have no blanks.
int RunPython(const TempFolder& folder, const std::string& script, const std::string& arguments) {
  WriteText(folder / "script.py", script);
  return std::system(("/usr/bin/python3 " + (folder / "script.py") + " " + arguments).c_str());
}

void ExpectSameBits(const std::vector<double>& a, const std::vector<double>& b) {
  ASSERT_EQ(a.size(), b.size());
  EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(double)), 0);
}

TEST(Npy, IsReadByNumPyAsTheCsvIs) {
  const TempFolder folder;
  RandomValues random(3);
  const OwnedWaveform wave = RandomWaveform(&random, 4097, true);
  WriteText(folder / "w.npy", WriteNpy(wave));
  WriteText(folder / "w.csv",
            Written([&](const Sink& sink) { exchange::WriteWaveCsv(wave.View(), sink); }));
  EXPECT_EQ(RunPython(folder, R"(
import sys
import numpy
array = numpy.load(sys.argv[1])
text = numpy.genfromtxt(sys.argv[2], delimiter=",", names=True)
assert array.dtype.names == ("time", "waveform", "lower", "upper"), array.dtype
assert array.shape == text.shape == (4097,), array.shape
for name in array.dtype.names:
    assert array[name].dtype == numpy.float64
    assert numpy.array_equal(array[name], text[name], equal_nan=True), name
)",
                      (folder / "w.npy") + " " + (folder / "w.csv")),
            0);
}

TEST(Npy, ReadsWhatNumPyWrites) {
  const TempFolder folder;
  ASSERT_EQ(RunPython(folder, R"(
import sys
import numpy
from numpy.lib import format
folder = sys.argv[1]
values = numpy.arange(24) * 0.25 - 1
for order in "<>":
    for width in "48":
        kind = order + "f" + width
        numpy.save(f"{folder}/list_{order}{width}.npy", values.astype(kind))
        numpy.save(f"{folder}/table_{order}{width}.npy", values.reshape(8, 3).astype(kind))
        numpy.save(f"{folder}/fortran_{order}{width}.npy",
                   numpy.asfortranarray(values.reshape(8, 3).astype(kind)))
        numpy.save(f"{folder}/row_{order}{width}.npy", values.reshape(1, 24).astype(kind))
        records = numpy.zeros(8, [("a", kind), ("time", "<f8"), ("b\u00e9", kind)])
        records["a"], records["b\u00e9"] = values[:8], values[8:16]
        records["time"] = 5 + numpy.arange(8) / 4
        with open(f"{folder}/records_{order}{width}.npy", "wb") as file:
            format.write_array(file, records, version=(2, 0))
)",
                      folder.GetPath().string()),
            0);
  std::vector<double> values;
  for (int i = 0; i < 24; ++i) values.push_back(i * 0.25 - 1);
  for (const char* const type : {"<4", "<8", ">4", ">8"}) {
    const auto read = [&](const std::string& what) {
      return Read(ReadText(folder / (what + "_" + type + ".npy")));
    };
    for (const char* const what : {"list", "row"}) {
      const auto list = read(what);
      ASSERT_EQ(list.size(), 1U);
      EXPECT_EQ(list[0].values, values);
      EXPECT_EQ(list[0].fsamp, 0.0);
      EXPECT_EQ(list[0].name, "");
    }
    for (const char* const what : {"table", "fortran"}) {
      const auto columns = read(what);
      ASSERT_EQ(columns.size(), 3U);
      for (std::size_t c = 0; c < 3; ++c) {
        ASSERT_EQ(columns[c].values.size(), 8U);
        for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(columns[c].values[i], values[3 * i + c]);
      }
    }
    const auto records = read("records");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].name, "a");
    EXPECT_EQ(records[1].name, "b\xC3\xA9");
    EXPECT_EQ(records[0].values, std::vector<double>(values.begin(), values.begin() + 8));
    EXPECT_EQ(records[1].values, std::vector<double>(values.begin() + 8, values.begin() + 16));
    for (const Signal& signal : records) {
      EXPECT_EQ(signal.begin, 5.0);
      EXPECT_EQ(SampleRateOf(signal), 4.0);
    }
  }
}

TEST(Npy, AWaveformComesBackWithTheSameBits) {
  RandomValues random(4);
  for (const std::size_t n : std::vector<std::size_t>{1, 2, 3, 1001, 50001}) {
    OwnedWaveform wave = RandomWaveform(&random, n, true);
    wave.waveform[n / 2] = std::bit_cast<double>(std::uint64_t{0xFFF8000000001234});
    const auto back = Read(WriteNpy(wave));
    ASSERT_EQ(back.size(), 3U);
    EXPECT_EQ(back[0].name, "waveform");
    EXPECT_EQ(back[1].name, "lower");
    EXPECT_EQ(back[2].name, "upper");
    ExpectSameBits(back[0].values, wave.waveform);
    ExpectSameBits(back[1].values, wave.lower);
    ExpectSameBits(back[2].values, wave.upper);
    EXPECT_EQ(n > 1 ? SampleRateOf(back[2]) : wave.fsamp, wave.fsamp);
  }
}

TEST(Npy, TheArrayBeginsAtAMultipleOf64Bytes) {
  for (const std::size_t n : std::vector<std::size_t>{1, 9, 10, 4095, 4096, 4097, 1000000}) {
    const std::vector<double> samples(n);
    const std::string bytes = WriteNpy({samples, samples, samples});
    const auto array = bytes.find('\n') + 1;
    EXPECT_EQ(array % 64, 0U);
    EXPECT_EQ(bytes.size() - array, 32U * n);
  }
}

TEST(Npy, TakesEveryByteOrderWidthAndSpelling) {
  const std::vector<double> numbers{0.5, -2.0, HUGE_VAL};
  const std::vector<float> floats{0.5F, -2.0F, HUGE_VALF};
  for (const bool big : {false, true}) {
    const std::string order = big ? ">" : "<";
    for (const int version : {1, 2}) {
      EXPECT_EQ(
          Read(FileOf("{'descr': '" + order + "f8', 'fortran_order': False, 'shape': (3,), }   ",
                      BytesOfNumbers(numbers, big), version))[0]
              .values,
          numbers);
      EXPECT_EQ(Read(FileOf("{\"shape\":(3),\"descr\":\"" + order + "f4\"}",
                            BytesOfNumbers(floats, big), version))[0]
                    .values,
                numbers);
    }
  }
}

TEST(Npy, TakesNoColumnOfATableForTheTime) {
  const auto columns = Read(FileOf("{'descr': '<f8', 'fortran_order': False, 'shape': (3, 2)}",
                                   BytesOfNumbers<double>({0, 5, 0.5, 6, 1, 7}, false)));
  ASSERT_EQ(columns.size(), 2U);
  EXPECT_EQ(columns[0].values, (std::vector<double>{0, 0.5, 1}));
  EXPECT_EQ(columns[1].values, (std::vector<double>{5, 6, 7}));
  EXPECT_TRUE(columns[1].times.empty());
}

TEST(Npy, RefusesWhatIsNoArrayOfNumbers) {
  const std::string three = BytesOfNumbers<double>({1, 2, 3}, false);
  const auto refused = [&](const std::string& dictionary, const std::string& what) {
    ExpectError([&] { Read(FileOf(dictionary, three)); }, what);
  };
  for (const char* const type : {"<i4", "|u1", "<c16", "|O", "<f2", "<f16", "=f8", "f8", ""}) {
    refused("{'descr': '" + std::string(type) + "', 'fortran_order': False, 'shape': (3,), }",
            "its numbers are of the type " + std::string(type) + ", not <f4, <f8, >f4 or >f8");
  }
  const std::string begin = "{'descr': '<f8', 'fortran_order': False, 'shape': ";
  refused(begin + "(), }", "its array of 0 dimensions is no list of samples");
  refused(begin + "(1,1,3), }", "its array of 3 dimensions is no list of samples");
  refused("{'descr': [('a','<f8')], 'shape': (3,1), }",
          "its array of records of 2 dimensions is no list of samples");
  refused(begin + "(0,), }", "has no samples");
  refused(begin + "(3,0), }", "has no samples");
  refused("{'descr': [], 'shape': (3,)}", "has no samples");
  refused("{'descr': [('time','<f8')], 'shape': (3,)}", "has no samples");
  refused(begin + "(4,), }", "ends within its array");
  refused(begin + "(2,), }", "has more than its array");
  // Their product is 3, or 0, in 64 bits.
  refused(begin + "(6148914691236517205,9), }", "ends within its array");
  refused(begin + "(4294967296,4294967296), }", "ends within its array");
  refused(begin + "(1,18446744073709551615), }", "ends within its array");
  for (const char* const broken :
       {"", "{", "{}", "{'descr': '<f8'}", "{'shape': (3,)}", "[]", "{'descr': '<f8",
        "{'descr': '<f8', 'shape': (3,), 'other': 1}", "{'descr': '<f8', 'shape': (3,)} x",
        "{'descr': '<f8', 'shape': (-3,)}", "{'descr': '<f8', 'shape': (99999999999999999999,)}",
        "{'descr': '<f8', 'shape': 3}", "{'descr': [('a','<f8',(3,))], 'shape': (1,)}",
        "{'descr': [('a\\n','<f8')], 'shape': (3,)}", "{'descr': '<f8' 'shape': (3,)}",
        "{'descr': '<f8', 'shape': (3,), 'fortran_order': 0}"}) {
    refused(broken, "its header is none of an array");
  }
  ExpectError([&] { Read(FileOf("{'descr': '<f8', 'shape': (3,)}", three, 3)); },
              "is of version 3.0, not 1.0 or 2.0");
  ExpectError([&] { Read("time,value\n"); }, "is no NumPy file");
}

TEST(Npy, SaysWhichByteIsWrong) {
  try {
    Read(FileOf("{'descr': '<f8', 'shape': 3}", ""));
    ADD_FAILURE();
  } catch (const exchange::Error& e) {
    EXPECT_EQ(e.GetOffset(), 10U + 26U);
    EXPECT_EQ(e.GetLine(), 0U);
  }
}

TEST(Npy, NoTruncationIsTakenForTheWhole) {
  const std::string whole = WriteNpy({{1, 2, 3}, {0, 0, 0}, {5, 6, 7}});
  ASSERT_EQ(Read(whole).size(), 3U);
  for (std::size_t n = 0; n < whole.size(); ++n) {
    EXPECT_THROW(Read(whole.substr(0, n)), exchange::Error) << n;
  }
  EXPECT_THROW(Read(whole + '\0'), exchange::Error);
}

TEST(Npy, WritesInPiecesAndRefusesBandsOfAnotherLength) {
  const std::vector<double> samples(50000, 1.0);
  const OwnedWaveform wave{samples, samples, samples};
  ExpectPieces([&](const Sink& sink) { exchange::WriteNpy(wave.View(), sink); }, 1600000);
  ExpectError([] { WriteNpy({{1, 2}, {1, 2}, {1}}); }, "its bands are not as long as the waveform");
}

}  // namespace
}  // namespace qarv::test
