#include "imaging/jpeg/writer.h"

#include <algorithm>
#include <array>

#include "imaging/jpeg/errors.h"

namespace veltrano::mIntelJPEGLibrary {
namespace {

void encode(jpeg_compress_struct& coder, const PixelSurface& image, std::int32_t quality) {
  coder.image_width = static_cast<JDIMENSION>(image.width);
  coder.image_height = static_cast<JDIMENSION>(image.height);
  coder.input_components = 3;
  // The pixels as they are: reversing them first would take a quarter of the time.
  coder.in_color_space = JCS_EXT_BGR;
  jpeg_set_defaults(&coder);  // JFIF, YCbCr, 4:2:0
  jpeg_set_quality(&coder, std::clamp<std::int32_t>(quality, 1, 100), TRUE);
  jpeg_start_compress(&coder, TRUE);
  std::array<JSAMPROW, 64> rows;
  while (coder.next_scanline < coder.image_height) {
    const JDIMENSION count =
        std::min<JDIMENSION>(static_cast<JDIMENSION>(rows.size()), coder.image_height - coder.next_scanline);
    for (JDIMENSION i = 0; i < count; ++i) rows[i] = image.row(std::int64_t{coder.next_scanline} + i);
    jpeg_write_scanlines(&coder, rows.data(), count);
  }
  jpeg_finish_compress(&coder);
}

}  // namespace

JpegOutcome writeJpeg(const PixelSurface& image, std::int32_t quality, std::span<std::uint8_t> buffer) {
  JpegOutcome outcome;
  JpegErrors errors;
  jpeg_compress_struct coder{};
  coder.err = &errors.manager;
  std::uint8_t* bytes = buffer.data();
  auto length = static_cast<unsigned long>(buffer.size());
  outcome.started = guarded(errors, [&] { jpeg_create_compress(&coder); });
  const bool fits =
      image.bits != nullptr && image.width <= JPEG_MAX_DIMENSION && image.height <= JPEG_MAX_DIMENSION;
  if (outcome.started && !fits) {
    errors.result = CoderResult::invalidProperties;
  } else if (outcome.started && guarded(errors, [&] { jpeg_mem_dest(&coder, &bytes, &length); }) &&
             !guarded(errors, [&] { encode(coder, image, quality); })) {
    coder.dest->term_destination(&coder);  // hands over the memory of libjpeg, which would be lost
  }
  jpeg_destroy_compress(&coder);
  // libjpeg goes on in memory of its own when the buffer is full, even with nothing left to write.
  if (bytes != buffer.data()) outcome.overflow.reset(bytes);
  outcome.result = errors.result;
  outcome.bytes = {bytes, length};
  return outcome;
}

}  // namespace veltrano::mIntelJPEGLibrary
