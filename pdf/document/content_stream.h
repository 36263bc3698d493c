#ifndef VELTRANO_PDF_DOCUMENT_CONTENT_STREAM_H
#define VELTRANO_PDF_DOCUMENT_CONTENT_STREAM_H

// The content stream of a page while it is drawn: lines of operators, each ended by CR LF.
//
// A page takes some hundred short pieces, nearly all of a length that the compiler knows. They are written in
// place, which costs a few instructions each where a string would be called for every one of them.
//
//   ContentWriter(stream).point(x, y).text(" m").end();

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "base/numbers/numbers.h"

namespace veltrano {

class ContentStream {
 public:
  [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(next_ - bytes_.get()); }
  /// Valid until the next change.
  [[nodiscard]] std::string_view view() const { return {bytes_.get(), size()}; }
  /// Empties the stream; its memory stays for the next page.
  void clear() { next_ = bytes_.get(); }

 private:
  friend class ContentWriter;
  /// Makes room for `count` characters after `next`, up to which the bytes are kept. Returns where `next` is
  /// then.
  char* grow(char* next, std::size_t count);

  std::unique_ptr<char[]> bytes_;
  char* next_ = nullptr;
  char* end_ = nullptr;
};

/// Writes lines at the end of a stream. A number that is not finite fails the statement that writes it: its
/// whole line is left out and the lines after it still come. The stream has a line once it is ended; while
/// the writer lives nothing else may write to the stream.
class ContentWriter {
 public:
  explicit ContentWriter(ContentStream& stream) : stream_(stream), next_(stream.next_), end_(stream.end_) {}

  ContentWriter& text(std::string_view text) {
    makeRoom(text.size());
    next_ = std::copy_n(text.data(), text.size(), next_);
    return *this;
  }
  /// Two decimals.
  ContentWriter& number(double value) { return number(value, 2); }
  ContentWriter& integer(std::int64_t value) {
    makeRoom(longestInteger);
    next_ = writeInteger(next_, value);
    return *this;
  }
  /// "x y"
  ContentWriter& point(double x, double y) { return number(x).text(" ").number(y); }
  /// "a b c d " of a matrix that turns by an angle. Three decimals: with two, a long text would come out
  /// smaller or larger than its font.
  ContentWriter& direction(double cosine, double sine) {
    for (const double value : {cosine, sine, -sine, cosine}) {
      number(value, 3).text(" ");
    }
    return *this;
  }

  /// Ends the line, or takes it back. False when it was taken back.
  bool end() {
    if (failed_) [[unlikely]] {
      traceLostLine();
      next_ = stream_.next_;
      failed_ = false;
      return false;
    }
    text("\r\n");
    stream_.next_ = next_;
    return true;
  }
  /// A line of its own.
  void line(std::string_view whole) { text(whole).end(); }

 private:
  static void traceLostLine();
  ContentWriter& number(double value, int decimals) {
    failed_ |= !std::isfinite(value);
    makeRoom(longestPdfNumber);
    next_ = writePdfNumber(next_, value, decimals);
    return *this;
  }
  void makeRoom(std::size_t count) {
    if (static_cast<std::size_t>(end_ - next_) < count) [[unlikely]] {
      next_ = stream_.grow(next_, count);
      end_ = stream_.end_;
    }
  }

  ContentStream& stream_;
  char* next_;
  char* end_;
  bool failed_ = false;
};

}  // namespace veltrano

#endif
