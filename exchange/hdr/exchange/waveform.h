// What a writer takes: a waveform between its bands, and where the bytes go.
#pragma once

#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace qarv::exchange {

/// What the samples are, for formats that have a code for it.
enum class Quantity { Unknown, Acceleration };

/// A waveform between its bands.  It owns nothing: what it names has to stay while it is written.
struct Waveform {
  std::span<const double> waveform;  // [amplitude unit] N samples
  std::span<const double> lower;     // [amplitude unit] N samples
  std::span<const double> upper;     // [amplitude unit] N samples
  double fsamp = 0.0;                // [Hz] not checked, except by a format that says so
  std::string unit;                  // of the amplitude; empty if it has none
  Quantity quantity = Quantity::Unknown;
  std::string name;  // of what is written, for formats that have a place for it
};

/// Takes the bytes of a file, piece by piece: a piece is gone when it returns.  What it throws ends
/// the writing and reaches the caller of the writer.  No writer hands over anything before it has
/// checked all that makes it throw itself.
using Sink = std::function<void(std::string_view)>;

/// A sink that writes to a stream, which has to outlive it.  It throws Error "cannot be written"
/// where the stream has failed; that the last piece has left the stream's buffer is for the caller
/// to see.
Sink ToStream(std::ostream& out);

/// Throws Error where a band is not as long as the waveform.
void RequireBands(const Waveform& waveform);

}  // namespace qarv::exchange
