#ifndef VELTRANO_PDF_ASSEMBLY_OBJECT_WRITER_H
#define VELTRANO_PDF_ASSEMBLY_OBJECT_WRITER_H

// Writes numbered objects, one after another.

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "base/numbers/numbers.h"
#include "pdf/assembly/cross_reference.h"
#include "pdf/assembly/output_text.h"

namespace veltrano {

class ObjectWriter {
 public:
  /// Starts a file: numbers and positions anew, and the first line. The text so far stays.
  void writeHeader();
  /// Cross-reference table, trailer and the end-of-file line.
  void writeTrailer(int catalogObject);
  /// Empties the text.
  void clearText() { text_.clear(); }

  /// Takes the next object number, without writing anything.
  int nextNumber() { return ++objectCount_; }
  /// Number of the last object begun.
  [[nodiscard]] int objectCount() const { return objectCount_; }

  /// Opens object `number`: marker line and "N 0 obj".
  void begin(int number);
  /// The same with the next number, which it returns.
  int begin();
  /// One line made of the pieces, and CR LF.
  void line(std::initializer_list<std::string_view> pieces);
  void line(std::string_view piece) { line({piece}); }
  /// Whole lines that have their line ends already.
  void lines(std::string_view text) { text_.append(text); }
  /// Bytes that are kept alive and referred to instead of copied, then CR LF.
  void sharedLine(std::shared_ptr<const std::string> bytes);
  /// Characters of the open object so far.
  [[nodiscard]] std::uint64_t length() const { return text_.size() - objectStart_; }
  /// Closes the object: "endobj", marker line, position. Returns the length of its text.
  std::uint64_t end();

  [[nodiscard]] const OutputText& text() const { return text_; }

 private:
  OutputText text_;
  CrossReference crossReference_;
  int objectCount_ = 0;
  std::uint64_t objectStart_ = 0;
};

}  // namespace veltrano

#endif
