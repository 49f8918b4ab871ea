// Records as loggers write them: the walk through the lines.
//
// A line of samples is read twice over at most: by a loop that knows the columns and takes numbers
// alone, and, where that finds anything else, by the cells that it has.
#include "exchange/table.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "columns.h"
#include "common/numeric/index_conv.h"
#include "exchange/error.h"
#include "text/text.h"
#include "text_lines.h"
#include "time_fit.h"

namespace qarv::exchange {

using common::uint64;
using text::Trimmed;

namespace {

constexpr double kDay = 86400.0;  // [s]

/// The times of a column, whatever they are written as.
class TimeColumn {
 public:
  TimeColumn() = default;
  /// @param[in] unit  that the title names
  explicit TimeColumn(const std::string& unit) : factor_(SecondsOf(unit)) {}

  double FromNumber(double v) {
    if (!begun_) Begin(v);
    return (v - origin_) * factor_;
  }
  double FromStamp(const Cell& cell) {
    if (!begun_) {
      begun_ = true;
      originDay_ = cell.day;
      origin_ = cell.value;
      last_ = cell.value;
      remark_ = "times count from the first stamp";
    }
    // Times of the day without a date go on behind midnight.
    if (cell.kind == CellKind::Clock && cell.value < last_ - kDay / 2.0) midnights_ += kDay;
    last_ = cell.value;
    return (cell.day - originDay_) * kDay + (cell.value - origin_) + midnights_;
  }
  const std::string& GetRemark() const { return remark_; }

 private:
  /// What is above 1e8 s is no time of a record but counts from 1970, in the unit that makes it so.
  void Begin(double v) {
    constexpr double kEpoch = 1e8;  // [s]
    begun_ = true;
    const bool named = factor_ != 0.0;
    const char* unit = "";
    if (!named) {
      factor_ = 1.0;
      for (const auto& [name, seconds] : {std::pair{"ns", 1e-9}, {"us", 1e-6}, {"ms", 1e-3}}) {
        if (!(v * seconds > kEpoch)) continue;
        factor_ = seconds;
        unit = name;
        break;
      }
    }
    if (v * factor_ > kEpoch) {
      origin_ = v;
      remark_ = fmt::format("times{}{} are of an epoch and count from the first one",
                            *unit == '\0' ? "" : " in ", unit);
    } else if (named && factor_ != 1.0) {
      remark_ = fmt::format("times are converted by {:g} to s", factor_);
    }
  }

  double factor_ = 0.0;  // [s] 0 until it is known
  bool begun_ = false;
  double origin_ = 0.0, originDay_ = 0.0;
  double last_ = 0.0, midnights_ = 0.0;
  std::string remark_;
};

/// A line that is kept until it is known what it is.
struct Held {
  std::string text;
  uint64 number = 0;
  Row row;
};

class TableReader {
 public:
  TableReader(const Pieces& next, const ChannelChoice& choice) : lines_(next), choice_(choice) {}

  Recording Read() {
    std::string_view line;
    while (lines_.Next(&line)) {
      if (begun_ && TakeNumbers(line)) continue;
      TakeAny(line);
    }
    if (!begun_ && held_) Begin(*held_, *held_);
    if (!begun_) {
      if (lines_.GetNumber() == 0) throw Error("is empty");
      if (broken_ != 0) throw Error("is not a line of numbers", broken_);
      throw Error("has no samples");
    }
    if (pending_ && !pending_->footer) throw Error(pending_->what, pending_->line);
    return Finish();
  }

 private:
  /// A column that is read, and the place of its number.
  struct Slot {
    std::size_t column, target;
  };
  /// What is wrong with a line, should another line of samples follow.
  struct Pending {
    std::string what;
    uint64 line;
    bool footer;
  };

  bool HasTime() const { return columns_.time.has_value(); }

  bool IsComment(std::string_view line) const {
    const char c = line.front();
    return c == '#' || c == '%' || (c == ';' && !(begun_ && separator_ == Separator::Semicolon));
  }

  void KeepHeader(std::string_view line) {
    constexpr std::size_t kKept = 8;  // lines above the first sample that may have titles
    if (header_.size() == kKept) header_.erase(header_.begin());
    header_.emplace_back(line);
  }

  /// Any line that is no plain line of samples.
  void TakeAny(std::string_view line) {
    const std::string_view trimmed = Trimmed(line);
    if (trimmed.empty()) return;
    if (IsComment(trimmed)) {
      if (!begun_) KeepHeader(trimmed.substr(1));
      return;
    }
    if (begun_ && TakeCells(line)) return;
    Row row = RowOf(line, SeparatorOf(line));
    // One column of values may begin with one that is missing: it is not to pass for a header.
    const bool isData = row.IsData() || (row.cells.size() == 1 && trimmed.front() != '-' &&
                                         row.cells[0].kind == CellKind::Missing);
    if (held_ && row.IsLike(held_->row)) {
      Begin(*held_, {std::string(line), lines_.GetNumber(), std::move(row)});
      return;
    }
    if (held_) {
      if (broken_ == 0) broken_ = lines_.GetNumber();
      KeepHeader(held_->text);
      held_.reset();
    }
    if (isData) {
      held_ = Held{std::string(line), lines_.GetNumber(), std::move(row)};
    } else {
      KeepHeader(line);
    }
  }

  /// Two lines of one form begin the samples; before them a few others may have looked like it.
  void Begin(const Held& first, const Held& second) {
    const std::size_t count = std::max(first.row.cells.size(), second.row.cells.size());
    separator_ = first.row.separator;
    columns_ = ChooseColumns(choice_, TitlesOf(header_, separator_, count), first.row, second.row);
    const auto isPlain = [&](std::size_t column) {
      return column < first.row.cells.size() && first.row.cells[column].kind == CellKind::Number;
    };
    comma_ = false;
    for (const Row* const row : {&first.row, &second.row}) {
      for (const Cell& cell : row->cells) comma_ = comma_ || cell.comma;
    }
    pattern_ = first.row.cells.size() >= second.row.cells.size() ? first.row : second.row;
    times_ = HasTime() ? TimeColumn(columns_.titles[*columns_.time].unit) : TimeColumn();
    fit_ = {};
    values_.assign(columns_.channels.size(), {});
    numbers_.assign(columns_.channels.size() + 1, 0.0);
    slots_.clear();
    if (HasTime()) slots_.push_back({*columns_.time, 0});
    for (std::size_t i = 0; i < columns_.channels.size(); ++i) {
      slots_.push_back({columns_.channels[i], i + 1});
    }
    std::sort(slots_.begin(), slots_.end(),
              [](const Slot& a, const Slot& b) { return a.column < b.column; });
    const bool quotes = first.text.find('"') != std::string::npos;
    isPlain_ = !quotes && (!HasTime() || isPlain(*columns_.time));
    begun_ = true;
    pending_.reset();
    skipped_ = 0;
    gap_ = 0;
    const std::string one = first.text;
    const std::string two = second.text;
    const bool both = first.number != second.number;
    held_.reset();
    number_ = first.number;
    TakeCells(one);
    number_ = second.number;
    if (both) TakeCells(two);
    number_ = 0;
  }

  uint64 LineNumber() const { return number_ != 0 ? number_ : lines_.GetNumber(); }

  // ---- Lines of samples
  // --------------------------------------------------------------------------

  /// A number at the front of what is left of a line, and the separator or the end behind it.
  bool TakeNumber(const char** at, const char* end, double* v) const {
    const char* p = *at;
    while (p != end && (*p == ' ' || (*p == '\t' && separator_ != Separator::Tab))) ++p;
    if (p != end && *p == '+') ++p;
    const char* behind = p;
    if (comma_) {
      constexpr std::size_t kMost = 40;
      char digits[kMost];
      std::size_t n = 0;
      while (behind != end && n < kMost && *behind != ' ' &&
             *behind != static_cast<char>(separator_)) {
        digits[n++] = *behind == ',' ? '.' : *behind;
        ++behind;
      }
      const auto [stop, error] = std::from_chars(digits, digits + n, *v);
      if (error != std::errc{} || stop != digits + n || n == kMost) return false;
    } else {
      const auto [stop, error] = std::from_chars(p, end, *v);
      if (error != std::errc{}) return false;
      behind = stop;
    }
    if (!std::isfinite(*v)) return false;
    const char* const number = behind;
    while (behind != end && (*behind == ' ' || *behind == '\r' ||
                             (*behind == '\t' && separator_ != Separator::Tab))) {
      ++behind;
    }
    *at = behind;
    if (behind == end) return true;
    if (separator_ == Separator::Blank) return behind != number;
    if (*behind != static_cast<char>(separator_)) return false;
    *at = behind + 1;
    return true;
  }

  /// Passes over a column.
  bool SkipColumn(const char** at, const char* end) const {
    const char* p = *at;
    if (separator_ == Separator::Blank) {
      while (p != end && (*p == ' ' || *p == '\t')) ++p;
      while (p != end && *p != ' ' && *p != '\t') ++p;
    } else {
      p = static_cast<const char*>(
          std::memchr(p, static_cast<char>(separator_), static_cast<std::size_t>(end - p)));
      if (p == nullptr) return false;
      ++p;
    }
    *at = p;
    return p != end;
  }

  /// A line whose columns are numbers; false, with nothing taken, for any other.
  bool TakeNumbers(std::string_view line) {
    if (!isPlain_ || line.empty() || line.front() == ';') return false;
    const char* p = line.data();
    const char* const end = p + line.size();
    std::size_t column = 0;
    for (const Slot& slot : slots_) {
      for (; column < slot.column; ++column) {
        if (!SkipColumn(&p, end)) return false;
      }
      if (!TakeNumber(&p, end, &numbers_[slot.target])) return false;
      ++column;
    }
    // More columns than there are make it another line.
    if (column == columns_.titles.size() && p != end) return false;
    AddRow(HasTime() ? times_.FromNumber(numbers_[0]) : 0.0);
    return true;
  }

  /// A line by its cells.  False where it is none of the table.
  bool TakeCells(std::string_view line) {
    std::vector<std::string_view> texts;
    SplitLine(line, separator_, &texts);
    const std::size_t present = texts.size();
    while (texts.size() > columns_.titles.size() && texts.back().empty()) texts.pop_back();
    const Row row = RowOf(line, separator_);
    const bool footer = row.cells.empty() || row.cells.front().kind == CellKind::Text;
    const bool fits = row.IsLike(pattern_) && row.cells.size() <= columns_.titles.size();
    if (footer || !fits) {
      const bool other = !footer && row.cells.size() != columns_.titles.size();
      const char* const what = other ? "has another number of columns" : "is not a line of numbers";
      if (!pending_) pending_ = Pending{what, LineNumber(), footer};
      // A few lines that looked like samples may have been part of the header.
      constexpr std::size_t kFew = 64;
      if (values_.front().size() < kFew) return false;
      // Far into the samples, a line that begins as one and is none does not pass for a footer.
      if (!footer) Refuse(what);
      return true;
    }
    double time = 0.0;
    for (const Slot& slot : slots_) {
      const Cell cell = slot.column < row.cells.size() ? row.cells[slot.column] : Cell{};
      if (cell.kind == CellKind::Missing) {
        const bool cut = slot.column >= present && separator_ != Separator::None;
        const bool empty = slot.column >= row.cells.size() || texts[slot.column].empty();
        Refuse(cut     ? "has another number of columns"
               : empty ? "the value is missing"
                       : "the value is no number");
        return true;
      }
      comma_ = comma_ || cell.comma;
      const bool isTime = slot.target == 0;
      if (isTime && cell.kind != CellKind::Number) {
        Cell stamp = cell;
        if (columns_.date && *columns_.date < row.cells.size()) {
          stamp.day = row.cells[*columns_.date].day;
          stamp.kind = CellKind::Stamp;
        }
        time = times_.FromStamp(stamp);
      } else if (isTime) {
        time = times_.FromNumber(cell.value);
      } else {
        numbers_[slot.target] = cell.value;
      }
    }
    AddRow(time);
    return true;
  }

  /// A sample that has no value.
  void Refuse(const char* what) {
    if (skipped_ >= choice_.skipBad) throw Error(what, LineNumber());
    ++skipped_;
    ++gap_;
  }

  void AddRow(double time) {
    if (pending_) {  // in the midst of samples
      if (skipped_ >= choice_.skipBad) throw Error(pending_->what, pending_->line);
      ++skipped_;
      ++gap_;
      pending_.reset();
      held_.reset();
    }
    const bool bridges = gap_ != 0 && !values_.front().empty();
    const uint64 missing = bridges ? MissingBefore(time) : 0;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const double v = numbers_[i + 1];
      const double before = bridges ? values_[i].back() : v;
      for (uint64 k = 1; k <= missing; ++k) {
        const double share = static_cast<double>(k) / static_cast<double>(missing + 1);
        values_[i].push_back(before + (v - before) * share);
      }
      values_[i].push_back(v);
    }
    for (uint64 k = 0; k < missing; ++k) fit_.Skip();
    bridged_ += missing;
    gap_ = 0;
    if (HasTime()) fit_.Add(time, LineNumber());
  }

  /// How many of the lines that were passed over were samples: by the times, if there are.
  uint64 MissingBefore(double time) const {
    const double steps = HasTime() ? fit_.StepsTo(time) : 0.0;
    if (steps == 0.0) return gap_;
    return std::min(gap_, common::RoundToIndex(std::max(steps - 1.0, 0.0)));
  }

  Recording Finish() {
    if (values_.front().empty()) throw Error("has no samples");
    Recording out;
    for (std::size_t i = 0; i < columns_.titles.size(); ++i)
      out.names.push_back(columns_.NameOf(i));
    const double rate = choice_.fsamp ? *choice_.fsamp : HasTime() ? fit_.Rate(true) : 0.0;
    out.remarks = columns_.remarks;
    if (!times_.GetRemark().empty()) out.remarks.push_back(times_.GetRemark());
    if (skipped_ != 0) {
      out.remarks.push_back(fmt::format(
          "{} lines without a value are passed over, {} samples are bridged", skipped_, bridged_));
    }
    for (std::size_t i = 0; i < values_.size(); ++i) {
      Signal& signal = out.channels.emplace_back();
      const std::size_t column = columns_.channels[i];
      signal.name = columns_.titles[column].name;
      signal.unit = PlainUnit(columns_.titles[column].unit);
      signal.values = std::move(values_[i]);
      signal.fsamp = rate;
      signal.begin = HasTime() ? fit_.GetBegin() : 0.0;
    }
    return out;
  }

  TextLines lines_;
  const ChannelChoice& choice_;
  std::vector<std::string> header_;
  std::optional<Held> held_;  // that looks like samples, until the next one does too
  uint64 broken_ = 0;         // the line that did not

  bool begun_ = false;
  Separator separator_ = Separator::None;
  bool comma_ = false;    // a comma is the decimal sign
  bool isPlain_ = false;  // all columns that are read are numbers without quotes
  Row pattern_;
  Columns columns_;
  std::vector<Slot> slots_;
  std::vector<double> numbers_;  // of a line: the time, then the channels
  TimeColumn times_;
  TimeFit fit_;
  std::vector<std::vector<double>> values_;
  std::optional<Pending> pending_;
  uint64 number_ = 0;  // of a line that was held; 0 for the last one
  uint64 skipped_ = 0, gap_ = 0, bridged_ = 0;
};

}  // namespace

Recording ReadTable(const Pieces& next, const ChannelChoice& choice) {
  return TableReader(next, choice).Read();
}

Recording ReadTable(Bytes bytes, const ChannelChoice& choice) {
  std::string_view rest = TextOf(bytes);
  const Pieces once = [&rest] {
    const std::string_view all = std::exchange(rest, {});
    return std::span<const char>(all.data(), all.size());
  };
  return ReadTable(once, choice);
}

}  // namespace qarv::exchange
