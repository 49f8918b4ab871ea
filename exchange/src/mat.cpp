// Samples as variables of MAT files, which libmatio reads: from a copy in the temporary folder,
// because it and HDF5 below it know names only, and what was read may be a stream.
#include "exchange/mat.h"

#include <fmt/format.h>
#include <hdf5.h>
#include <matio.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "exchange/error.h"
#include "exchange/kind.h"

namespace qarv::exchange {

namespace {

/// The bytes as a file of the temporary folder, which ends with its owner.
class PassingFile {
 public:
  explicit PassingFile(Bytes bytes)
      : name_((std::filesystem::temp_directory_path() / "qarv-samples-XXXXXX").string()) {
    const int fd = mkstemp(name_.data());
    if (fd < 0) throw Error("cannot be laid into the temporary folder");
    bool whole = true;
    for (std::size_t at = 0; at < bytes.size() && whole;) {
      const ssize_t n = write(fd, bytes.data() + at, bytes.size() - at);
      whole = n > 0;
      at += whole ? static_cast<std::size_t>(n) : 0;
    }
    close(fd);
    if (whole) return;
    unlink(name_.c_str());
    throw Error("cannot be laid into the temporary folder");
  }
  PassingFile(const PassingFile&) = delete;
  PassingFile& operator=(const PassingFile&) = delete;
  ~PassingFile() { unlink(name_.c_str()); }
  const std::string& GetName() const { return name_; }

 private:
  std::string name_;
};

using File = std::unique_ptr<mat_t, int (*)(mat_t*)>;
using Variable = std::unique_ptr<matvar_t, void (*)(matvar_t*)>;

template <class T>
std::vector<double> Copied(const void* data, std::size_t count) {
  std::vector<double> out(count);
  for (std::size_t i = 0; i < count; ++i) {
    T v;
    std::memcpy(&v, static_cast<const char*>(data) + i * sizeof(T), sizeof(T));
    out[i] = static_cast<double>(v);
  }
  return out;
}

/// The numbers of a variable; none where it holds no real ones.
std::optional<std::vector<double>> NumbersOf(const matvar_t& variable, std::size_t count) {
  if (variable.isComplex != 0 || variable.data == nullptr || count == 0) return {};
  if (variable.nbytes < count * static_cast<std::size_t>(std::max(variable.data_size, 1)))
    return {};
  switch (variable.class_type) {
    case MAT_C_DOUBLE:
      return Copied<double>(variable.data, count);
    case MAT_C_SINGLE:
      return Copied<float>(variable.data, count);
    case MAT_C_INT8:
      return Copied<mat_int8_t>(variable.data, count);
    case MAT_C_UINT8:
      return Copied<mat_uint8_t>(variable.data, count);
    case MAT_C_INT16:
      return Copied<mat_int16_t>(variable.data, count);
    case MAT_C_UINT16:
      return Copied<mat_uint16_t>(variable.data, count);
    case MAT_C_INT32:
      return Copied<mat_int32_t>(variable.data, count);
    case MAT_C_UINT32:
      return Copied<mat_uint32_t>(variable.data, count);
    case MAT_C_INT64:
      return Copied<mat_int64_t>(variable.data, count);
    case MAT_C_UINT64:
      return Copied<mat_uint64_t>(variable.data, count);
    default:
      return {};
  }
}

std::string Lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

/// What stands in a file while its variables are read.
class Collector {
 public:
  void Add(const matvar_t& variable, const std::string& name) {
    if (variable.class_type == MAT_C_STRUCT) return AddFields(variable, name);
    if (variable.rank != 2 || variable.dims == nullptr) return;
    const std::size_t rows = variable.dims[0];
    const std::size_t columns = variable.dims[1];
    if (rows == 0 || columns == 0 || columns > (std::size_t{1} << 40) / rows) return;
    const auto numbers = NumbersOf(variable, rows * columns);
    if (!numbers) return;
    constexpr std::array<std::string_view, 6> kRates{
        "fs", "fsamp", "fsample", "samplerate", "sampling_frequency", "sampling_rate"};
    const std::string last = Lower(name.substr(name.rfind('.') + 1));
    if (numbers->size() == 1) {
      if (std::find(kRates.begin(), kRates.end(), last) != kRates.end()) fsamp_ = numbers->front();
      return;
    }
    if ((last == "t" || last == "time") && (rows == 1 || columns == 1)) {
      times_ = *numbers;
      return;
    }
    // The numbers stand column by column.
    const bool along = rows >= columns;  // a column is a signal
    const std::size_t count = along ? columns : rows;
    const std::size_t length = along ? rows : columns;
    for (std::size_t k = 0; k < count; ++k) {
      Signal& signal = signals_.emplace_back();
      signal.name = count == 1 ? name : fmt::format("{}({})", name, k + 1);
      signal.values.resize(length);
      for (std::size_t i = 0; i < length; ++i) {
        signal.values[i] = (*numbers)[along ? k * rows + i : i * rows + k];
      }
    }
  }

  std::vector<Signal> Finish() {
    if (signals_.empty()) throw Error("has no variable of real numbers");
    for (Signal& signal : signals_) {
      if (std::isfinite(fsamp_) && fsamp_ > 0.0) signal.fsamp = fsamp_;
      if (times_.size() != signal.values.size()) continue;
      signal.times = times_;
      signal.begin = times_.front();
    }
    return std::move(signals_);
  }

 private:
  void AddFields(const matvar_t& variable, const std::string& name) {
    if (variable.rank != 2 || variable.dims[0] != 1 || variable.dims[1] != 1) return;
    const unsigned int count = Mat_VarGetNumberOfFields(const_cast<matvar_t*>(&variable));
    char* const* const names = Mat_VarGetStructFieldnames(&variable);
    for (unsigned int i = 0; names != nullptr && i < count; ++i) {
      const matvar_t* const field =
          Mat_VarGetStructFieldByIndex(const_cast<matvar_t*>(&variable), i, 0);
      const bool deep = std::count(name.begin(), name.end(), '.') > 8;
      if (field != nullptr && names[i] != nullptr && !deep) Add(*field, name + "." + names[i]);
    }
  }

  std::vector<Signal> signals_;
  std::vector<double> times_;
  double fsamp_ = 0.0;
};

}  // namespace

std::vector<Signal> ReadMat(Bytes bytes) {
  if (DetectKind(bytes) != Kind::Mat) throw Error("is no MAT file of version 5 or 7.3");
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // which would print what is wrong
  const PassingFile copy(bytes);
  const File file(Mat_Open(copy.GetName().c_str(), MAT_ACC_RDONLY), Mat_Close);
  if (!file) throw Error("is no MAT file of version 5 or 7.3");
  Collector collector;
  for (;;) {
    const Variable variable(Mat_VarReadNext(file.get()), Mat_VarFree);
    if (!variable) break;
    if (variable->name != nullptr) collector.Add(*variable, variable->name);
  }
  return collector.Finish();
}

}  // namespace qarv::exchange
