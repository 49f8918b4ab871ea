// Definitions and records as files.
#pragma once

#include <string>

#include "definition/definition.h"
#include "files/input_file.h"

namespace qarv::command {

/// Reads a definition file; the samples of a measured waveform from the file that it names.
/// Ends the command where it cannot be used.
definition::Definition ReadDefinition(InputFile file);

/// Reads a definition file and generates its waveform.
/// Ends the command where the file cannot be used or the library refuses the definition.
wave_def::CWaveDef LoadDefinition(InputFile file);

/// What is said of a definition that is refused: its file, its family and the reason.
std::string RefusalLine(const definition::Definition& definition, const std::string& file,
                        const std::string& reason);

/// Writes the record of a definition.
void WriteRecord(wave_def::CWaveDef& def, const std::string& file);

/// Reads a record.  Ends the command where the file is not one whole record.
wave_def::CWaveDef ReadRecord(InputFile file);

/// Refuses a definition without samples, or with a band of another length, as a record may have it.
void RequireBands(const wave_def::CWaveDef& def, const std::string& source);

}  // namespace qarv::command
