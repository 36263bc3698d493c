#include <cmath>
#include <cstdio>
#include <set>

#include <jpeglib.h>

#include "base/files/whole.h"
#include "images.h"
#include "imaging/jpeg/intel_jpeg_library.h"
#include "veltrano/jpg.h"

namespace veltrano::tests {
namespace {

using namespace mIntelJPEGLibrary;

/// libjpeg's own reading; ends the test if it refuses.
Image readJpeg(const std::string& bytes) {
  jpeg_error_mgr errors;
  jpeg_decompress_struct decoder{};
  decoder.err = jpeg_std_error(&errors);
  errors.error_exit = [](j_common_ptr) { throw std::runtime_error("libjpeg refuses"); };
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(bytes.data()),
               static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&decoder, TRUE);
  EXPECT_TRUE(decoder.saw_JFIF_marker);
  EXPECT_TRUE(decoder.comp_info[0].h_samp_factor == 2 && decoder.comp_info[0].v_samp_factor == 2) << "4:2:0";
  decoder.out_color_space = JCS_RGB;
  jpeg_start_decompress(&decoder);
  std::vector<std::uint8_t> line(std::size_t{3} * decoder.output_width);
  JSAMPROW row = line.data();
  const Image image =
      paint(static_cast<int>(decoder.output_width), static_cast<int>(decoder.output_height), [&](int x, int) {
        if (x == 0) jpeg_read_scanlines(&decoder, &row, 1);
        return Rgb{row[3 * x], row[3 * x + 1], row[3 * x + 2]};
      });
  jpeg_destroy_decompress(&decoder);
  return image;
}

/// libjpeg's own encoding of 16 by 16 pixels of one colour in four channels.
std::string flatInksJpeg(const std::uint8_t (&inks)[4], bool adobe, bool ycck) {
  jpeg_error_mgr errors;
  jpeg_compress_struct coder{};
  coder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&coder);
  std::string bytes(5000, '\0');
  auto* memory = reinterpret_cast<unsigned char*>(bytes.data());
  auto size = static_cast<unsigned long>(bytes.size());
  jpeg_mem_dest(&coder, &memory, &size);
  coder.image_width = coder.image_height = 16;
  coder.input_components = 4;
  coder.in_color_space = JCS_CMYK;
  jpeg_set_defaults(&coder);
  jpeg_set_colorspace(&coder, ycck ? JCS_YCCK : JCS_CMYK);
  coder.write_Adobe_marker = adobe;
  jpeg_start_compress(&coder, TRUE);
  std::uint8_t line[64];
  for (std::size_t i = 0; i < sizeof line; ++i) line[i] = inks[i % 4];
  JSAMPROW row = line;
  while (coder.next_scanline < 16) jpeg_write_scanlines(&coder, &row, 1);
  jpeg_finish_compress(&coder);
  jpeg_destroy_compress(&coder);
  return bytes.substr(0, size);
}

std::string encode(const cDIBSection& dib, int quality) {
  std::string buffer(static_cast<std::size_t>(dib.Width() * dib.Height() * 4 + 2000), '\0');
  auto size = static_cast<std::int32_t>(buffer.size());
  EXPECT_TRUE(saveDibToJpegBuffer(dib, reinterpret_cast<std::uint8_t*>(buffer.data()), size, quality));
  buffer.resize(static_cast<std::size_t>(size));
  return buffer;
}

bool decode(cDIBSection& dib, const std::string& bytes) {
  // A copy of the exact size: reading beyond it is seen by the sanitizer.
  const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
  return loadJpegBufferToDib(dib, exact.data(), static_cast<std::int32_t>(exact.size()));
}

TEST(JpegModule, KeepsThePicture) {
  const TemporaryFolder folder;
  const Image image = scenery(199, 121);
  const cDIBSection dib = section(image);
  double last = 1000;
  for (const auto& [quality, mostError] : {std::pair{20, 100.0}, {50, 40.0}, {90, 20.0}}) {
    const std::string bytes = encode(dib, quality);
    const Image seen = readJpeg(bytes);
    double error = 0;  // mean square
    for (std::size_t i = 0; i < 3 * image.pixels.size(); ++i)
      error += std::pow(image.pixels[i / 3][i % 3] - seen.pixels.at(i / 3)[i % 3], 2);
    error /= static_cast<double>(3 * image.pixels.size());
    EXPECT_LT(error, std::min(mostError, last)) << quality;
    last = error;
    cDIBSection back, ofFile;
    EXPECT_TRUE(decode(back, bytes));
    EXPECT_TRUE(contents(back) == seen) << "as libjpeg reads it";
    EXPECT_TRUE(saveDibToJpegFile(dib, folder / "a.jpg", quality));
    EXPECT_EQ(readWholeFile(folder / "a.jpg"), bytes);
    EXPECT_TRUE(loadJpegFileToDib(ofFile, folder / "a.jpg"));
    EXPECT_TRUE(contents(ofFile) == seen);
  }
  EXPECT_EQ(encode(dib, 0), encode(dib, 1));
  EXPECT_EQ(encode(dib, 5000), encode(dib, 100));
}

TEST(JpegModule, ReadsFourChannels) {
  const struct {
    const char* label;
    std::uint8_t samples[4];
    bool adobe, ycck;
    Rgb seen;
  } cases[] = {{"plain: ink as stored", {255, 0, 0, 0}, false, false, {0, 255, 255}},
               {"plain, half black: 255 * 127 / 255", {0, 0, 0, 128}, false, false, {127, 127, 127}},
               {"Adobe: complement of the ink", {255, 0, 0, 255}, true, false, {255, 0, 0}},
               {"Adobe, dimmed: 200 * 128 / 255", {200, 200, 0, 128}, true, false, {100, 100, 0}},
               {"Adobe YCCK", {0, 0, 255, 255}, true, true, {0, 0, 255}}};
  for (const auto& c : cases) {
    cDIBSection dib;
    ASSERT_TRUE(decode(dib, flatInksJpeg(c.samples, c.adobe, c.ycck))) << c.label;
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(contents(dib).at(7, 9)[i], c.seen[i], 2) << c.label;
  }
}

TEST(JpegModule, HasABudgetOfAQuarterByteAPixel) {
  // n - 1 bytes, where n = pixels / 4 with halves to even: too few for even the tables give n + 1 characters.
  for (const auto& [pixels, characters] :
       {std::pair{1, 1U}, {2, 1U}, {3, 2U}, {6, 3U}, {7, 3U}, {9, 3U}, {10, 3U}, {14, 5U}})
    EXPECT_EQ(saveDibToJpegString(section(noise(pixels, 1)), 50).size(), characters) << pixels;
  EXPECT_EQ(saveDibToJpegString(cDIBSection(), 50), std::string(1, '\0'));

  // More and more noise around the budget of 2499 bytes: what fits is whole, what needs more fails.
  const Image ground = noise(100, 100);
  std::set<std::size_t> sizes;
  for (int noisy = 3560; noisy < 3760; ++noisy) {
    const cDIBSection dib = section(paint(100, 100, [&](int x, int y) {
      return y * 100 + x < noisy ? ground.at(x, y) : Rgb{80, y == 99 ? (x * noisy) % 90 : 80, 80};
    }));
    const std::string whole = encode(dib, 50), budgeted = saveDibToJpegString(dib, 50);
    sizes.insert(whole.size());
    ASSERT_TRUE(whole.size() <= 2499 ? budgeted == whole : budgeted.size() == 2501) << whole.size();
  }
  EXPECT_TRUE(sizes.contains(2499) && sizes.contains(2500)) << "both sides of the budget have been tried";
}

TEST(JpegModule, RefusesDamage) {
  const std::string good = encode(section(scenery(64, 48)), 80);
  const std::size_t frame = good.find("\xFF\xC0");
  const auto patched = [&](std::size_t at, const std::string& with) {
    return std::string(good).replace(at, with.size(), with);
  };
  const std::tuple<const char*, std::string, bool, bool> cases[] = {
      {"without end marker", good.substr(0, good.size() - 2), true, true},
      {"half of the image data", good.substr(0, good.size() - (good.size() - frame) / 4), false, true},
      {"no image data", good.substr(0, good.find("\xFF\xDA")), false, false},
      {"not a JPEG", "GIF89a, say", false, false},
      {"more pixels than its bytes can tell", patched(frame + 5, "\xFF\xDC\xFF\xDC"), false, false},
      {"no rows", patched(frame + 5, std::string(2, '\0')), false, false},
      {"two channels", patched(frame + 9, "\x02"), false, false},
      {"no Huffman tables, so the standard ones", patched(good.find("\xFF\xC4"), "\xFF\xFE"), true, true}};
  for (const auto& [label, bytes, loads, hasPixels] : cases) {
    cDIBSection dib;
    EXPECT_EQ(decode(dib, bytes), loads) << label;
    EXPECT_EQ(dib.hDC() != 0, hasPixels) << label;
  }
}

std::string sizeOf(const std::string& jpeg) {
  const Image image = readJpeg(jpeg);
  return std::to_string(image.width) + "x" + std::to_string(image.height);
}

class VeltranoJpg : public testing::Test {
 protected:
  const Picture picture_ = picture(scenery(80, 60));
  const std::string jpeg_ = saveDibToJpegString(section(picture_), 60);
  const std::uintptr_t address_ = reinterpret_cast<std::uintptr_t>(jpeg_.data());
  const std::int32_t size_ = static_cast<std::int32_t>(jpeg_.size());
  TemporaryFolder folder_;
  VeltranoJPG jpg_;
};

TEST_F(VeltranoJpg, ResizesWhenBothSizesAreGiven) {
  ASSERT_TRUE(replaceFile(folder_ / "in.jpg", jpeg_));
  constexpr std::tuple<int, int, const char*> rows[] = {
      {0, 0, "80x60"}, {320, 0, "80x60"}, {0, 240, "80x60"}, {32, 48, "32x48"}, {160, 10, "160x10"}};
  for (const auto& [width, height, size] : rows) {
    const TemporaryFolder made;
    jpg_.SaveJPEG(picture_, made / "saved.jpg", 50, width, height);
    jpg_.SaveJPEGResampled(folder_ / "in.jpg", made / "resampled.jpg", 50, width, height);
    for (const char* name : {"saved.jpg", "resampled.jpg"})
      EXPECT_EQ(sizeOf(readWholeFile(made / name).value_or("")), size) << name << width << 'x' << height;
  }
  EXPECT_EQ(sizeOf(jpg_.SaveJPEGToMemory(picture_, 60, 40, 30)), "80x60") << "never resized";
  EXPECT_EQ(sizeOf(jpg_.SaveJPEGToMemoryResampled(folder_ / "in.jpg", 30, 120, 90)), "120x90");
  EXPECT_EQ(jpg_.JPEGWidth, 0) << "not from files";
  EXPECT_EQ(sizeOf(jpg_.SaveJPEGFromRAMToMemoryResampled(jpeg_, 30, 120, 90)), "120x90");
  EXPECT_EQ(std::pair(jpg_.JPEGWidth, jpg_.JPEGHeight), std::pair(80, 60)) << "not the size asked for";
}

TEST_F(VeltranoJpg, SavesNothingFromNothing) {
  ASSERT_TRUE(replaceFile(folder_ / "kept.jpg", "kept"));
  jpg_.SaveJPEG(Picture(), folder_ / "kept.jpg");
  jpg_.SaveJPEG(Picture(), folder_ / "kept.jpg", 50, 10, 10);
  jpg_.SaveJPEG(picture_, folder_ / "kept.jpg", 50, -10, 10);
  jpg_.SaveJPEG(picture_, folder_ / "missing" / "a.jpg");
  jpg_.SaveJPEGResampled(folder_ / "missing.jpg", folder_ / "kept.jpg", 50, 20, 20);
  jpg_.SaveJPEGResampled(folder_ / "kept.jpg", folder_ / "new.jpg");  // not a JPEG
  EXPECT_EQ(readWholeFile(folder_ / "kept.jpg"), "kept");
  EXPECT_EQ(filesIn(folder_), 1);
  EXPECT_EQ(jpg_.SaveJPEGToMemory(Picture()).size(), 1U);
  EXPECT_EQ(jpg_.SaveJPEGFromRAMToMemoryResampled(jpeg_.substr(0, jpeg_.size() - 100)).size(), 1U)
      << "a part of a picture";
  EXPECT_EQ(jpg_.SaveJPEGToMemoryResampled(folder_ / "missing.jpg").size(), 1U);
  EXPECT_EQ(jpg_.LoadJPEGFromRAMToPicture(address_, size_, 1, 1).bits(), nullptr);
}

// Where on a canvas of 200 by 150 the picture of 80 by 60 shows.
TEST_F(VeltranoJpg, DrawsOntoADeviceContext) {
  const Image ground = paint(200, 150, [](int, int) { return Rgb{1, 2, 3}; });
  // How it is placed, and the half-open box that is drawn.
  constexpr std::tuple<const char*, bool, int, int, int, int, int, int, int, int> cases[] = {
      {"own size", false, 0, 0, 0, 0, 0, 0, 80, 60},
      {"stretched", false, 0, 0, 160, 120, 0, 0, 160, 120},
      {"one size missing: no area", false, 0, 0, 40, 0, 0, 0, 0, 0},
      {"placed, own size", true, 50, 20, 0, 0, 50, 20, 130, 80},
      {"placed, stretched", true, 30, 40, 100, 90, 30, 40, 130, 130},
      {"placed, clipped", true, -40, 120, 0, 0, 0, 120, 40, 150}};
  for (const auto& [label, xy, x1, y1, width, height, left, top, right, bottom] : cases) {
    cDIBSection canvas = section(ground);
    VeltranoJPG jpg;
    EXPECT_FALSE(xy ? jpg.LoadJPEGFromRAM2PictureXY(canvas.hDC(), address_, size_, x1, y1, width, height)
                    : jpg.LoadJPEGFromRAM2Picture(canvas.hDC(), address_, size_, width, height));
    EXPECT_EQ(std::pair(jpg.JPEGWidth, jpg.JPEGHeight), xy ? std::pair(0, 0) : std::pair(80, 60)) << label;
    const Image drawn = contents(canvas);
    for (int i = 0; i < 200 * 150; ++i) {
      const int x = i % 200, y = i / 200;
      const bool inside = x >= left && x < right && y >= top && y < bottom;
      ASSERT_EQ(drawn.at(x, y) != ground.at(x, y), inside) << label << ' ' << x << ',' << y;
    }
    EXPECT_TRUE(left == right || drawn.at(left, top)[1] < 60) << label << ": its top is dark green";
  }
}

TEST_F(VeltranoJpg, DrawsNothingFromWhatIsNotAJpeg) {
  cDIBSection canvas = section(noise(10, 10));
  jpg_.JPEGWidth = 7;
  for (const auto& [address, size] :
       {std::pair{std::uintptr_t{0}, 100}, {address_, 0}, {address_, -1}, {address_ + 1, size_ - 1}})
    EXPECT_FALSE(jpg_.LoadJPEGFromRAM2Picture(canvas.hDC(), address, size, 0, 0));
  EXPECT_TRUE(contents(canvas) == noise(10, 10));
  EXPECT_EQ(jpg_.JPEGWidth, 7) << "left as the host set it";
  jpg_.LoadJPEGFromRAM2Picture(0, address_, size_, 5, 5);  // decoded, drawn nowhere
  EXPECT_EQ(jpg_.JPEGWidth, 80);
}

}  // namespace
}  // namespace veltrano::tests
