#ifndef VELTRANO_PDF_SHEETS_BOOK_H
#define VELTRANO_PDF_SHEETS_BOOK_H

// Pages with a title and their numbers, drawn with the public class. For tools: no public member needs it.
// Lengths are points, texts are in the ANSI code page.

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "veltrano/pdf.h"

namespace veltrano::sheets {

inline constexpr double margin = 50;
inline constexpr const char* ink = "#1F2933";
inline constexpr const char* accent = "#0B5C8A";
inline constexpr const char* grey = "#52606D";
inline constexpr const char* pale = "#E6F0F6";
inline constexpr const char* hairline = "#CBD2D9";

/// A font at a size, with the widths of its characters.
class Face {
 public:
  /// `style`: FONT_NORMAL or FONT_BOLD. The widths are 0 if the font has no metrics.
  Face(VeltranoPDF& pdf, PDFFontNme font, PDFFontStl style, std::int16_t size);

  [[nodiscard]] bool measured() const { return widths_['x'] != 0; }
  [[nodiscard]] double width(std::string_view text) const;
  /// Lines of at most that width, broken at line ends, or else at blanks where there are some.
  [[nodiscard]] std::vector<std::string_view> wrap(std::string_view text, double most) const;
  /// As much of the text as fits that width, with "..." if that is not all of it.
  [[nodiscard]] std::string shortened(std::string_view text, double most) const;
  [[nodiscard]] std::int16_t size() const { return size_; }
  /// From one baseline to the next.
  [[nodiscard]] double lead() const { return 1.3 * size_; }
  void select(VeltranoPDF& pdf) const { pdf.PDFSetFont(font_, size_, style_); }

 private:
  std::int32_t font_;
  std::int32_t style_;
  std::int16_t size_;
  std::array<double, 256> widths_{};
};

class Book {
 public:
  /// The document's file name and information are the caller's to set in `pdf`.
  Book(double pageWidth, double pageHeight) : pageWidth_(pageWidth), pageHeight_(pageHeight) {}

  VeltranoPDF pdf;

  void turn() { std::swap(pageWidth_, pageHeight_); }
  /// Of what lies within the margins.
  [[nodiscard]] double width() const { return pageWidth_ - 2 * margin; }
  [[nodiscard]] double height() const { return pageHeight_ - 2 * margin; }

  /// Writes the document: calls `compose` twice, first to count the pages, then to draw them. `head` draws
  /// what each page starts with. The title takes at most three lines. Fails if the metrics of the fonts are
  /// missing.
  Status make(const std::string& title, const std::function<void()>& head,
              const std::function<void()>& compose);

  // For `head` and `compose`:

  void nextPage();
  /// Starts the next page if so much does not fit the current one.
  void need(double length);
  /// Where the next line starts, from the top of the page.
  double y = 0;
  /// `x` counts from the left margin, `baseline` from `y`.
  void write(const Face& face, std::string_view text, double x, double baseline, const char* color);
  void fill(double x, double top, double across, double down, const char* color);

 private:
  void writeTitle();
  double pageWidth_;
  double pageHeight_;
  bool drawing_ = false;
  int page_ = 0;
  int pages_ = 0;
  std::string title_;
  const Face* small_ = nullptr;
  const Face* large_ = nullptr;
  std::function<void()> head_;
};

}  // namespace veltrano::sheets

#endif
