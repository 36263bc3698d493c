#ifndef VELTRANO_IMAGING_JPEG_INTEL_JPEG_LIBRARY_H
#define VELTRANO_IMAGING_JPEG_INTEL_JPEG_LIBRARY_H

// JPEG coding of DIB sections. The module keeps the name and the outcomes of the library it was first written
// for; libjpeg-turbo does the coding.
//
// Writes JFIF, 4:2:0, with the quality clamped to 1..100. Reads grey, colour and four-channel JPEGs, baseline
// or progressive, into 24-bit sections. Damaged and hostile data is refused.

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "veltrano/dib_section.h"

namespace veltrano::mIntelJPEGLibrary {

/// How coding ended; the numbers are those that the error texts have always carried.
enum class CoderResult : int {
  ok = 0,
  memoryError = -5,
  invalidProperties = -8,  ///< nothing to encode, or a side longer than a JPEG can have
  notJpeg = -13,
  badData = -21,
  internalError = -24,
  bufferTooSmall = -28,
  unsupportedFrame = -29,
};

/// Raised by saveDibToJpegBuffer. The public classes handle it.
class RaisedError : public std::runtime_error {
 public:
  static constexpr int number = 26001;
  /// `description` as in "Failed to save to JPG -28".
  RaisedError(const std::string& description, std::string source)
      : std::runtime_error(description), source_(std::move(source)) {}
  /// The application's name followed by ".mIntelJPEGLibrary".
  [[nodiscard]] const std::string& source() const { return source_; }

 private:
  std::string source_;
};

/// Size of the last JPEG whose header loadJpegBufferToDib read on this thread, before any scaling.
std::int32_t lastJpegWidth();
std::int32_t lastJpegHeight();

/// Writes the section to a file, which appears whole or not at all. False if the section is empty or the file
/// cannot be written.
bool saveDibToJpegFile(const cDIBSection& dib, const std::filesystem::path& file, std::int32_t quality);

/// Writes the section into `buffer`, which holds `bufferSize` bytes; the size becomes the encoded length.
/// Throws RaisedError if the coder cannot start or the image does not fit; the size is unchanged then and the
/// buffer's content unspecified.
bool saveDibToJpegBuffer(const cDIBSection& dib, std::uint8_t* buffer, std::int32_t& bufferSize,
                         std::int32_t quality);

/// The section as JPEG bytes. The budget is a quarter of a byte a pixel: n = width * height / 4 rounded, ties
/// to even, and n - 1 bytes may be used. An image that needs more gives a string of n + 1 characters that is
/// not a JPEG (one NUL character for an empty section), which hosts rely on. Never throws RaisedError.
std::string saveDibToJpegString(const cDIBSection& dib, std::int32_t quality);

/// Reads a JPEG file at full size. False if it cannot be read or is damaged; the section then holds what
/// could be decoded, or nothing.
bool loadJpegFileToDib(cDIBSection& dib, const std::filesystem::path& file);

/// Reads JPEG bytes at 1/1, 1/2, 1/4 or 1/8 (`scale` 1, 2, 4, 8; others mean 1) of its size, sizes rounded
/// down. False as above, also for a null address or a size below 1.
bool loadJpegBufferToDib(cDIBSection& dib, const std::uint8_t* buffer, std::int32_t bufferSize,
                         std::int32_t scale = 1);

}  // namespace veltrano::mIntelJPEGLibrary

#endif
