// Golden records: the bytes that a file of tests/golden/records spells out.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace qarv::test {

/// The bytes of records/NAME.hex: pairs of digits, what stands behind a # is a comment.
inline std::vector<unsigned char> GoldenRecord(const std::string& name) {
  std::ifstream file(QARV_TEST_DATA_DIR "/golden/records/" + name + ".hex");
  EXPECT_TRUE(file.is_open()) << name;
  std::vector<unsigned char> bytes;
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string word; words >> word;) {
      for (std::size_t i = 0; i < word.size(); i += 2) {
        bytes.push_back(static_cast<unsigned char>(std::stoul(word.substr(i, 2), nullptr, 16)));
      }
    }
  }
  return bytes;
}

}  // namespace qarv::test
