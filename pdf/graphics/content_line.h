#ifndef VELTRANO_PDF_GRAPHICS_CONTENT_LINE_H
#define VELTRANO_PDF_GRAPHICS_CONTENT_LINE_H

// One line of page content, written in place. A number that is not finite fails the statement that formats
// it: the whole line is then left out and the lines after it still come.
//
//   ContentLine(content).point(x, y).text(" m").end();

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "pdf/graphics/content_text.h"

namespace veltrano {

class ContentLine {
 public:
  explicit ContentLine(ContentText& content) : content_(content), start_(content.size()) {}

  ContentLine& text(std::string_view text) {
    content_.append(text);
    return *this;
  }
  /// Two decimals.
  ContentLine& number(double value) {
    failed_ |= !std::isfinite(value);
    content_.appendNumber(value, 2);
    return *this;
  }
  /// "x y"
  ContentLine& point(double x, double y) { return number(x).text(" ").number(y); }
  /// "a b c d " of a matrix that turns by an angle. Three decimals: with two, a long text would come out
  /// smaller or larger than its font.
  ContentLine& direction(double cosine, double sine) {
    failed_ |= !std::isfinite(cosine) || !std::isfinite(sine);
    for (const double value : {cosine, sine, -sine, cosine}) {
      content_.appendNumber(value, 3);
      content_.append(" ");
    }
    return *this;
  }
  /// Ends the line with CR LF, or takes it back. False when it was taken back.
  bool end() {
    if (failed_) {
      content_.truncate(start_);
      return false;
    }
    content_.append("\r\n");
    return true;
  }

 private:
  ContentText& content_;
  std::size_t start_;
  bool failed_ = false;
};

/// Appends `line` and CR LF.
inline void appendLine(ContentText& content, std::string_view line) {
  content.append(line);
  content.append("\r\n");
}

}  // namespace veltrano

#endif
