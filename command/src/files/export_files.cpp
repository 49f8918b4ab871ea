// A waveform in the files of other programs.
#include "files/export_files.h"

#include "assess/motion.h"
#include "command_error.h"
#include "definition/definition.h"
#include "exchange/csv.h"
#include "exchange/npy.h"
#include "exchange/uff.h"
#include "exchange/wav.h"
#include "files/output_files.h"

namespace qarv::command {

using assess::MotionUnitsOf;
using definition::SampleRateOf;
using definition::SpanOf;
using wave_def::CWaveDef;

namespace {

/// Writes a file by what `write` hands to its sink.
/// @param[in] subject  what a message is about where the format cannot hold it
template <class Write>
void WriteTo(const std::string& file, const std::string& subject, Write write) {
  FilePtr out = OpenForWriting(file);
  try {
    write([&](std::string_view piece) { WriteBytes(out.get(), piece.data(), piece.size(), file); });
  } catch (const exchange::Error& error) {
    Fail(subject, error);
  }
  Close(std::move(out), file);
}

exchange::Waveform WaveformOf(const CWaveDef& def, const std::string& name) {
  const std::string unit = def.GetUnitAmpl().GetText();
  const bool acceleration = MotionUnitsOf(unit).known;
  return {SpanOf(def.GetWave()),
          SpanOf(def.GetTolL()),
          SpanOf(def.GetTolU()),
          SampleRateOf(def),
          unit,
          acceleration ? exchange::Quantity::Acceleration : exchange::Quantity::Unknown,
          name};
}

}  // namespace

void WriteWaveCsv(const CWaveDef& def, const std::string& file) {
  WriteTo(file, file,
          [&](const exchange::Sink& sink) { exchange::WriteWaveCsv(WaveformOf(def, ""), sink); });
}

void WriteSamplesCsv(const CWaveDef& def, const std::string& file) {
  WriteTo(file, file, [&](const exchange::Sink& sink) {
    exchange::WriteSamplesCsv(SpanOf(def.GetWave()), sink);
  });
}

void WriteNpy(const CWaveDef& def, const std::string& file) {
  WriteTo(file, file,
          [&](const exchange::Sink& sink) { exchange::WriteNpy(WaveformOf(def, ""), sink); });
}

void WriteUff(const CWaveDef& def, const std::string& name, const std::string& file) {
  WriteTo(file, name,
          [&](const exchange::Sink& sink) { exchange::WriteUff(WaveformOf(def, name), sink); });
}

void WriteWav(const CWaveDef& def, const std::string& name, const std::string& file) {
  WriteTo(file, name, [&](const exchange::Sink& sink) {
    exchange::WriteWav(SpanOf(def.GetWave()), SampleRateOf(def), sink);
  });
}

}  // namespace qarv::command
