// The picture classes compared with the libraries they use, on a photo-like image of 4000 by 3000 pixels:
// gradients, shapes and a little noise.

#include <benchmark/benchmark.h>
#include <pixman.h>
#include <png.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include <jpeglib.h>

#include "base/files/whole.h"
#include "imaging/jpeg/intel_jpeg_library.h"
#include "veltrano/dib_section.h"
#include "veltrano/png.h"

namespace {

using veltrano::cDIBSection;
namespace jpeg = veltrano::mIntelJPEGLibrary;

constexpr int width = 4000, height = 3000;

void paintPhoto(cDIBSection& dib) {
  std::uint32_t state = 7;
  for (int y = 0; y < dib.Height(); ++y) {
    std::uint8_t* pixel = dib.DIBSectionBitsPtr() + std::int64_t{y} * dib.BytesPerScanLine();
    for (int x = 0; x < dib.Width(); ++x) {
      state = state * 1664525 + 1013904223;
      const int grain = static_cast<int>(state >> 29);
      const int hill = std::sin(x / 300.0) * 200 + 900 > y ? 70 : 0;
      for (int channel = 0; channel < 3; ++channel) {
        *pixel++ = static_cast<std::uint8_t>((x * (channel + 1) / 60 + y / 20) % 160 + hill + grain);
      }
    }
  }
}

const cDIBSection& photo() {
  static const cDIBSection dib = [] {
    cDIBSection made;
    made.Create(width, height);
    paintPhoto(made);
    return made;
  }();
  return dib;
}

std::vector<std::uint8_t>& room() {
  static std::vector<std::uint8_t> bytes(16'000'000);
  return bytes;
}

void JpegEncodeOurs(benchmark::State& state) {
  for (auto _ : state) {
    auto size = static_cast<std::int32_t>(room().size());
    benchmark::DoNotOptimize(
        jpeg::saveDibToJpegBuffer(photo(), room().data(), size, static_cast<int>(state.range(0))));
  }
}

std::size_t encodeWithPeer(int quality) {
  jpeg_compress_struct coder;
  jpeg_error_mgr errors;
  coder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&coder);
  unsigned char* bytes = room().data();
  unsigned long size = room().size();
  jpeg_mem_dest(&coder, &bytes, &size);
  coder.image_width = width;
  coder.image_height = height;
  coder.input_components = 3;
  coder.in_color_space = JCS_EXT_BGR;
  jpeg_set_defaults(&coder);
  jpeg_set_quality(&coder, quality, TRUE);
  jpeg_start_compress(&coder, TRUE);
  while (coder.next_scanline < height) {
    JSAMPROW row = photo().DIBSectionBitsPtr() +
                   static_cast<std::int64_t>(height - 1 - coder.next_scanline) * photo().BytesPerScanLine();
    jpeg_write_scanlines(&coder, &row, 1);
  }
  jpeg_finish_compress(&coder);
  jpeg_destroy_compress(&coder);
  return size;
}

void JpegEncodePeer(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(encodeWithPeer(static_cast<int>(state.range(0))));
}

// Both allocate the memory they decode into each time.
void JpegDecodeOurs(benchmark::State& state) {
  const auto size = static_cast<std::int32_t>(encodeWithPeer(80));
  for (auto _ : state) {
    cDIBSection dib;
    benchmark::DoNotOptimize(jpeg::loadJpegBufferToDib(dib, room().data(), size));
  }
}

void JpegDecodePeer(benchmark::State& state) {
  const std::size_t size = encodeWithPeer(80);
  for (auto _ : state) {
    jpeg_decompress_struct decoder;
    jpeg_error_mgr errors;
    decoder.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, room().data(), size);
    jpeg_read_header(&decoder, TRUE);
    decoder.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&decoder);
    auto* pixels = static_cast<std::uint8_t*>(std::malloc(std::size_t{width} * 3 * height));
    while (decoder.output_scanline < height) {
      JSAMPROW row = pixels + (height - 1 - decoder.output_scanline) * std::size_t{width} * 3;
      jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_destroy_decompress(&decoder);
    benchmark::DoNotOptimize(pixels);
    std::free(pixels);
  }
}

std::filesystem::path pngFile() {
  return std::filesystem::temp_directory_path() / "veltrano-bench.png";
}

void PngOurs(benchmark::State& state) {
  const std::uint8_t* top =
      photo().DIBSectionBitsPtr() + std::int64_t{height - 1} * photo().BytesPerScanLine();
  const auto picture = veltrano::Picture::fromBgr(width, height, top, -photo().BytesPerScanLine());
  for (auto _ : state) benchmark::DoNotOptimize(veltrano::VeltranoPNG().SavePNG(picture, pngFile()));
}

void PngPeer(benchmark::State& state) {
  for (auto _ : state) {
    FILE* file = std::fopen(pngFile().string().c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    std::vector<png_bytep> rows;
    for (int y = height - 1; y >= 0; --y) {
      rows.push_back(photo().DIBSectionBitsPtr() + std::int64_t{y} * photo().BytesPerScanLine());
    }
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
  }
}

void ResampleOurs(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(photo().Resample2(height / 2, width / 2));
}

// The least possible work: a table of source columns and three bytes a pixel, into new memory as in
// Resample2.
void ResampleBareLoop(benchmark::State& state) {
  const std::uint8_t* source = photo().DIBSectionBitsPtr();
  for (auto _ : state) {
    auto* target = static_cast<std::uint8_t*>(std::malloc(std::size_t{width / 2} * 3 * (height / 2)));
    std::vector<int> columns(width / 2);
    for (int x = 0; x < width / 2; ++x) columns[static_cast<std::size_t>(x)] = 2 * x * 3;
    std::uint8_t* out = target;
    for (int y = 0; y < height / 2; ++y) {
      const std::uint8_t* row = source + std::size_t{2} * static_cast<std::size_t>(y) * width * 3;
      for (const int column : columns) {
        out[0] = row[column];
        out[1] = row[column + 1];
        out[2] = row[column + 2];
        out += 3;
      }
    }
    benchmark::DoNotOptimize(target);
    benchmark::ClobberMemory();
    std::free(target);
  }
}

void ResamplePixman(benchmark::State& state) {
  auto* bits = reinterpret_cast<std::uint32_t*>(photo().DIBSectionBitsPtr());
  pixman_image_t* source = pixman_image_create_bits(PIXMAN_r8g8b8, width, height, bits, width * 3);
  pixman_transform_t scale;
  pixman_transform_init_scale(&scale, pixman_int_to_fixed(2), pixman_int_to_fixed(2));
  pixman_image_set_transform(source, &scale);
  pixman_image_set_filter(source, PIXMAN_FILTER_NEAREST, nullptr, 0);
  for (auto _ : state) {
    pixman_image_t* target = pixman_image_create_bits(PIXMAN_r8g8b8, width / 2, height / 2, nullptr, 0);
    pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, 0, 0, width / 2, height / 2);
    pixman_image_unref(target);
  }
  pixman_image_unref(source);
}

BENCHMARK(JpegEncodeOurs)->Arg(50)->Arg(90)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegEncodePeer)->Arg(50)->Arg(90)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegDecodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(JpegDecodePeer)->Unit(benchmark::kMillisecond);
BENCHMARK(PngOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(PngPeer)->Unit(benchmark::kMillisecond);
BENCHMARK(ResampleOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(ResampleBareLoop)->Unit(benchmark::kMillisecond);
BENCHMARK(ResamplePixman)->Unit(benchmark::kMillisecond);

}  // namespace
