// Reading MAT files in a build without libmatio: linked alone, in the place of the reader.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exchange/error.h"
#include "exchange/mat.h"

namespace qarv::exchange {
namespace {

TEST(MatMissingTest, AMatFileIsRefusedWithWhatTheBuildLacks) {
  const std::vector<unsigned char> bytes(128, 0);
  try {
    ReadMat(bytes);
    FAIL() << "it was read";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("libmatio"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace qarv::exchange
