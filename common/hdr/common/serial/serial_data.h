// The serial stream: typed values and byte runs in memory, written once, then read from the start.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "common/int_types.h"

namespace qarv::common {

/// A serial stream in memory, with a direction.
///
/// Default-constructed it is being written; `Finalize` turns it into finished data that is read
/// from the start.  A stream made from received bytes is finished from the beginning.  The bytes
/// (`GetData`, `GetSize`) are what a caller stores or sends.
///
/// Every value carries a one-byte tag of its type, and scalars are little-endian, so that reading a
/// value of another type, or past the end, is false and moves nothing.  The bytes may come from
/// anywhere: no read looks outside them or allocates more than they hold.  docs/formats.md has the
/// layout.
///
/// @code
/// CSerialData out;
/// out.Write(0.5);
/// CSerialData in(out.GetData(), out.GetSize());
/// double value = 0.0;
/// const bool read = in.Read(&value);  // true
/// const bool end = in.IsAtEnd();      // true
/// @endcode
///
/// A plain value; not for use from several threads at once.
class CSerialData {
 public:
  /// An empty stream that is being written.
  CSerialData() = default;
  /// Finished data made of received bytes.
  explicit CSerialData(std::vector<unsigned char> bytes);
  /// The same from a buffer of n bytes, copied; null counts as empty.
  CSerialData(const unsigned char* data, uint64 n);
  /// Copies only: a stream that was moved from would hold a place in bytes that it no longer has.
  CSerialData(const CSerialData&) = default;
  CSerialData& operator=(const CSerialData&) = default;
  ~CSerialData() = default;

  /// True when the stream holds finished data to be read, false while it is being written.
  bool IsFinalize() const { return finalized_; }
  /// Ends the writing; reading starts at the first value.  Called again, it starts over.
  void Finalize();

  /// The bytes of the stream, GetSize() of them; the pointer is valid until the next write.
  const unsigned char* GetData() const { return bytes_.data(); }
  uint64 GetSize() const { return bytes_.size(); }
  /// Whether every value of finished data has been read.
  bool IsAtEnd() const { return finalized_ && pos_ == bytes_.size() && runLeft_ == 0; }

  /// Bounds the stream: a write that would make it longer than `limit` bytes is false.
  void SetSizeLimit(uint64 limit) { sizeLimit_ = limit; }

  /// Appends one value.
  /// @return false, with nothing appended, if the stream is finished or its size limit is reached
  bool Write(bool v);
  bool Write(unsigned int v);
  bool Write(uint64 v);
  bool Write(double v);
  bool Write(const std::string& v);
  /// The other spelling of an unsigned 64-bit value.
  template <OtherUint64 U>
  bool Write(U v) {
    return Write(static_cast<uint64>(v));
  }
  /// A pointer is not a value; without this it would be written as a bool.
  bool Write(const void*) = delete;

  /// Makes room for n further bytes, so that the stream need not grow on the way.  Throws the
  /// standard errors where there is no memory for them.
  void Reserve(uint64 n);

  /// Appends n raw bytes as one run; 0 bytes append nothing.  The bytes may be the stream's own.
  /// @return false, with nothing appended, as for a value, or if `data` is null and n is not 0
  bool Write(const unsigned char* data, uint64 n);

  /// Takes the next value into the target.
  /// @return false, with the target and the place in the stream unchanged, if the target is null,
  ///         the stream is still being written, the next value has another type, or the data ends
  bool Read(bool* v);
  bool Read(unsigned int* v);
  bool Read(uint64* v);
  bool Read(double* v);
  bool Read(std::string* v);
  template <OtherUint64 U>
  bool Read(U* v) {
    uint64 wide = 0;
    if (v == nullptr || !Read(&wide)) return false;
    *v = static_cast<U>(wide);
    return true;
  }

  /// The next n raw bytes, taken from one run whole or in pieces.  The pointer is valid as long as
  /// the stream is; it has no particular alignment.
  /// @return null, with the place unchanged, if fewer than n bytes of the run remain, the next
  ///         value is not a run, or the stream is still being written; for n = 0 a pointer to
  ///         nothing
  const unsigned char* ReadPtr(uint64 n);

 private:
  enum class Tag : unsigned char;

  bool IsOwn(const unsigned char* p) const;
  bool Append(Tag tag, const void* head, std::size_t headSize, const void* body, uint64 bodySize);
  bool Take(Tag tag, void* target, std::size_t n);
  bool NextRun(Tag tag, uint64* begin, uint64* n) const;

  std::vector<unsigned char> bytes_;
  uint64 sizeLimit_ = ~uint64{0};
  uint64 pos_ = 0;      // [byte] of the next tag, or inside a byte run that is taken in pieces
  uint64 runLeft_ = 0;  // [byte] still to be taken of that run
  bool finalized_ = false;
};

}  // namespace qarv::common
