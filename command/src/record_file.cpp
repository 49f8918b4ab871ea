// A definition's record as a file: the bytes of its serial stream.
#include "record_file.h"

#include "common/serial/serial_data.h"
#include "input_file.h"
#include "output_files.h"
#include "text.h"

namespace qarv::command {

void WriteRecord(wave_def::CWaveDef& def, const std::string& file) {
  common::CSerialData stream;
  if (!def.Serialize(&stream)) {
    throw CommandError(kRefused, OneLine(file + ": the definition has no record"));
  }
  WriteFile(file, {reinterpret_cast<const char*>(stream.GetData()), stream.GetSize()});
}

wave_def::CWaveDef ReadRecord(const std::string& file) {
  common::CSerialData stream(ReadFile(file));
  wave_def::CWaveDef def;
  if (!def.Serialize(&stream)) {
    Fail(file, "is not a whole record of a definition");
  }
  if (!stream.IsAtEnd()) {
    Fail(file, "goes on behind the record");
  }
  return def;
}

}  // namespace qarv::command
