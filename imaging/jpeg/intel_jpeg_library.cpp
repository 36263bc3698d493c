#include "imaging/jpeg/intel_jpeg_library.h"

#include <algorithm>
#include <optional>
#include <span>

#include "base/files/whole.h"
#include "base/numbers/numbers.h"
#include "base/os/host.h"
#include "base/trace.h"
#include "imaging/jpeg/reader.h"
#include "imaging/jpeg/writer.h"

namespace veltrano::mIntelJPEGLibrary {
namespace {

// A value a thread: hosts use the objects from one thread each, and none may see another's sizes.
thread_local std::int32_t lastWidth = 0;
thread_local std::int32_t lastHeight = 0;

std::string codeText(CoderResult result) {
  return std::string(integerText(static_cast<int>(result)).view());
}

PixelSurface surfaceOf(const cDIBSection& dib) {
  return {dib.DIBSectionBitsPtr(), dib.Width(), dib.Height(), dib.BytesPerScanLine()};
}

// Creates the section and decodes into it.
CoderResult decode(cDIBSection& dib, JpegReader& reader, std::int32_t scale) {
  if (!dib.Create(reader.width() / scale, reader.height() / scale)) return CoderResult::memoryError;
  return reader.readImage(scale, surfaceOf(dib));
}

const char* reasonOf(CoderResult result) {
  switch (result) {
    case CoderResult::ok:
      break;
    case CoderResult::memoryError:
      return "Memory is short.";
    case CoderResult::invalidProperties:
      return "There is no picture, or a side of it is longer than a JPEG can have.";
    case CoderResult::notJpeg:
      return "This is not a JPEG.";
    case CoderResult::badData:
      return "The JPEG is damaged.";
    case CoderResult::bufferTooSmall:
      return "The JPEG does not fit into its buffer.";
    case CoderResult::unsupportedFrame:
      return "JPEGs of this kind are not supported.";
    case CoderResult::internalError:
      return "The coder has a fault.";
  }
  return "";
}

bool succeeded(CoderResult result, const char* consequence) {
  if (result != CoderResult::ok) trace(reasonOf(result), " ", consequence);
  return result == CoderResult::ok;
}

}  // namespace

std::int32_t lastJpegWidth() {
  return lastWidth;
}
std::int32_t lastJpegHeight() {
  return lastHeight;
}

bool saveDibToJpegFile(const cDIBSection& dib, const std::filesystem::path& file, std::int32_t quality) {
  const JpegOutcome outcome = writeJpeg(surfaceOf(dib), quality, {});
  return succeeded(outcome.result, "No file is written.") &&
         replaceFile(file, {reinterpret_cast<const char*>(outcome.bytes.data()), outcome.bytes.size()});
}

bool saveDibToJpegBuffer(const cDIBSection& dib, std::uint8_t* buffer, std::int32_t& bufferSize,
                         std::int32_t quality) {
  const std::size_t size = buffer == nullptr || bufferSize < 1 ? 0 : static_cast<std::size_t>(bufferSize);
  JpegOutcome outcome = writeJpeg(surfaceOf(dib), quality, {buffer, size});
  if (outcome.result == CoderResult::ok && outcome.bytes.size() > size) {
    outcome.result = CoderResult::bufferTooSmall;
  }
  if (outcome.result != CoderResult::ok) {
    throw RaisedError(
        (outcome.started ? "Failed to save to JPG " : "Failed to initialise the IJL library: ") +
            codeText(outcome.result),
        hostApplicationName() + ".mIntelJPEGLibrary");
  }
  if (outcome.overflow) std::copy(outcome.bytes.begin(), outcome.bytes.end(), buffer);
  bufferSize = static_cast<std::int32_t>(outcome.bytes.size());
  return true;
}

std::string saveDibToJpegString(const cDIBSection& dib, std::int32_t quality) {
  const std::int64_t pixels = std::int64_t{dib.Width()} * dib.Height();
  // A quarter of the pixels; halves go to the even neighbour.
  std::int64_t n = pixels / 4;
  if (pixels % 4 == 3 || (pixels % 4 == 2 && n % 2 == 1)) ++n;

  std::string bytes(static_cast<std::size_t>(n) + 1, '\0');
  auto size = static_cast<std::int32_t>(n - 1);
  try {
    saveDibToJpegBuffer(dib, reinterpret_cast<std::uint8_t*>(bytes.data()), size, quality);
    bytes.resize(static_cast<std::size_t>(size));
  } catch (const RaisedError& error) {
    trace(error.what(), ". The text returned is not a JPEG.");
  }
  return bytes;
}

bool loadJpegFileToDib(cDIBSection& dib, const std::filesystem::path& file) {
  const std::optional<std::string> bytes = readWholeFile(file);
  if (!bytes) return false;
  JpegReader reader(std::span(reinterpret_cast<const std::uint8_t*>(bytes->data()), bytes->size()));
  CoderResult result = reader.readHeader();
  if (result == CoderResult::ok) result = decode(dib, reader, 1);
  return succeeded(result, "The picture is incomplete or empty.");
}

bool loadJpegBufferToDib(cDIBSection& dib, const std::uint8_t* buffer, std::int32_t bufferSize,
                         std::int32_t scale) {
  if (buffer == nullptr || bufferSize < 1) {
    trace("There are no bytes of a JPEG.");
    return false;
  }
  JpegReader reader(std::span(buffer, static_cast<std::size_t>(bufferSize)));
  CoderResult result = reader.readHeader();
  if (reader.width() > 0) {
    lastWidth = reader.width();
    lastHeight = reader.height();
  }
  if (scale != 2 && scale != 4 && scale != 8) scale = 1;
  if (result == CoderResult::ok) result = decode(dib, reader, scale);
  return succeeded(result, "The picture is not used.");
}

}  // namespace veltrano::mIntelJPEGLibrary
