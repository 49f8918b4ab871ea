// A definition's record as a file: the bytes of its serial stream.
#pragma once

#include <string>

#include "input_file.h"
#include "wave_def/wave_def.h"

namespace qarv::command {

/// Writes the record of a definition.
void WriteRecord(wave_def::CWaveDef& def, const std::string& file);

/// Reads a record.  Ends the command where the file is not one whole record.
wave_def::CWaveDef ReadRecord(InputFile file);

}  // namespace qarv::command
