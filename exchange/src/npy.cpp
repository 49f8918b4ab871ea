// Samples as arrays in NumPy files: magic, version, length and text of a header that is a Python
// literal, then the bytes of the array.
#include "exchange/npy.h"

#include <fmt/format.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "exchange/error.h"
#include "piece_writer.h"

namespace qarv::exchange {

using common::uint64;

namespace {

constexpr const char* kTime = "time";

// ---- Reading -----------------------------------------------------------------------------------

/// One number of an item of the array.
struct Field {
  std::string name;
  uint64 offset = 0;  // [byte] in the item
  uint64 width = 8;   // [byte] 4 or 8
  bool bigEndian = false;
};

/// What the header says of the array.
struct Layout {
  std::vector<Field> fields;  // one for an array of plain numbers
  uint64 itemSize = 0;        // [byte]
  bool records = false;
  bool columnsFirst = false;  // "Fortran order": the first index runs fastest
  std::vector<uint64> shape;
};

/// A name of the header as UTF-8: it is in Latin-1.
std::string Utf8(std::string_view latin) {
  std::string out;
  for (const char c : latin) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= 0x80) out += static_cast<char>(0xC0 | code >> 6);
    out += code < 0x80 ? c : static_cast<char>(0x80 | (code & 0x3F));
  }
  return out;
}

/// The header's text, a Python literal, taken piece by piece.
class Literal {
 public:
  Literal(std::string_view text, uint64 offset) : text_(text), offset_(offset) {}

  [[noreturn]] void Fail() const {
    throw Error::AtOffset("its header is none of an array", offset_ + at_);
  }
  bool AtEnd() {
    SkipBlanks();
    return at_ == text_.size();
  }
  bool Take(std::string_view token) {
    SkipBlanks();
    if (!text_.substr(at_).starts_with(token)) return false;
    at_ += token.size();
    return true;
  }
  void Expect(std::string_view token) {
    if (!Take(token)) Fail();
  }
  std::string_view String() {
    const char quote = Take("'") ? '\'' : Take("\"") ? '"' : '\0';
    const std::size_t end = quote != '\0' ? text_.find(quote, at_) : std::string_view::npos;
    if (end == std::string_view::npos) Fail();
    const std::string_view string = text_.substr(at_, end - at_);
    if (string.find('\\') != std::string_view::npos) Fail();
    at_ = end + 1;
    return string;
  }
  bool Bool() {
    if (Take("True")) return true;
    Expect("False");
    return false;
  }
  uint64 Count() {
    SkipBlanks();
    const std::size_t begin = at_;
    uint64 n = 0;
    for (; at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9'; ++at_) {
      const auto digit = static_cast<uint64>(text_[at_] - '0');
      if (n > (std::numeric_limits<uint64>::max() - digit) / 10) Fail();
      n = n * 10 + digit;
    }
    if (at_ == begin) Fail();
    return n;
  }

 private:
  void SkipBlanks() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n')) ++at_;
  }

  std::string_view text_;
  uint64 offset_;  // [byte] of the text in the file
  std::size_t at_ = 0;
};

/// Appends the number of a type ("<f8") to the item.
void AddField(std::string_view type, std::string name, Layout* layout) {
  const bool known = type == "<f8" || type == ">f8" || type == "<f4" || type == ">f4";
  if (!known) {
    throw Error(fmt::format("its numbers are of the type {}, not <f4, <f8, >f4 or >f8", type));
  }
  const uint64 width = type.back() == '8' ? 8 : 4;
  layout->fields.push_back({std::move(name), layout->itemSize, width, type.front() == '>'});
  layout->itemSize += width;
}

void ReadTypes(Literal* header, Layout* layout) {
  layout->fields.clear();
  layout->itemSize = 0;
  layout->records = header->Take("[");
  if (!layout->records) {
    AddField(header->String(), "", layout);
    return;
  }
  while (!header->Take("]")) {
    header->Expect("(");
    const std::string name = Utf8(header->String());
    header->Expect(",");
    AddField(header->String(), name, layout);
    header->Expect(")");
    if (!header->Take(",")) {
      header->Expect("]");
      return;
    }
  }
}

void ReadShape(Literal* header, Layout* layout) {
  layout->shape.clear();
  header->Expect("(");
  while (!header->Take(")")) {
    layout->shape.push_back(header->Count());
    if (!header->Take(",")) {
      header->Expect(")");
      return;
    }
  }
}

Layout ReadHeader(Literal header) {
  Layout layout;
  bool hasTypes = false;
  bool hasShape = false;
  header.Expect("{");
  while (!header.Take("}")) {
    const std::string_view key = header.String();
    header.Expect(":");
    if (key == "descr") {
      ReadTypes(&header, &layout);
      hasTypes = true;
    } else if (key == "shape") {
      ReadShape(&header, &layout);
      hasShape = true;
    } else if (key == "fortran_order") {
      layout.columnsFirst = header.Bool();
    } else {
      header.Fail();
    }
    if (!header.Take(",")) {
      header.Expect("}");
      break;
    }
  }
  if (!header.AtEnd() || !hasTypes || !hasShape) header.Fail();
  return layout;
}

double NumberAt(const unsigned char* p, const Field& field) {
  uint64 bits = 0;
  for (uint64 i = 0; i < field.width; ++i) {
    const unsigned char byte = p[field.bigEndian ? field.width - 1 - i : i];
    bits |= uint64{byte} << (8 * i);
  }
  if (field.width == 8) return std::bit_cast<double>(bits);
  return double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))};
}

/// n numbers, `step` bytes apart.
std::vector<double> NumbersOf(const unsigned char* first, uint64 n, uint64 step,
                              const Field& field) {
  std::vector<double> out(n);
  for (uint64 i = 0; i < n; ++i) out[i] = NumberAt(first + i * step, field);
  return out;
}

/// Rows and columns of the array; throws where the bytes are not as many.
struct Table {
  uint64 rows, columns;
};
Table TableOf(const Layout& layout, uint64 bytes, uint64 end) {
  const std::size_t dimensions = layout.shape.size();
  if (dimensions != 1 && (dimensions != 2 || layout.records)) {
    throw Error(fmt::format("its {} of {} dimensions is no list of samples",
                            layout.records ? "array of records" : "array", dimensions));
  }
  Table table{layout.shape[0], dimensions == 2 ? layout.shape[1] : 1};
  if (table.rows == 0 || table.columns == 0 || layout.itemSize == 0) throw Error("has no samples");
  // By divisions, because the product may be more than a count can hold.
  const uint64 most = bytes / layout.itemSize;
  if (table.columns > most || table.rows > most / table.columns) {
    throw Error::AtOffset("ends within its array", end);
  }
  const uint64 needed = table.rows * table.columns * layout.itemSize;
  if (needed != bytes) throw Error::AtOffset("has more than its array", end - bytes + needed);
  return table;
}

/// A signal for each field of the records; the field of times is laid beside all others.
std::vector<Signal> SignalsOfRecords(const Layout& layout, uint64 n, const unsigned char* data) {
  std::vector<Signal> signals;
  std::vector<double> times;
  for (const Field& field : layout.fields) {
    std::vector<double> numbers = NumbersOf(data + field.offset, n, layout.itemSize, field);
    if (field.name == kTime && times.empty()) {
      times = std::move(numbers);
      continue;
    }
    Signal& signal = signals.emplace_back();
    signal.name = field.name;
    signal.values = std::move(numbers);
  }
  if (signals.empty()) throw Error("has no samples");
  if (times.empty()) return signals;
  for (Signal& signal : signals) {
    signal.times = times;
    signal.begin = times.front();
  }
  return signals;
}

std::vector<Signal> SignalsOfColumns(const Layout& layout, Table table, const unsigned char* data) {
  // The numbers of one row stand in the order of those of a list.
  if (table.rows == 1) table = {table.columns, 1};
  const uint64 alongRow = layout.itemSize * (layout.columnsFirst ? table.rows : 1);
  const uint64 alongColumn = layout.itemSize * (layout.columnsFirst ? 1 : table.columns);
  std::vector<Signal> signals(table.columns);
  for (uint64 c = 0; c < table.columns; ++c) {
    signals[c].values =
        NumbersOf(data + c * alongRow, table.rows, alongColumn, layout.fields.front());
  }
  return signals;
}

// ---- Writing -----------------------------------------------------------------------------------

/// The header, padded so that the array begins at a multiple of 64 bytes.
std::string Header(uint64 N) {
  constexpr std::size_t kBefore = 10;  // [byte] magic, version, length
  constexpr std::size_t kAlignment = 64;
  const char order = std::endian::native == std::endian::little ? '<' : '>';
  std::string text = fmt::format(
      "{{'descr': [('{2}', '{0}f8'), ('waveform', '{0}f8'), ('lower', '{0}f8'), "
      "('upper', '{0}f8')], 'fortran_order': False, 'shape': ({1},), }}",
      order, N, kTime);
  while ((kBefore + text.size() + 1) % kAlignment != 0) text += ' ';
  text += '\n';
  std::string header(kNpyMagic);
  header += '\x01';
  header += '\x00';
  header += static_cast<char>(text.size() % 256);
  header += static_cast<char>(text.size() / 256);
  return header + text;
}

}  // namespace

std::vector<Signal> ReadNpy(Bytes bytes) {
  constexpr std::size_t kVersionAt = 6;
  if (!TextOf(bytes).starts_with(kNpyMagic)) throw Error("is no NumPy file");
  if (bytes.size() < kVersionAt + 2) throw Error::AtOffset("ends within its header", bytes.size());
  const unsigned char version = bytes[kVersionAt];
  if ((version != 1 && version != 2) || bytes[kVersionAt + 1] != 0) {
    throw Error::AtOffset(
        fmt::format("is of version {}.{}, not 1.0 or 2.0", version, bytes[kVersionAt + 1]),
        kVersionAt);
  }
  const std::size_t lengthBytes = version == 1 ? 2 : 4;
  const std::size_t begin = kVersionAt + 2 + lengthBytes;
  uint64 length = 0;
  for (std::size_t i = begin; i-- > kVersionAt + 2;) {
    length = length << 8 | (i < bytes.size() ? bytes[i] : 0U);
  }
  if (bytes.size() < begin || bytes.size() - begin < length) {
    throw Error::AtOffset("ends within its header", bytes.size());
  }
  const Layout layout = ReadHeader(Literal(TextOf(bytes).substr(begin, length), begin));
  const Bytes array = bytes.subspan(begin + length);
  const Table table = TableOf(layout, array.size(), bytes.size());
  return layout.records ? SignalsOfRecords(layout, table.rows, array.data())
                        : SignalsOfColumns(layout, table, array.data());
}

void WriteNpy(const Waveform& waveform, const Sink& sink) {
  RequireBands(waveform);
  PieceWriter out(sink);
  out.Append(Header(waveform.waveform.size()));
  for (std::size_t i = 0; i < waveform.waveform.size(); ++i) {
    const std::array<double, 4> row{static_cast<double>(i) / waveform.fsamp, waveform.waveform[i],
                                    waveform.lower[i], waveform.upper[i]};
    out.Append({reinterpret_cast<const char*>(row.data()), sizeof(row)});
  }
  out.Flush();
}

}  // namespace qarv::exchange
