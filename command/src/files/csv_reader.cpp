// Measured samples from a CSV file.
#include "files/csv_reader.h"

#include <istream>
#include <streambuf>
#include <utility>

#include "command_error.h"
#include "exchange/csv.h"

namespace qarv::command {

namespace {

/// A file as the buffer of a stream.
class FileBuffer : public std::streambuf {
 public:
  explicit FileBuffer(InputFile* file) : file_(file) {}

 protected:
  int_type underflow() override {
    const std::span<char> piece = file_->ReadPiece();
    setg(piece.data(), piece.data(), piece.data() + piece.size());
    return piece.empty() ? traits_type::eof() : traits_type::to_int_type(piece.front());
  }

 private:
  InputFile* file_;
};

}  // namespace

MeasuredCsv ReadCsv(InputFile in) {
  try {
    FileBuffer buffer(&in);
    std::istream stream(&buffer);
    exchange::Signal signal = exchange::ReadCsv(stream);
    MeasuredCsv out{in.GetName(), {}, std::move(signal.times), std::move(signal.lines)};
    out.values.SetData(signal.values.size(), signal.values.data(), false);
    return out;
  } catch (const exchange::Error& error) {
    Fail(in.GetName(), error);
  }
}

void RequireNumbers(const MeasuredCsv& csv) {
  try {
    exchange::RequireNumbers({csv.values.begin(), csv.values.end()}, csv.lines);
  } catch (const exchange::Error& error) {
    Fail(csv.file, error);
  }
}

double SampleRateOf(const MeasuredCsv& csv) {
  try {
    return exchange::SampleRateOf(csv.times, csv.lines);
  } catch (const exchange::Error& error) {
    Fail(csv.file, error);
  }
}

}  // namespace qarv::command
