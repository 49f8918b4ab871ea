// A record from a file of any kind.
#pragma once

#include "exchange/table.h"

namespace qarv::exchange {

/// Reads a record from a file of any kind that is read here, which is found by its content: text as
/// ReadTable takes it, universal files, NumPy, MAT and sound.  A channel is asked for by its
/// number, from 1, or its name; a file that has no text in it needs no column of times by name, but
/// may have one (`time`) among its channels. Throws Error where the file's reader does; where a
/// channel is not there; where a value is no number; and where times leave no sampling frequency,
/// as in ReadTable.
Recording ReadRecording(Bytes bytes, const ChannelChoice& choice = {});

/// The same of signals that a reader has given.
Recording RecordingOf(std::vector<Signal> signals, const ChannelChoice& choice = {});

/// The root of the sum of squares of all channels, as one: the resultant of the axes of a sensor.
/// Throws Error where they differ in length, unit or sampling frequency, or there is only one.
Signal ResultantOf(const std::vector<Signal>& channels);

}  // namespace qarv::exchange
