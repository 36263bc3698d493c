#include "images.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "base/files/whole.h"

namespace veltrano::tests {

Image paint(int width, int height, const Painter& painter) {
  Image image{width, height, {}};
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) image.pixels.push_back(painter(x, y));
  return image;
}

Image scenery(int width, int height) {
  return paint(width, height, [=](int x, int y) {
    const int disc =
        (x - width / 2) * (x - width / 2) + (y - height / 3) * (y - height / 3) < width * height / 20;
    return Rgb{disc ? 250 : 200 * x / width, 40 + 180 * y / height, 220 - 200 * (x + y) / (width + height)};
  });
}

Image noise(int width, int height) {
  std::uint32_t state = 12345;
  return paint(width, height, [&state](int, int) {
    state = state * 1664525 + 1013904223;
    return Rgb{static_cast<int>(state >> 24), static_cast<int>(state >> 16 & 255),
               static_cast<int>(state >> 8 & 255)};
  });
}

Picture picture(const Image& image) {
  std::vector<std::uint8_t> rows;
  for (const Rgb& pixel : image.pixels) {
    for (const int channel : {pixel.blue, pixel.green, pixel.red})
      rows.push_back(static_cast<std::uint8_t>(channel));
  }
  return Picture::fromBgr(image.width, image.height, rows.data(), std::ptrdiff_t{3} * image.width);
}

cDIBSection section(const Image& image) {
  cDIBSection dib;
  EXPECT_TRUE(dib.CreateFromPicture(picture(image)));
  return dib;
}

Image contents(const cDIBSection& dib) {
  return paint(dib.Width(), dib.Height(), [&dib](int x, int y) {
    const std::uint8_t* pixel = dib.DIBSectionBitsPtr() +
                                std::ptrdiff_t{dib.BytesPerScanLine()} * (dib.Height() - 1 - y) +
                                std::ptrdiff_t{3} * x;
    return Rgb{pixel[2], pixel[1], pixel[0]};
  });
}

double psnr(const Image& a, const Image& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    const Rgb &p = a.pixels[i], &q = b.pixels.at(i);
    for (const int d : {p.red - q.red, p.green - q.green, p.blue - q.blue}) sum += d * d;
  }
  return sum == 0 ? 99 : 10 * std::log10(255.0 * 255.0 * 3.0 * static_cast<double>(a.pixels.size()) / sum);
}

static Image ofRgb(int width, int height, const std::vector<std::uint8_t>& rgb) {
  return paint(width, height, [&](int x, int y) {
    const std::uint8_t* pixel = &rgb[static_cast<std::size_t>(y * width + x) * 3];
    return Rgb{pixel[0], pixel[1], pixel[2]};
  });
}

Image readPng(const std::filesystem::path& file) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  const std::string data = readWholeFile(file).value_or(std::string());
  if (png_image_begin_read_from_memory(&png, data.data(), data.size()) == 0) return {};
  png.format = PNG_FORMAT_RGB;
  std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(png));
  if (png_image_finish_read(&png, nullptr, bytes.data(), 0, nullptr) == 0) return {};
  return ofRgb(static_cast<int>(png.width), static_cast<int>(png.height), bytes);
}

Image readJpeg(const std::string& bytes) {
  jpeg_error_mgr errors;
  jpeg_decompress_struct decoder{};
  decoder.err = jpeg_std_error(&errors);
  errors.error_exit = [](j_common_ptr) { throw std::runtime_error("libjpeg refuses"); };  // ends the test
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(bytes.data()),
               static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&decoder, TRUE);
  EXPECT_EQ(decoder.comp_info[0].h_samp_factor, 2) << "4:2:0";
  EXPECT_EQ(decoder.comp_info[0].v_samp_factor, 2) << "4:2:0";
  EXPECT_TRUE(decoder.saw_JFIF_marker);
  decoder.out_color_space = JCS_RGB;
  jpeg_start_decompress(&decoder);
  std::vector<std::uint8_t> rgb(std::size_t{3} * decoder.output_width * decoder.output_height);
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW row = &rgb[std::size_t{3} * decoder.output_width * decoder.output_scanline];
    jpeg_read_scanlines(&decoder, &row, 1);
  }
  const Image image =
      ofRgb(static_cast<int>(decoder.output_width), static_cast<int>(decoder.output_height), rgb);
  jpeg_destroy_decompress(&decoder);
  return image;
}

std::string flatInksJpeg(const std::uint8_t (&inks)[4], bool adobe, bool ycck) {
  jpeg_error_mgr errors;
  jpeg_compress_struct coder{};
  coder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&coder);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&coder, &bytes, &size);
  coder.image_width = coder.image_height = 16;
  coder.input_components = 4;
  coder.in_color_space = JCS_CMYK;
  jpeg_set_defaults(&coder);
  jpeg_set_colorspace(&coder, ycck ? JCS_YCCK : JCS_CMYK);
  jpeg_set_quality(&coder, 100, TRUE);
  coder.write_Adobe_marker = adobe;
  jpeg_start_compress(&coder, TRUE);
  std::uint8_t line[64];
  for (std::size_t i = 0; i < sizeof line; ++i) line[i] = inks[i % 4];
  JSAMPROW row = line;
  while (coder.next_scanline < 16) jpeg_write_scanlines(&coder, &row, 1);
  jpeg_finish_compress(&coder);
  jpeg_destroy_compress(&coder);
  std::string result(reinterpret_cast<char*>(bytes), size);
  std::free(bytes);
  return result;
}

}  // namespace veltrano::tests
