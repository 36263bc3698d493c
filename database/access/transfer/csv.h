#ifndef VELTRANO_DATABASE_ACCESS_TRANSFER_CSV_H
#define VELTRANO_DATABASE_ACCESS_TRANSFER_CSV_H

// Comma-separated values. Values may be quoted, and then hold separators, line ends and doubled quotes.
// Quotes within a value that does not start with one are part of it.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files/file.h"

namespace veltrano::access {

struct CsvField {
  std::string text;
  bool quoted = false;
};

/// Reads a file record by record. The separator is the comma, semicolon or tab that the first line has most
/// of; a byte-order mark is skipped.
class CsvReader {
 public:
  /// Also fails if the file starts with no text, or with UTF-16.
  static Result<CsvReader> open(const std::filesystem::path& file);

  /// Replaces `fields` by those of the next record, reusing their storage. False at the end, and if the file
  /// cannot be read, its quotes are malformed or a record has more than `mostBytes`: see `status`. A blank
  /// line is a record of one empty field that is not quoted.
  bool next(std::vector<CsvField>& fields);
  [[nodiscard]] const Status& status() const { return status_; }
  /// The line that the record began on, from 1.
  [[nodiscard]] std::size_t line() const { return recordLine_; }
  /// The part of the file that has been read, 0 to 1.
  [[nodiscard]] double done() const;
  /// Bytes read so far.
  [[nodiscard]] std::uint64_t read() const { return read_; }
  /// Input without an end would fill the memory.
  static constexpr std::uint64_t mostBytes = std::uint64_t{1} << 30;

 private:
  CsvReader(File file, std::uint64_t size);
  bool more();
  void takePlain(std::string& text);
  bool takeQuoted(std::string& text);

  File file_;
  std::uint64_t size_;
  std::uint64_t read_ = 0;
  std::uint64_t recordStart_ = 0;  // to the buffer
  std::vector<char> buffer_;       // keeps its place when the reader moves
  std::string_view rest_;          // of the buffer
  char separator_ = ',';
  std::size_t line_ = 1;
  std::size_t recordLine_ = 1;
  Status status_;
};

/// Appends a value, in quotes if it is empty or a reader could take it for something else without them.
void appendCsv(std::string& target, std::string_view text);

}  // namespace veltrano::access

#endif
