#ifndef VELTRANO_TESTS_PDF_PDF_TESTING_H
#define VELTRANO_TESTS_PDF_PDF_TESTING_H

// A document in a folder of its own, and a reading of its file by the marker lines.

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "base/files/whole.h"
#include "tests/temporary_folder.h"
#include "veltrano/pdf.h"

namespace veltrano::tests {

/// Lines, each ended by CR LF.
inline std::string lines(std::initializer_list<std::string_view> all) {
  std::string text;
  for (const std::string_view line : all) text.append(line).append("\r\n");
  return text;
}

inline testing::AssertionResult holds(std::string_view text, std::string_view part) {
  if (text.find(part) != std::string_view::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << '"' << part << "\" is not in\n" << text.substr(0, 4000);
}

/// How often `part` is in `text`.
inline std::size_t countOf(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// The text of object `number` from its "N 0 obj" line to its "endobj" line, both left out.
inline std::string objectText(std::string_view file, int number) {
  const std::string opening = "%DEBUT_OBJ/%\r\n" + std::to_string(number) + " 0 obj\r\n";
  const auto start = file.find(opening);
  if (start == std::string_view::npos) return "no such object";
  const auto end = file.find("endobj\r\n%FIN_OBJ/%\r\n", start);
  return std::string(file.substr(start + opening.size(), end - start - opening.size()));
}

/// The content stream of a page of a document that has not been begun again.
inline std::string pageContent(std::string_view file, int page) {
  const std::string text = objectText(file, 2 * page);
  constexpr std::string_view start = " >>\r\nstream\r\n", end = "endstream\r\n";
  const auto from = text.find(start);
  if (from == std::string::npos || !text.ends_with(end)) return "no content stream";
  return text.substr(from + start.size(), text.size() - end.size() - from - start.size());
}

/// Number of the first object whose text holds `part`; 0 if no object does.
inline int objectWith(std::string_view file, std::string_view part) {
  for (int number = 1;; ++number) {
    const std::string text = objectText(file, number);
    if (text == "no such object") return 0;
    if (text.find(part) != std::string::npos) return number;
  }
}

/// A document in points, whose messages are kept.
class Document {
 public:
  Document() {
    pdf.onError = [this](std::string_view message) { errors.append(message).append("|"); };
    pdf.PDFFileName(file());
    pdf.PDFSetUnit(UNIT_PT);
  }

  [[nodiscard]] std::filesystem::path file() const { return folder / "out.pdf"; }
  /// Begins the document; one that was ended before is replaced.
  void begin() {
    pdf.PDFFileName(file());
    pdf.PDFBeginDoc();
  }
  /// Ends the document and reads it back.
  std::string finish() {
    pdf.PDFEndDoc();
    return readWholeFile(file()).value_or("");
  }
  /// The messages since the last call, each followed by "|".
  std::string takeErrors() { return std::exchange(errors, {}); }

  TemporaryFolder folder;
  std::string errors;
  VeltranoPDF pdf;
};

class PdfTest : public testing::Test, protected Document {};

using Draw = std::function<void(VeltranoPDF& pdf)>;

/// The file of a document in points, begun before and ended after `draw`.
inline std::string fileOf(const Draw& draw) {
  Document document;
  document.pdf.PDFBeginDoc();
  draw(document.pdf);
  return document.finish();
}

/// What `draw` writes on the first page.
inline std::string contentOf(const Draw& draw) {
  return pageContent(fileOf(draw), 1);
}

// JPEG files made by hand, segment by segment: what the marker scan looks at, and nothing that can be
// decoded.

inline std::string bytes(std::initializer_list<int> values) {
  std::string text;
  for (const int value : values) text.push_back(static_cast<char>(value));
  return text;
}

inline std::string app0(int densityUnit) {
  return bytes({0xFF, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, densityUnit, 0, 72, 0, 72, 0, 0});
}

inline std::string frame(int marker, int width, int height, int components) {
  std::string segment = bytes({0xFF, marker, 0, 8 + 3 * components, 8, height / 256, height % 256,
                               width / 256, width % 256, components});
  for (int i = 1; i <= components; ++i) segment += bytes({i, 0x11, 0});
  return segment;
}

/// The segments between the two end markers, filled up to `size` bytes by a comment.
inline std::string jpeg(std::initializer_list<std::string> segments, std::size_t size = 400) {
  std::string file = bytes({0xFF, 0xD8});
  for (const std::string& segment : segments) file += segment;
  const std::size_t comment = size - file.size() - 2;
  file += bytes({0xFF, 0xFE, static_cast<int>((comment - 2) / 256), static_cast<int>((comment - 2) % 256)});
  file.append(comment - 4, ' ');
  return file + bytes({0xFF, 0xD9});
}

}  // namespace veltrano::tests

#endif
