#include "imaging/png_writer.h"

#include <png.h>

#include <csetjmp>
#include <vector>

#include "base/trace.h"

namespace veltrano {
namespace {

// libpng fails by a longjmp, which skips destructors: the structures are owned here, outside of the function
// that it leaves, and that function owns nothing.
class PngStructures {
 public:
  PngStructures() : write_(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, ignore)) {
    if (write_ != nullptr) info_ = png_create_info_struct(write_);
  }
  PngStructures(const PngStructures&) = delete;
  PngStructures& operator=(const PngStructures&) = delete;
  ~PngStructures() { png_destroy_write_struct(&write_, &info_); }

  [[nodiscard]] bool ready() const { return info_ != nullptr; }
  [[nodiscard]] png_structp write() const { return write_; }
  [[nodiscard]] png_infop info() const { return info_; }

 private:
  // libpng's own handler does the same but talks to the host's standard error.
  [[noreturn]] static void fail(png_structp png, png_const_charp message) {
    traceSkipped("SavePNG", "libpng gave up", message);
    png_longjmp(png, 1);
  }
  static void ignore(png_structp, png_const_charp) {}

  png_structp write_ = nullptr;
  png_infop info_ = nullptr;
};

void append(png_structp png, png_bytep bytes, std::size_t count) {
  if (!static_cast<ByteChunks*>(png_get_io_ptr(png))->append(bytes, count)) png_error(png, "out of memory");
}

void flush(png_structp) {}

bool encode(png_structp png, png_infop info, const PixelSurface& image, png_bytepp rows, ByteChunks* chunks) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, chunks, append, flush);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_IHDR(png, info, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height), 8,
               PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_color_8 significantBits{};
  significantBits.red = 8;
  significantBits.green = 8;
  significantBits.blue = 8;
  png_set_sBIT(png, info, &significantBits);
  png_write_info(png, info);
  png_set_bgr(png);
  png_write_image(png, rows);
  png_write_end(png, info);
  return true;
}

}  // namespace

bool writePng(const PixelSurface& image, ByteChunks& chunks) {
  if (image.bits == nullptr) return false;
  // The section's first row is the bottom of the picture.
  std::vector<png_bytep> rows(static_cast<std::size_t>(image.height));
  for (std::int32_t y = 0; y < image.height; ++y) rows[static_cast<std::size_t>(y)] = image.row(y);
  const PngStructures structures;
  return structures.ready() && encode(structures.write(), structures.info(), image, rows.data(), &chunks);
}

}  // namespace veltrano
