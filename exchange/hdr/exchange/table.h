// Records as loggers write them: text with any header, any separator, one or several channels.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/int_types.h"
#include "exchange/signal.h"

namespace qarv::exchange {

/// Gives the next piece of a file; an empty one at its end.  A piece stays until the next is asked
/// for.
using Pieces = std::function<std::span<const char>()>;

/// What is wanted of a file with several channels.
struct ChannelChoice {
  std::string time{};                   // column of the times; empty: the one that shows it
  std::vector<std::string> channels{};  // none: the first one
  common::uint64 skipBad = 0;           // lines without a value that are bridged
  std::optional<double> fsamp{};        // [Hz] in the place of times
};

/// The channels that were asked for.
struct Recording {
  std::vector<Signal> channels;      // at least one; `fsamp` is 0 where nothing says it
  std::vector<std::string> names;    // of everything that the file holds
  std::vector<std::string> remarks;  // every conversion and choice that was made, a line each
};

/// Reads a record from text.
///
/// - Lines: any header before the first two lines of values of one form, any footer behind the last
///   one; empty lines and comments (#, %, ;) are passed over.
/// - Columns: separated by tab, semicolon, bar, comma or blanks; values may be in quotes, and have
/// a
///   decimal comma.  Names and units come from the last lines of the header that have as many
///   columns.  A column is asked for by its number, from 1, or its name.
/// - Times: numbers in the unit that the header names (else seconds), epochs, and stamps of date
/// and
///   time.  The sampling frequency is the straight line through all times (least squares), with no
///   more digits than they bear out.  Times of an epoch and stamps count from the first one.
/// - What loggers write where they have no value (nothing, NaN, OL) is refused with its line, or
///   bridged by a straight line where `skipBad` allows it.
///
/// Signals come without `times` and `lines`: the memory is that of the values.
/// Throws Error, with its line, where a line is not of the form, a value is missing, or a time step
/// is half a sampling interval or more off; also where there are no samples, a column is not there,
/// or a line is longer than 65536 bytes.
Recording ReadTable(const Pieces& next, const ChannelChoice& choice = {});
Recording ReadTable(Bytes bytes, const ChannelChoice& choice = {});

}  // namespace qarv::exchange
