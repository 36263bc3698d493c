#include "pdf/sheets/book.h"

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
  head_ = head;
  pdf.PDFSetUnit(UNIT_PT);
  pdf.PDFFormatPage(Value(Value::Doubles{pageWidth_, pageHeight_}));
  pdf.PDFTitle(title);
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
  write(*small_, title_, 0, 0, grey);
  write(*small_, number, width() - small_->width(number), 0, grey);
  y = margin;
  if (page_ == 1) {
    for (const std::string_view line : large_->wrap(title_, width())) {
      write(*large_, line, 0, 14, accent);
      y += large_->lead();
    }
    fill(0, 0, width(), 1, accent);
    y += 14;
  }
  head_();
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
