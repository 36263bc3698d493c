#include "pdf/assembly/object_writer.h"

#include <utility>

namespace veltrano {

namespace {

constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view openingMarker = "%DEBUT_OBJ/%\r\n";
constexpr std::string_view closingLines = "endobj\r\n%FIN_OBJ/%\r\n";

}  // namespace

void ObjectWriter::writeHeader() {
  constexpr std::string_view header = "%PDF-1.0";
  objectCount_ = 0;
  crossReference_.clear();
  line(header);
  crossReference_.count(header.size());
}

void ObjectWriter::writeTrailer(int catalogObject) {
  crossReference_.write(text_, nextNumber(), catalogObject);
}

void ObjectWriter::begin(int number) {
  objectStart_ = text_.size();
  text_.append(openingMarker);
  line({integerText(number), " 0 obj"});
}

int ObjectWriter::begin() {
  const int number = nextNumber();
  begin(number);
  return number;
}

void ObjectWriter::line(std::initializer_list<std::string_view> pieces) {
  for (const std::string_view piece : pieces) {
    text_.append(piece);
  }
  text_.append(lineEnd);
}

void ObjectWriter::sharedLine(std::shared_ptr<const std::string> bytes) {
  text_.appendShared(std::move(bytes));
  text_.append(lineEnd);
}

std::uint64_t ObjectWriter::end() {
  text_.append(closingLines);
  const std::uint64_t objectLength = length();
  crossReference_.count(objectLength);
  text_.append(lineEnd);
  return objectLength;
}

}  // namespace veltrano
