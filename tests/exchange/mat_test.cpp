// Variables of MAT files of both versions, as the library that reads them writes them.
#include "exchange/mat.h"

#include <gtest/gtest.h>
#include <matio.h>

#include <cstdint>

#include "exchange/kind.h"
#include "sample_files.h"
#include "temp_folder.h"

namespace qarv::test {
namespace {

using exchange::BytesOf;
using exchange::Signal;

/// A file that variables are added to.
class MatFile {
 public:
  MatFile(const std::string& name, mat_ft version)
      : file_(Mat_CreateVer(name.c_str(), nullptr, version)) {}
  ~MatFile() { Mat_Close(file_); }
  template <class T>
  void Add(const char* name, std::size_t rows, std::size_t columns, std::vector<T> data,
           matio_classes kind, matio_types type, bool packed = false) {
    std::size_t dims[2] = {rows, columns};
    matvar_t* const variable = Mat_VarCreate(name, kind, type, 2, dims, data.data(), 0);
    EXPECT_EQ(Mat_VarWrite(file_, variable, packed ? MAT_COMPRESSION_ZLIB : MAT_COMPRESSION_NONE),
              0);
    Mat_VarFree(variable);
  }
  void AddStruct(const char* name, const char* field, std::vector<double> data) {
    std::size_t one[2] = {1, 1};
    std::size_t dims[2] = {data.size(), 1};
    matvar_t* const variable = Mat_VarCreateStruct(name, 2, one, &field, 1);
    Mat_VarSetStructFieldByName(
        variable, field, 0,
        Mat_VarCreate(nullptr, MAT_C_DOUBLE, MAT_T_DOUBLE, 2, dims, data.data(), 0));
    EXPECT_EQ(Mat_VarWrite(file_, variable, MAT_COMPRESSION_NONE), 0);
    Mat_VarFree(variable);
  }

 private:
  mat_t* file_;
};

TEST(Mat, ReadsVariablesTablesAndFieldsOfBothVersions) {
  for (const mat_ft version : {MAT_FT_MAT5, MAT_FT_MAT73}) {
    const TempFolder folder;
    {
      MatFile file(folder / "m.mat", version);
      file.Add<double>("t", 3, 1, {0, 0.5, 1}, MAT_C_DOUBLE, MAT_T_DOUBLE);
      file.Add<double>("xyz", 3, 2, {1, 2, 3, 4, 5, 6}, MAT_C_DOUBLE, MAT_T_DOUBLE, true);
      file.Add<float>("row", 1, 3, {1.5F, 2.5F, 3.5F}, MAT_C_SINGLE, MAT_T_SINGLE);
      file.Add<std::int16_t>("counts", 4, 1, {-1, 2, 300, -4000}, MAT_C_INT16, MAT_T_INT16);
      file.AddStruct("shock", "acc", {7, 8, 9});
    }
    const std::string bytes = ReadText(folder / "m.mat");
    EXPECT_EQ(exchange::DetectKind(BytesOf(bytes)), exchange::Kind::Mat);
    std::vector<Signal> signals = exchange::ReadMat(BytesOf(bytes));
    std::sort(signals.begin(), signals.end(),
              [](const Signal& a, const Signal& b) { return a.name < b.name; });
    ASSERT_EQ(signals.size(), 5U);
    EXPECT_EQ(signals[0].name, "counts");
    EXPECT_EQ(signals[0].values, (std::vector<double>{-1, 2, 300, -4000}));
    EXPECT_TRUE(signals[0].times.empty());
    EXPECT_EQ(signals[1].name, "row");
    EXPECT_EQ(signals[1].values, (std::vector<double>{1.5, 2.5, 3.5}));
    EXPECT_EQ(signals[1].times, (std::vector<double>{0, 0.5, 1}));
    EXPECT_EQ(signals[2].name, "shock.acc");
    EXPECT_EQ(signals[2].values, (std::vector<double>{7, 8, 9}));
    EXPECT_EQ(signals[3].name, "xyz(1)");
    EXPECT_EQ(signals[3].values, (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(signals[4].values, (std::vector<double>{4, 5, 6}));
  }
}

TEST(Mat, TakesTheSamplingFrequencyFromItsVariable) {
  const TempFolder folder;
  {
    MatFile file(folder / "m.mat", MAT_FT_MAT5);
    file.Add<double>("Fs", 1, 1, {51200}, MAT_C_DOUBLE, MAT_T_DOUBLE);
    file.Add<double>("acc", 2, 1, {1, 2}, MAT_C_DOUBLE, MAT_T_DOUBLE);
  }
  const auto signals = exchange::ReadMat(BytesOf(ReadText(folder / "m.mat")));
  ASSERT_EQ(signals.size(), 1U);
  EXPECT_EQ(signals[0].fsamp, 51200.0);
}

TEST(Mat, RefusesWhatHasNoNumbers) {
  const TempFolder folder;
  {
    MatFile file(folder / "m.mat", MAT_FT_MAT5);
    file.Add<double>("Fs", 1, 1, {51200}, MAT_C_DOUBLE, MAT_T_DOUBLE);
  }
  const std::string bytes = ReadText(folder / "m.mat");
  ExpectError([&] { exchange::ReadMat(BytesOf(bytes)); }, "has no variable of real numbers");
  ExpectError([] { exchange::ReadMat(BytesOf("0,1\n")); }, "is no MAT file of version 5 or 7.3");
  ExpectError([&] { exchange::ReadMat(BytesOf(bytes).first(60)); },
              "is no MAT file of version 5 or 7.3");
}

}  // namespace
}  // namespace qarv::test
