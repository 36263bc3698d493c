#include "pdf/sheets/sheets.h"

#include <algorithm>
#include <numeric>

#include "base/numbers/numbers.h"

namespace veltrano::sheets {

namespace {

constexpr double padding = 4;  // beside the text of a cell
constexpr double endless = 1e9;
constexpr double comfortable = 110;  // a column that is wrapped should still hold some words

/// Text that has a glyph for each character: line ends and form feeds apart, control characters become
/// blanks. A form feed starts a line.
std::string drawable(std::string_view text) {
  constexpr std::size_t tabWidth = 8;
  std::string drawn;
  std::size_t lineStart = 0;
  for (const char c : text) {
    if (c == '\t') {
      drawn.append(tabWidth - (drawn.size() - lineStart) % tabWidth, ' ');
    } else if (c != '\r') {
      if (c == '\f' && !drawn.empty() && drawn.back() != '\n') {
        drawn += '\n';
      }
      const bool control = static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\f';
      drawn += control ? ' ' : c;
    }
    lineStart = c == '\n' || c == '\f' ? drawn.size() : lineStart;
  }
  return drawn;
}

double longestLine(const Face& face, std::string_view text) {
  double longest = 0;
  for (const std::string_view line : face.wrap(text, endless)) {
    longest = std::max(longest, face.width(line));
  }
  return longest;
}

/// "12", "-1.5", "1e-05", "12 345,60", "1'000.00", "5 %".
bool isNumber(std::string text) {
  std::erase_if(text, [](char c) { return c == ' ' || c == ',' || c == '\'' || c == '%'; });
  return parseNumber(text).has_value();
}

using Row = std::vector<std::string>;

class Table {
 public:
  Table(Book& book, const std::vector<Row>& rows, std::int16_t points)
      : book_(book),
        rows_(rows),
        face_(book.pdf, FONT_ARIAL, FONT_NORMAL, points),
        bold_(book.pdf, FONT_ARIAL, FONT_BOLD, points) {
    for (const Row& row : rows) {
      const bool isHead = &row == rows.data();
      widths_.resize(std::max(row.size(), widths_.size()), 3 * padding);
      numbers_.resize(widths_.size(), true);
      for (std::size_t i = 0; i < row.size(); ++i) {
        widths_[i] = std::max(widths_[i], longestLine(isHead ? bold_ : face_, row[i]) + 2 * padding);
        numbers_[i] = numbers_[i] && (isHead || row[i].empty() || isNumber(row[i]));
      }
    }
  }
  [[nodiscard]] double width() const { return std::accumulate(widths_.begin(), widths_.end(), 0.0); }

  /// The width that the wider columns get so that all fit; endless if they do as they are.
  [[nodiscard]] double limit(double available) const {
    if (width() <= available) {
      return endless;
    }
    constexpr int halvings = 15;  // to a hundredth of a point
    double limit = available / 2;
    double step = limit / 2;
    for (int i = 0; i < halvings; ++i, step /= 2) {
      const auto limited = [limit](double sum, double column) { return sum + std::min(column, limit); };
      limit += std::accumulate(widths_.begin(), widths_.end(), 0.0, limited) > available ? -step : step;
    }
    return limit;
  }

  /// A narrow table becomes somewhat wider. Columns that would be too narrow to read are spread over several
  /// bands.
  void fit(double available) {
    const double least = 4 * face_.size() + 2 * padding;
    const double most = limit(available) < least ? comfortable : limit(available);
    const double factor = std::clamp(available / width(), 1.0, 1.4);
    bands_ = {{}};
    double sum = 0;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      widths_[i] = std::min(widths_[i], most) * factor;
      if (sum + widths_[i] > available + 1 && i > 1) {
        bands_.push_back({0});
        sum = widths_[0];
      }
      bands_.back().push_back(i);
      sum += widths_[i];
    }
    band_ = bands_.data();
  }

  Status make(const std::string& title, const Tick& tick) {
    const double all = static_cast<double>(rows_.size() * bands_.size());
    const auto head = [this] { drawRow(rows_.front(), bold_); };
    return book_.make(title, head, [&] {
      double drawn = 0;
      for (const Band& band : bands_) {
        if (band_ != &band) {
          band_ = &band;
          book_.nextPage();
        }
        for (const Row& row : rows_) {
          if (&row != rows_.data() || cells(row, bold_).lines > mostLines()) {
            drawRow(row, face_);
          }
          tick(drawn++ / all);
        }
      }
      band_ = bands_.data();
    });
  }

 private:
  using Band = std::vector<std::size_t>;  ///< columns

  /// The part of a row in the current band.
  struct Cells {
    std::vector<std::vector<std::string_view>> texts;
    std::size_t lines = 1;
  };
  [[nodiscard]] Cells cells(const Row& row, const Face& face) const {
    Cells all;
    for (const std::size_t column : *band_) {
      const std::string_view text = column < row.size() ? std::string_view(row[column]) : std::string_view();
      all.texts.push_back(face.wrap(text, widths_[column] - 2 * padding + 0.01));
      all.lines = std::max(all.lines, all.texts.back().size());
    }
    return all;
  }
  /// Of a piece of a row.
  [[nodiscard]] std::size_t mostLines() const {
    return static_cast<std::size_t>(book_.height() / face_.lead() / 2);
  }

  void drawRow(const Row& row, const Face& face) {
    const Cells all = cells(row, face);
    // A row that is longer than half a page goes on in further pieces; a head is cut.
    for (std::size_t from = 0; from < (&face == &bold_ ? 1 : all.lines); from += mostLines()) {
      drawPiece(all, from, std::min(all.lines, from + mostLines()), face);
    }
  }
  void drawPiece(const Cells& all, std::size_t from, std::size_t to, const Face& face) {
    const bool isHead = &face == &bold_;
    const double height = static_cast<double>(to - from) * face.lead() + padding;
    double across = 0;
    for (const std::size_t column : *band_) {
      across += widths_[column];
    }
    if (isHead) {
      book_.fill(0, 0, across, height, pale);
    } else {
      book_.need(height);
    }
    double left = 0;
    for (std::size_t i = 0; i < all.texts.size(); ++i) {
      const std::size_t column = (*band_)[i];
      const auto& lines = all.texts[i];
      double baseline = face.size() + 1;
      for (std::size_t line = from; line < std::min(to, lines.size()); ++line, baseline += face.lead()) {
        const double indent =
            numbers_[column] ? widths_[column] - padding - face.width(lines[line]) : padding;
        book_.write(face, lines[line], left + indent, baseline, isHead ? accent : ink);
      }
      left += widths_[column];
    }
    book_.y += height;
    book_.fill(0, -0.4, across, 0.4, isHead ? accent : hairline);
  }

  Book& book_;
  const std::vector<Row>& rows_;  ///< the head first
  Face face_;
  Face bold_;
  std::vector<double> widths_;
  std::vector<bool> numbers_;  ///< columns of numbers only
  std::vector<Band> bands_;
  const Band* band_ = nullptr;  ///< the current one
};

/// The size at which every line fits, or a middle one if none does.
Face textFace(Book& book, std::string_view text, PDFFontNme font) {
  if (font == FONT_COURIER) {
    for (std::int16_t size = 10; size >= 7; --size) {
      Face face(book.pdf, font, FONT_NORMAL, size);
      if (longestLine(face, text) <= book.width()) {
        return face;
      }
    }
  }
  return {book.pdf, font, FONT_NORMAL, static_cast<std::int16_t>(font == FONT_COURIER ? 9 : 11)};
}

}  // namespace

Status makeTextSheets(Book& book, const std::string& title, const std::string& text, PDFFontNme font,
                      const Tick& tick) {
  const std::string drawn = drawable(text);
  const Face face = textFace(book, drawn, font);
  auto lines = face.wrap(drawn, book.width());
  if (lines.back().empty()) {
    lines.pop_back();
  }
  return book.make(
      title, [] {},
      [&] {
        for (std::size_t i = 0; i < lines.size(); ++i) {
          const bool breaks = lines[i].starts_with('\f');
          if (breaks) {
            book.nextPage();
          }
          book.need(face.lead());
          book.write(face, lines[i].substr(breaks ? 1 : 0), 0, face.size(), ink);
          book.y += face.lead();
          tick(static_cast<double>(i) / static_cast<double>(lines.size()));
        }
      });
}

Status makeTableSheets(Book& book, const std::string& title, std::vector<std::vector<std::string>> rows,
                       bool mayTurn, const Tick& tick) {
  for (Row& row : rows) {
    for (std::string& cell : row) {
      cell = drawable(cell);
      std::ranges::replace(cell, '\f', ' ');
    }
  }
  Table usual(book, rows, 9);
  if (usual.limit(book.width()) < comfortable && mayTurn) {
    book.turn();
  }
  Table small(book, rows, 7);
  Table& table = usual.limit(book.width()) < comfortable ? small : usual;
  table.fit(book.width());
  return table.make(title, tick);
}

}  // namespace veltrano::sheets
