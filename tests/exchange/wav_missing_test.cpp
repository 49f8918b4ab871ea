// Reading sound files in a build without libsndfile: linked alone, in the place of the reader.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exchange/error.h"
#include "exchange/wav.h"

namespace qarv::exchange {
namespace {

TEST(WavMissingTest, ASoundFileIsRefusedWithWhatTheBuildLacks) {
  const std::vector<unsigned char> bytes(64, 0);
  try {
    ReadWav(bytes);
    FAIL() << "it was read";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("libsndfile"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace qarv::exchange
