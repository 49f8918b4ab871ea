// The serial stream's layout: a tag byte, then the value; strings and byte runs with their length.
#include "common/serial/serial_data.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <functional>
#include <utility>

namespace qarv::common {

static_assert(
    std::endian::native == std::endian::little,
    "scalars and samples are stored in their in-memory form, which must be little-endian");

enum class CSerialData::Tag : unsigned char {
  Bool = 'b',    // 1 byte, 0 or 1
  Uint32 = 'u',  // 4 bytes
  Uint64 = 'U',  // 8 bytes
  Double = 'd',  // 8 bytes, IEEE 754
  String = 's',  // length as 8 bytes, then the bytes
  Run = 'r',     // the same for raw bytes
};

CSerialData::CSerialData(std::vector<unsigned char> bytes)
    : bytes_(std::move(bytes)), finalized_(true) {}

CSerialData::CSerialData(const unsigned char* data, uint64 n) : finalized_(true) {
  if (data != nullptr) bytes_.assign(data, data + n);
}

void CSerialData::Finalize() {
  finalized_ = true;
  pos_ = 0;
  runLeft_ = 0;
}

void CSerialData::Reserve(uint64 n) {
  const uint64 size = bytes_.size();
  if (finalized_ || n > sizeLimit_ || size > sizeLimit_ - n) return;  // what will not be taken
  bytes_.reserve(static_cast<std::size_t>(size + n));
}

bool CSerialData::Write(bool v) {
  const unsigned char byte = v ? 1 : 0;
  return Append(Tag::Bool, &byte, sizeof byte, nullptr, 0);
}
bool CSerialData::Write(unsigned int v) { return Append(Tag::Uint32, &v, sizeof v, nullptr, 0); }
bool CSerialData::Write(uint64 v) { return Append(Tag::Uint64, &v, sizeof v, nullptr, 0); }
bool CSerialData::Write(double v) { return Append(Tag::Double, &v, sizeof v, nullptr, 0); }

bool CSerialData::Write(const std::string& v) {
  const uint64 n = v.size();
  return Append(Tag::String, &n, sizeof n, v.data(), n);
}

bool CSerialData::Write(const unsigned char* data, uint64 n) {
  if (finalized_ || (data == nullptr && n != 0)) return false;
  if (n == 0) return true;
  if (!IsOwn(data)) return Append(Tag::Run, &n, sizeof n, data, n);
  const std::vector<unsigned char> copy(data, data + n);  // growing gives the old memory back
  return Append(Tag::Run, &n, sizeof n, copy.data(), n);
}

bool CSerialData::Read(bool* v) {
  if (v == nullptr) return false;
  const uint64 at = pos_;
  unsigned char byte = 0;
  if (!Take(Tag::Bool, &byte, sizeof byte)) return false;
  if (byte > 1) {  // damaged data: a bool has no third value
    pos_ = at;
    return false;
  }
  *v = byte == 1;
  return true;
}
bool CSerialData::Read(unsigned int* v) { return Take(Tag::Uint32, v, sizeof *v); }
bool CSerialData::Read(uint64* v) { return Take(Tag::Uint64, v, sizeof *v); }
bool CSerialData::Read(double* v) { return Take(Tag::Double, v, sizeof *v); }

bool CSerialData::Read(std::string* v) {
  uint64 begin = 0;
  uint64 n = 0;
  if (v == nullptr || !NextRun(Tag::String, &begin, &n)) return false;
  v->assign(bytes_.begin() + static_cast<std::ptrdiff_t>(begin),
            bytes_.begin() + static_cast<std::ptrdiff_t>(begin + n));
  pos_ = begin + n;
  return true;
}

const unsigned char* CSerialData::ReadPtr(uint64 n) {
  static constexpr unsigned char kNothing = 0;
  if (!finalized_) return nullptr;
  if (n == 0) return &kNothing;
  uint64 begin = pos_;
  uint64 left = runLeft_;
  if (left == 0 && !NextRun(Tag::Run, &begin, &left)) return nullptr;
  if (n > left) return nullptr;
  pos_ = begin + n;
  runLeft_ = left - n;
  return bytes_.data() + begin;
}

/// Whether a place lies in the stream's own bytes.
bool CSerialData::IsOwn(const unsigned char* p) const {
  const std::less<> before;  // an order of all pointers, also of those into different memory
  return !before(p, bytes_.data()) && before(p, bytes_.data() + bytes_.size());
}

/// Appends a tag and the two parts behind it, whole or not at all.
bool CSerialData::Append(Tag tag, const void* head, std::size_t headSize, const void* body,
                         uint64 bodySize) {
  const uint64 size = bytes_.size();
  const uint64 fixed = 1 + headSize;
  if (finalized_ || size > sizeLimit_ || sizeLimit_ - size < fixed) return false;
  if (sizeLimit_ - size - fixed < bodySize) return false;

  // The room first, and at least doubled: the three inserts below can then neither fail half-way
  // nor copy the stream again for every value.
  const uint64 needed = size + fixed + bodySize;
  if (needed > bytes_.capacity())
    bytes_.reserve(static_cast<std::size_t>(std::max(needed, 2 * size)));
  bytes_.push_back(static_cast<unsigned char>(tag));
  const auto insert = [this](const void* part, uint64 n) {
    const auto* p = static_cast<const unsigned char*>(part);
    if (n != 0) bytes_.insert(bytes_.end(), p, p + n);
  };
  insert(head, headSize);
  insert(body, bodySize);
  return true;
}

/// Takes a scalar of n bytes behind its tag.
bool CSerialData::Take(Tag tag, void* target, std::size_t n) {
  if (target == nullptr || !finalized_ || runLeft_ != 0) return false;
  if (bytes_.size() - pos_ < 1 + n || bytes_.data()[pos_] != static_cast<unsigned char>(tag))
    return false;
  std::memcpy(target, bytes_.data() + pos_ + 1, n);
  pos_ += 1 + n;
  return true;
}

/// Where the string or byte run that comes next begins, and its length; the stream does not move.
/// @return false if something else comes next, or its length is more than the bytes that are there
bool CSerialData::NextRun(Tag tag, uint64* begin, uint64* n) const {
  constexpr uint64 kHead = 1 + sizeof *n;
  if (!finalized_ || runLeft_ != 0 || bytes_.size() - pos_ < kHead) return false;
  if (bytes_.data()[pos_] != static_cast<unsigned char>(tag)) return false;
  std::memcpy(n, bytes_.data() + pos_ + 1, sizeof *n);
  *begin = pos_ + kHead;
  return *n <= bytes_.size() - *begin;
}

}  // namespace qarv::common
