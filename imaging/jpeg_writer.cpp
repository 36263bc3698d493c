#include "imaging/jpeg_writer.h"

#include <algorithm>
#include <array>

#include "imaging/jpeg_errors.h"

namespace veltrano::mIntelJPEGLibrary {
namespace {

// Where libjpeg puts its bytes. It asks for more room as soon as a buffer is full, even with nothing left to
// write; so a full fixed buffer is followed by a buffer of one byte, and only using that one is a failure.
struct Destination {
  jpeg_destination_mgr manager{};  // first member: libjpeg hands its address back
  std::span<std::uint8_t> buffer;
  ByteChunks* chunks = nullptr;
  bool spilling = false;
  std::uint8_t spill = 0;
  std::size_t length = 0;

  void use(std::span<std::uint8_t> room) {
    manager.next_output_byte = room.data();
    manager.free_in_buffer = room.size();
  }
  void useSpill() {
    spilling = true;
    use({&spill, 1});
  }
};

Destination& destinationOf(j_compress_ptr coder) {
  return *reinterpret_cast<Destination*>(coder->dest);
}

void growChunks(j_compress_ptr coder) {
  const std::span<std::uint8_t> room = destinationOf(coder).chunks->grow();
  if (room.empty()) giveUp(reinterpret_cast<j_common_ptr>(coder), CoderResult::memoryError);
  destinationOf(coder).use(room);
}

void startDestination(j_compress_ptr coder) {
  Destination& destination = destinationOf(coder);
  if (destination.chunks != nullptr) {
    growChunks(coder);
  } else if (destination.buffer.empty()) {
    destination.useSpill();
  } else {
    destination.use(destination.buffer);
  }
}

boolean emptyDestination(j_compress_ptr coder) {
  Destination& destination = destinationOf(coder);
  if (destination.chunks != nullptr) {
    growChunks(coder);
  } else if (destination.spilling) {
    giveUp(reinterpret_cast<j_common_ptr>(coder), CoderResult::bufferTooSmall);
  } else {
    destination.useSpill();
  }
  return TRUE;
}

void finishDestination(j_compress_ptr coder) {
  Destination& destination = destinationOf(coder);
  if (destination.chunks != nullptr) {
    destination.chunks->finish(destination.manager.free_in_buffer);
  } else {
    destination.length =
        destination.buffer.size() - (destination.spilling ? 0 : destination.manager.free_in_buffer);
  }
}

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

JpegOutcome write(const PixelSurface& image, std::int32_t quality, Destination& destination) {
  JpegOutcome outcome;
  JpegErrors errors;
  jpeg_compress_struct coder{};
  coder.err = &errors.manager;
  outcome.started = guarded(errors, [&] { jpeg_create_compress(&coder); });
  if (outcome.started) {
    destination.manager.init_destination = startDestination;
    destination.manager.empty_output_buffer = emptyDestination;
    destination.manager.term_destination = finishDestination;
    coder.dest = &destination.manager;
    if (image.bits == nullptr || image.width > JPEG_MAX_DIMENSION || image.height > JPEG_MAX_DIMENSION) {
      errors.result = CoderResult::invalidProperties;
    } else {
      guarded(errors, [&] { encode(coder, image, quality); });
    }
  }
  jpeg_destroy_compress(&coder);
  outcome.result = errors.result;
  outcome.length = destination.length;
  return outcome;
}

}  // namespace

JpegOutcome writeJpeg(const PixelSurface& image, std::int32_t quality, std::span<std::uint8_t> buffer) {
  Destination destination;
  destination.buffer = buffer;
  return write(image, quality, destination);
}

JpegOutcome writeJpeg(const PixelSurface& image, std::int32_t quality, ByteChunks& chunks) {
  Destination destination;
  destination.chunks = &chunks;
  return write(image, quality, destination);
}

}  // namespace veltrano::mIntelJPEGLibrary
