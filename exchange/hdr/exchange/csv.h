// Samples as lines of text with separated columns.
#pragma once

#include <iosfwd>
#include <span>
#include <string_view>

#include "exchange/signal.h"
#include "exchange/waveform.h"

namespace qarv::exchange {

/// The header of a waveform's file, by which it is known again.
inline constexpr std::string_view kWaveCsvHeader = "time,waveform,lower,upper";

/// Reads a text of one column (value) or two (time, value), or one that WriteWaveCsv has written,
/// of which the bands are passed over.  The separator is a comma, a semicolon or a tab; beside the
/// latter two a comma may be the decimal sign.  The first line may be a header; a byte order mark
/// and empty lines are passed over.  NaN and infinities are taken.
/// @return the values with their lines, the times if there are, and `begin` from these
/// Throws Error, with its line, where a line is not of that form; also where there are no lines, no
/// samples, or a line is longer than 65536 bytes.
Signal ReadCsv(Bytes bytes);

/// The same from a stream, of which no more is kept than a line.  What its buffer throws reaches
/// the caller; a stream that has failed before is an Error.  Its state bits are left alone.
Signal ReadCsv(std::istream& in);

/// Writes time [s], waveform, lower and upper band, one sample a line below a header line, in the
/// shortest digits that read back as the same double; 0 and NaN have no sign.
/// Throws Error where a band is not as long as the waveform.
void WriteWaveCsv(const Waveform& waveform, const Sink& sink);

/// Writes samples alone, below the header "value", in a form that ReadCsv takes for the same bits,
/// those of a NaN as well.
void WriteSamplesCsv(std::span<const double> samples, const Sink& sink);

}  // namespace qarv::exchange
