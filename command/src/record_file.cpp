// A definition's record as a file: the bytes of its serial stream.
#include "record_file.h"

#include <fmt/format.h>

#include "command_error.h"
#include "common/serial/serial_data.h"
#include "output_files.h"
#include "text/text.h"

namespace qarv::command {

using text::OneLine;

void WriteRecord(wave_def::CWaveDef& def, const std::string& file) {
  common::CSerialData stream;
  if (!def.Serialize(&stream)) {
    throw CommandError(kRefused, OneLine(file + ": the definition has no record"));
  }
  if (stream.GetSize() > kLargestFile) {
    Fail(file, fmt::format("a record of more than {} bytes could not be read again", kLargestFile));
  }
  WriteFile(file, {reinterpret_cast<const char*>(stream.GetData()), stream.GetSize()});
}

wave_def::CWaveDef ReadRecord(InputFile file) {
  common::CSerialData stream(file.ReadAll());
  wave_def::CWaveDef def;
  if (!def.Serialize(&stream)) {
    Fail(file.GetName(), "is not a whole record of a definition");
  }
  if (!stream.IsAtEnd()) {
    Fail(file.GetName(), "goes on behind the record");
  }
  return def;
}

}  // namespace qarv::command
