#include "imaging/jpeg/reader.h"

#include <cstring>

#include "imaging/jpeg/errors.h"

namespace veltrano::mIntelJPEGLibrary {
namespace {

// An image of many scans costs time and memory for its whole size on each of them, while a scan can be a few
// bytes long. Real files have about ten.
constexpr int scanLimit = 500;
constexpr std::uint64_t scannedPixelLimit = std::uint64_t{1} << 34;
constexpr long codecMemoryLimit = 0x7FFFFFFF;
// A Huffman-coded block of 64 samples takes at least one bit, and subsampling spreads it over at most 16
// times as many pixels: more than this many pixels a byte cannot be meant.
constexpr std::uint64_t pixelsPerByte = 1024;
// Arithmetic coding has no such bound.
constexpr std::uint64_t arithmeticPixelLimit = std::uint64_t{1} << 27;

void watchScans(j_common_ptr coder) {
  const auto* decoder = reinterpret_cast<jpeg_decompress_struct*>(coder);
  const std::uint64_t scans = static_cast<std::uint64_t>(decoder->input_scan_number);
  if (decoder->input_scan_number > scanLimit ||
      scans * decoder->image_width * decoder->image_height > scannedPixelLimit) {
    giveUp(coder, CoderResult::badData);
  }
}

// Inks to light. Adobe's files store the complement of the ink, all others the ink.
void inksToBgr(std::uint8_t* target, const std::uint8_t* inks, std::int32_t width, bool inverted) {
  const unsigned flip = inverted ? 0 : 255;
  for (std::int32_t x = 0; x < width; ++x, inks += 4, target += 3) {
    const unsigned light = inks[3] ^ flip;
    for (int channel = 0; channel < 3; ++channel) {
      target[2 - channel] = static_cast<std::uint8_t>(((inks[channel] ^ flip) * light + 127) / 255);
    }
  }
}

}  // namespace

struct JpegReader::State {
  explicit State(std::span<const std::uint8_t> source) : bytes(source) {}

  void readRows(const PixelSurface& target);

  std::span<const std::uint8_t> bytes;
  JpegErrors errors;
  jpeg_decompress_struct decoder{};
  jpeg_progress_mgr progress{};
  bool created = false;
};

JpegReader::JpegReader(std::span<const std::uint8_t> bytes) : state_(std::make_unique<State>(bytes)) {
  State& state = *state_;
  state.decoder.err = &state.errors.manager;
  state.created = guarded(state.errors, [&] { jpeg_create_decompress(&state.decoder); });
  if (!state.created) return;
  state.decoder.mem->max_memory_to_use = codecMemoryLimit;
  state.progress.progress_monitor = watchScans;
  state.decoder.progress = &state.progress;
}

JpegReader::~JpegReader() {
  jpeg_destroy_decompress(&state_->decoder);
}

std::int32_t JpegReader::width() const {
  return static_cast<std::int32_t>(state_->decoder.image_width);
}
std::int32_t JpegReader::height() const {
  return static_cast<std::int32_t>(state_->decoder.image_height);
}

CoderResult JpegReader::readHeader() {
  State& state = *state_;
  jpeg_decompress_struct& decoder = state.decoder;
  if (!state.created) return state.errors.result;
  const bool done = guarded(state.errors, [&] {
    jpeg_mem_src(&decoder, state.bytes.data(), static_cast<unsigned long>(state.bytes.size()));
    jpeg_read_header(&decoder, TRUE);
  });
  if (!done) return state.errors.result;

  const int channels = decoder.num_components;
  if (channels != 1 && channels != 3 && channels != 4) return CoderResult::unsupportedFrame;
  const std::uint64_t pixels = std::uint64_t{decoder.image_width} * decoder.image_height;
  if (pixels > (decoder.arith_code ? arithmeticPixelLimit : state.bytes.size() * pixelsPerByte)) {
    return CoderResult::badData;
  }
  return CoderResult::ok;
}

CoderResult JpegReader::readImage(std::int32_t scale, const PixelSurface& target) {
  State& state = *state_;
  state.decoder.scale_num = 1;
  state.decoder.scale_denom = static_cast<unsigned>(scale);
  state.decoder.out_color_space = state.decoder.num_components == 4 ? JCS_CMYK : JCS_EXT_BGR;
  if (!guarded(state.errors, [&] { state.readRows(target); })) return state.errors.result;
  return state.errors.damaged ? CoderResult::badData : CoderResult::ok;
}

// Runs inside guarded: owns nothing, its row buffer belongs to the decoder.
void JpegReader::State::readRows(const PixelSurface& target) {
  jpeg_start_decompress(&decoder);
  const bool inks = decoder.out_color_space == JCS_CMYK;
  const auto height = static_cast<JDIMENSION>(target.height);
  // The decoder rounds sizes up where the section rounds down: the odd column and row are left out.
  const bool direct = !inks && decoder.output_width == static_cast<JDIMENSION>(target.width);
  JSAMPARRAY line = nullptr;
  if (!direct) {
    line = decoder.mem->alloc_sarray(
        reinterpret_cast<j_common_ptr>(&decoder), JPOOL_IMAGE,
        decoder.output_width * static_cast<JDIMENSION>(decoder.output_components), 1);
  }
  while (decoder.output_scanline < height) {
    if (direct) {
      // A group of sampled rows at a time lets the decoder write them in place.
      JSAMPROW rows[4];
      const JDIMENSION count = std::min<JDIMENSION>(4, height - decoder.output_scanline);
      for (JDIMENSION i = 0; i < count; ++i) rows[i] = target.row(std::int64_t{decoder.output_scanline} + i);
      jpeg_read_scanlines(&decoder, rows, count);
      continue;
    }
    std::uint8_t* row = target.row(decoder.output_scanline);
    jpeg_read_scanlines(&decoder, line, 1);
    if (inks) {
      inksToBgr(row, line[0], target.width, decoder.saw_Adobe_marker);
    } else {
      std::memcpy(row, line[0], static_cast<std::size_t>(target.width) * 3);
    }
  }
}

}  // namespace veltrano::mIntelJPEGLibrary
