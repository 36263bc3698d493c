#include "veltrano/png.h"

#include <png.h>

#include <csetjmp>
#include <new>
#include <utility>
#include <vector>

#include "base/files/whole.h"
#include "base/trace.h"
#include "veltrano/dib_section.h"

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
    trace("The picture cannot be encoded: ", message, ".");
    png_longjmp(png, 1);
  }
  static void ignore(png_structp, png_const_charp) {}

  png_structp write_ = nullptr;
  png_infop info_ = nullptr;
};

bool appendTo(std::string& file, const png_byte* bytes, std::size_t count) noexcept {
  try {
    file.append(reinterpret_cast<const char*>(bytes), count);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void append(png_structp png, png_bytep bytes, std::size_t count) {
  if (!appendTo(*static_cast<std::string*>(png_get_io_ptr(png)), bytes, count)) {
    png_error(png, "out of memory");
  }
}

void flush(png_structp) {}

/// Writes `rows` to `file`. False if libpng gave up.
bool encode(png_structp png, png_infop info, const cDIBSection& dib, png_bytepp rows, std::string* file) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, file, append, flush);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_IHDR(png, info, static_cast<png_uint_32>(dib.Width()), static_cast<png_uint_32>(dib.Height()), 8,
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

bool saveAsPng(const cDIBSection& dib, const std::filesystem::path& file) {
  // The section's first row is the bottom of the picture.
  std::vector<png_bytep> rows(static_cast<std::size_t>(dib.Height()));
  png_bytep row = dib.DIBSectionBitsPtr();
  for (auto place = rows.rbegin(); place != rows.rend(); ++place, row += dib.BytesPerScanLine()) *place = row;
  const PngStructures structures;
  std::string bytes;
  return structures.ready() && encode(structures.write(), structures.info(), dib, rows.data(), &bytes) &&
         replaceFile(file, bytes);
}

}  // namespace

struct VeltranoPNG::Impl {
  std::string initString;
};

VeltranoPNG::VeltranoPNG() : impl_(std::make_unique<Impl>()) {}
VeltranoPNG::VeltranoPNG(VeltranoPNG&&) noexcept = default;
VeltranoPNG& VeltranoPNG::operator=(VeltranoPNG&&) noexcept = default;
VeltranoPNG::~VeltranoPNG() = default;

void VeltranoPNG::Init(std::string xInitString) {
  impl_->initString = std::move(xInitString);
}

const std::string& VeltranoPNG::initString() const {
  return impl_->initString;
}

bool VeltranoPNG::SavePNG(const Picture& pct, const std::filesystem::path& sPNGFileName) {
  const TracedMember member("VeltranoPNG", "SavePNG");
  cDIBSectionPNG dib;
  if (!dib.CreateFromPicture(pct)) {
    trace("The picture is not a bitmap, cannot be copied, or is too large; no file is written.");
    return false;
  }
  return saveAsPng(dib, sPNGFileName);
}

}  // namespace veltrano
