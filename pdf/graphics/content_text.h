#ifndef VELTRANO_PDF_GRAPHICS_CONTENT_TEXT_H
#define VELTRANO_PDF_GRAPHICS_CONTENT_TEXT_H

// The text of a page's content while it is drawn. It takes some hundred short pieces for each page, nearly
// all of a length that the compiler knows: appended in place they cost a few instructions each, where a
// string would be called for every one of them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "base/numbers/numbers.h"

namespace veltrano {

class ContentText {
 public:
  void append(std::string_view text) { next_ = std::copy_n(text.data(), text.size(), roomFor(text.size())); }
  /// formatPdfNumber(value, decimals).
  void appendNumber(double value, int decimals) {
    next_ = writePdfNumber(roomFor(longestPdfNumber), value, decimals);
  }
  void appendInteger(std::int64_t value) { next_ = writeInteger(roomFor(longestInteger), value); }

  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(next_ - bytes_.get()); }
  /// Valid until the next change.
  [[nodiscard]] std::string_view view() const { return {bytes_.get(), size()}; }
  /// Takes back what was appended since the text had `size` characters.
  void truncate(std::size_t size) { next_ = bytes_.get() + size; }
  /// Empties the text; its memory stays for the next page.
  void clear() { truncate(0); }

 private:
  /// Where the next characters go; there is room for `count` of them.
  char* roomFor(std::size_t count) {
    if (static_cast<std::size_t>(end_ - next_) < count) [[unlikely]] {
      grow(count);
    }
    return next_;
  }
  void grow(std::size_t count);

  std::unique_ptr<char[]> bytes_;
  char* next_ = nullptr;
  char* end_ = nullptr;
};

}  // namespace veltrano

#endif
