#include "pdf/sheets/book.h"

#include <algorithm>
#include <utility>

#include "pdf/fonts/font.h"

namespace veltrano::sheets {

Face::Face(VeltranoPDF& pdf, PDFFontNme font, PDFFontStl style, std::int16_t size)
    : font_(font), style_(style), size_(size) {
  const std::string name = baseFontName(font, style).value_or(std::string());
  for (std::size_t i = 1; i < widths_.size(); ++i) {
    widths_[i] = pdf.PDFGetStringWidth(std::string(1, static_cast<char>(i)), name, size);
  }
}

double Face::width(std::string_view text) const {
  double sum = 0;
  for (const char c : text) {
    sum += widths_[static_cast<unsigned char>(c)];
  }
  return sum;
}

std::vector<std::string_view> Face::wrap(std::string_view text, double most) const {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  std::size_t blank = 0;  // the last one of the line, if it comes after the start
  double sum = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool lineEnd = text[i] == '\n';
    sum += widths_[static_cast<unsigned char>(text[i])];
    blank = text[i] == ' ' ? i : blank;
    if (!lineEnd && (sum <= most || i == start)) {
      continue;
    }
    const bool atBlank = !lineEnd && blank > start;
    const std::size_t end = atBlank ? blank : i;
    lines.push_back(text.substr(start, end - start));
    start = lineEnd || atBlank ? end + 1 : end;
    sum = width(text.substr(start, i + 1 - start));
  }
  lines.push_back(text.substr(start));
  return lines;
}

std::string Face::shortened(std::string_view text, double most) const {
  constexpr std::string_view dots = "...";
  if (width(text) <= most) {
    return std::string(text);
  }
  double sum = width(dots);
  std::size_t length = 0;
  while (length < text.size() && sum + widths_[static_cast<unsigned char>(text[length])] <= most) {
    sum += widths_[static_cast<unsigned char>(text[length++])];
  }
  return std::string(text.substr(0, length)).append(dots);
}

Status Book::make(const std::string& title, const std::function<void()>& head,
                  const std::function<void()>& compose) {
  const Face small(pdf, FONT_ARIAL, FONT_NORMAL, 8);
  const Face large(pdf, FONT_ARIAL, FONT_BOLD, 18);
  if (!small.measured() || !large.measured()) {
    return {Failure::missing, "the metrics of the fonts are missing"};
  }
  small_ = &small;
  large_ = &large;
  title_ = title;
  std::ranges::replace_if(
      title_, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  head_ = head;
  pdf.PDFSetUnit(UNIT_PT);
  pdf.PDFFormatPage(Value(Value::Doubles{pageWidth_, pageHeight_}));
  pdf.PDFTitle(title_);
  for (const bool drawing : {false, true}) {
    drawing_ = drawing;
    pages_ = std::exchange(page_, 0);
    if (drawing) {
      pdf.PDFBeginDoc();
    }
    nextPage();
    compose();
  }
  pdf.PDFEndDoc();
  return {};
}

void Book::nextPage() {
  if (++page_ > 1 && drawing_) {
    pdf.PDFEndPage();
    pdf.PDFNewPage();
  }
  const std::string number = std::to_string(page_) + " / " + std::to_string(pages_);
  y = pageHeight_ - 30;
  const double left = width() - small_->width(number);
  write(*small_, small_->shortened(title_, left - margin), 0, 0, grey);
  write(*small_, number, left, 0, grey);
  y = margin;
  if (page_ == 1) {
    writeTitle();
    fill(0, 0, width(), 1, accent);
    y += 14;
  }
  head_();
}

void Book::writeTitle() {
  constexpr std::size_t mostLines = 3;
  const auto lines = large_->wrap(title_, width());
  for (std::size_t i = 0; i < std::min(mostLines, lines.size()); ++i, y += large_->lead()) {
    const auto rest = static_cast<std::size_t>(lines[i].data() - title_.data());
    write(*large_, i + 1 == mostLines ? large_->shortened(title_.substr(rest), width()) : lines[i], 0, 14,
          accent);
  }
}

void Book::need(double length) {
  if (y + length > pageHeight_ - margin) {
    nextPage();
  }
}

void Book::write(const Face& face, std::string_view text, double x, double baseline, const char* color) {
  if (drawing_ && !text.empty()) {
    face.select(pdf);
    pdf.PDFSetTextColor(color);
    pdf.PDFTextOut(text, margin + x, y + baseline);
  }
}

void Book::fill(double x, double top, double across, double down, const char* color) {
  if (drawing_) {
    pdf.PDFSetDrawMode(DRAW_DRAW);
    pdf.PDFSetDrawColor(color);
    pdf.PDFDrawRectangle(margin + x, y + top, across, down);
  }
}

}  // namespace veltrano::sheets
