#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_PAGE_FILE_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_PAGE_FILE_H

// The database file as a sequence of pages: opened with its lock and its password, brought up to date with the
// journal of a process that did not close it, decoded.

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include "base/files/random_access.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/header.h"

namespace veltrano::access {

class PageFile {
 public:
  /// Opens for reading only if that is wanted, or the file cannot be written, or its folder takes no journal.
  /// `files` must outlive the file.
  static Result<PageFile> open(FileSystem& files, const std::filesystem::path& path, bool readOnly,
                               std::string_view password);

  [[nodiscard]] const Header& header() const { return header_; }
  /// The file itself, whatever link led to it.
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  /// Hash of the header page.
  [[nodiscard]] std::uint64_t identity() const { return identity_; }
  /// Success, or why the file is only read.
  [[nodiscard]] const Status& writable() const { return writable_; }
  [[nodiscard]] std::uint32_t pageSize() const { return pageSizeOf(header_.version); }
  [[nodiscard]] std::uint64_t offsetOf(PageNumber page) const { return std::uint64_t{page} * pageSize(); }
  /// In bytes, as far as this process has found it or tried to make it.
  [[nodiscard]] std::uint64_t length() const { return length_; }

  /// Reads a page and decodes it. What comes after the end of the file is zero.
  bool read(PageNumber page, MutableBytes target);
  bool write(PageNumber page, Bytes bytes);
  bool setLength(std::uint64_t length);
  bool sync() { return file_->sync(); }

  /// The bytes of a page as they lie in the file: `bytes`, or encoded in `space`.
  Bytes encoded(PageNumber page, Bytes bytes, std::vector<std::uint8_t>& space) const;
  /// Reads a page as it lies in the file. Empty if it cannot be read, or not as a whole.
  Bytes readEncoded(PageNumber page, std::vector<std::uint8_t>& space);

 private:
  PageFile() = default;
  Status openFile(FileSystem& files);
  Status readHeaderPage(std::string_view password);
  Status recover(FileSystem& files);
  Status checkDecoding();
  [[nodiscard]] Status whyNotWritable(FileSystem& files) const;

  std::filesystem::path path_;
  std::unique_ptr<RandomAccessFile> file_;
  Status writable_;
  Header header_;
  std::uint64_t identity_ = 0;
  std::uint64_t length_ = 0;
  std::vector<std::uint8_t> space_;
};

}  // namespace veltrano::access

#endif
