// The C interface with the types of C++, for its tests: handles that end, buffers that fit.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "qarv_wave.h"
#include "temp_folder.h"

namespace qarv::test {

struct Freed {
  void operator()(qarv_wave* handle) const { qarv_wave_free(handle); }
};
using Handle = std::unique_ptr<qarv_wave, Freed>;

inline Handle NewHandle() {
  Handle handle(qarv_wave_new());
  EXPECT_NE(handle, nullptr);
  return handle;
}

inline std::int32_t Define(const Handle& handle, std::string_view text) {
  return qarv_wave_define_json(handle.get(), text.data(), text.size());
}

/// The output of a call (buffer, capacity, needed) -> status, which succeeds: asked for its size,
/// and then with a buffer of it.
template <class Byte, class Call>
std::vector<Byte> BytesOf(Call call) {
  std::size_t needed = 0;
  EXPECT_EQ(call(static_cast<Byte*>(nullptr), std::size_t{0}, &needed), QARV_WAVE_OK);
  std::vector<Byte> out(needed);
  if (needed == 0) return out;
  EXPECT_EQ(call(out.data(), out.size(), &needed), QARV_WAVE_OK);
  EXPECT_EQ(needed, out.size());
  return out;
}

/// A text, without the 0 at its end.
template <class Call>
std::string TextOf(Call call) {
  const std::vector<char> bytes = BytesOf<char>(call);
  EXPECT_FALSE(bytes.empty());
  if (bytes.empty()) return {};
  EXPECT_EQ(bytes.back(), '\0');
  const std::string text = bytes.data();
  EXPECT_EQ(text.size() + 1, bytes.size());
  return text;
}

inline std::vector<std::uint8_t> RecordOf(const Handle& handle) {
  return BytesOf<std::uint8_t>(
      [&](std::uint8_t* buffer, std::size_t capacity, std::size_t* needed) {
        return qarv_wave_save_record(handle.get(), buffer, capacity, needed);
      });
}

inline std::string DefinitionOf(const Handle& handle) {
  return TextOf([&](char* buffer, std::size_t capacity, std::size_t* needed) {
    return qarv_wave_definition_json(handle.get(), buffer, capacity, needed);
  });
}

inline nlohmann::json Json(const std::string& text) { return nlohmann::json::parse(text); }

/// The handle has no waveform, and says so everywhere.
inline void ExpectNoWave(const qarv_wave* handle) {
  EXPECT_STREQ(qarv_wave_family(handle), "none");
  EXPECT_EQ(qarv_wave_size(handle), 0U);
  EXPECT_EQ(qarv_wave_sample_rate(handle), 0.0);
  EXPECT_EQ(qarv_wave_samples(handle), nullptr);
  EXPECT_EQ(qarv_wave_upper(handle), nullptr);
  EXPECT_EQ(qarv_wave_lower(handle), nullptr);
}

/// The definitions of the examples, as texts.
inline std::vector<std::string> ExampleTexts() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(QARV_SOURCE_DIR "/examples/definitions")) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  std::vector<std::string> texts;
  for (const auto& file : files) texts.push_back(ReadText(file.string()));
  EXPECT_GT(texts.size(), 20U);
  return texts;
}

constexpr const char* kPulse = R"({
  "UnitAmpl": "g",
  "Classical": {
    "WaveKind": "HALF_SINE",
    "MainAmpl": 50,
    "MainWidth": 0.011,
    "Fmax": 1000,
    "Nsamp": 512,
    "TolKind": "TOL_FIXED_4"
  }
})";

constexpr const char* kMeasured = R"({
  "Fsamp": 1000, "UnitAmpl": "m/s^2", "TolUpperRat": 0.5, "TolLowerRat": -0.25,
  "Measure": {"MeasPath": "m.csv", "Samples": [0, 1, 2, -4, 0]}
})";

}  // namespace qarv::test
