#include "imaging/jpeg/intel_jpeg_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "base/files/whole.h"
#include "base/os/host.h"
#include "images.h"

namespace veltrano::tests {
namespace {

using namespace mIntelJPEGLibrary;

std::string encode(const cDIBSection& dib, int quality) {
  std::string buffer(static_cast<std::size_t>(dib.Width() * dib.Height() * 4 + 2000), '\0');
  auto size = static_cast<std::int32_t>(buffer.size());
  EXPECT_TRUE(saveDibToJpegBuffer(dib, reinterpret_cast<std::uint8_t*>(buffer.data()), size, quality));
  buffer.resize(static_cast<std::size_t>(size));
  return buffer;
}

bool decode(cDIBSection& dib, const std::string& bytes, int scale = 1) {
  // A copy of the exact size: reading beyond it is seen by the sanitizer.
  const std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
  return loadJpegBufferToDib(dib, exact.data(), static_cast<std::int32_t>(exact.size()), scale);
}

TEST(JpegModule, KeepsThePicture) {
  const Image image = scenery(99, 61);
  double last = 0;
  for (const auto& [quality, decibels] : {std::pair{20, 25.0}, {50, 29.0}, {90, 33.0}}) {
    const std::string bytes = encode(section(image), quality);
    const Image seen = readJpeg(bytes);
    EXPECT_GT(psnr(image, seen), decibels) << quality;
    EXPECT_GT(psnr(image, seen), last) << "quality has an effect";
    last = psnr(image, seen);
    cDIBSection dib;
    ASSERT_TRUE(decode(dib, bytes));
    EXPECT_TRUE(contents(dib) == seen) << "as libjpeg reads it, bottom row last";
  }
  EXPECT_EQ(encode(section(image), 0), encode(section(image), 1));
  EXPECT_EQ(encode(section(image), 5000), encode(section(image), 100));
}

TEST(JpegModule, ScalesWhileDecoding) {
  const Image halves = paint(101, 67, [](int x, int) { return Rgb{x < 50 ? 250 : 5, 90, 30}; });
  const std::string bytes = encode(section(halves), 95);
  for (const auto& [scale, width, height] :
       {std::tuple{1, 101, 67}, {2, 50, 33}, {4, 25, 16}, {8, 12, 8}, {3, 101, 67}, {0, 101, 67}}) {
    cDIBSection dib;
    ASSERT_TRUE(decode(dib, bytes, scale)) << scale;
    EXPECT_EQ(dib.Width(), width) << scale;
    EXPECT_EQ(dib.Height(), height) << scale;
    EXPECT_EQ(lastJpegWidth(), 101);
    EXPECT_EQ(lastJpegHeight(), 67);
    const Image image = contents(dib);
    EXPECT_NEAR(image.at(1, height - 1).red, 250, 12) << scale;
    EXPECT_NEAR(image.at(width - 1, 0).red, 5, 12) << scale;
  }
}

TEST(JpegModule, ReadsFourChannels) {
  struct {
    const char* label;
    std::uint8_t samples[4];
    bool adobe, ycck;
    Rgb seen;
  } const cases[] = {{"plain: ink as stored", {255, 0, 0, 0}, false, false, {0, 255, 255}},
                     {"plain, half black: 255 * 127 / 255", {0, 0, 0, 128}, false, false, {127, 127, 127}},
                     {"Adobe: complement of the ink", {255, 0, 0, 255}, true, false, {255, 0, 0}},
                     {"Adobe, dimmed: 200 * 128 / 255", {200, 200, 0, 128}, true, false, {100, 100, 0}},
                     {"Adobe YCCK", {0, 0, 255, 255}, true, true, {0, 0, 255}}};
  for (const auto& c : cases) {
    cDIBSection dib;
    ASSERT_TRUE(decode(dib, flatInksJpeg(c.samples, c.adobe, c.ycck))) << c.label;
    const Rgb pixel = contents(dib).at(7, 9);
    for (const int distance : {pixel.red - c.seen.red, pixel.green - c.seen.green, pixel.blue - c.seen.blue})
      EXPECT_LE(std::abs(distance), 2) << c.label;
  }
}

TEST(JpegModule, UsesABufferToItsLastByte) {
  const cDIBSection dib = section(scenery(40, 30));
  const std::string whole = encode(dib, 50);
  const auto length = static_cast<std::int32_t>(whole.size());
  for (std::int32_t room : {length + 1, length, length - 1, length - 2, length / 2, 1, 0, -5}) {
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(std::max(room, 0)));
    std::int32_t size = room;
    try {
      EXPECT_TRUE(saveDibToJpegBuffer(dib, buffer.data(), size, 50));
      EXPECT_GE(room, length);
      EXPECT_EQ(std::string(buffer.begin(), buffer.begin() + size), whole);
    } catch (const RaisedError& error) {
      EXPECT_TRUE(room < length && size == room && RaisedError::number == 26001) << room;
      EXPECT_STREQ(error.what(), "Failed to save to JPG -28");
      EXPECT_EQ(error.source(), hostApplicationName() + ".mIntelJPEGLibrary");
    }
  }
}

TEST(JpegModule, HasABudgetOfAQuarterByteAPixel) {
  // Too small to hold even the tables: n + 1 characters, n = pixels / 4 with halves to even.
  for (const auto& [width, characters] :
       {std::pair{1, 1U}, {2, 1U}, {3, 2U}, {6, 3U}, {10, 3U}, {7, 3U}, {9, 3U}, {14, 5U}})
    EXPECT_EQ(saveDibToJpegString(section(noise(width, 1)), 50).size(), characters) << width;
  EXPECT_EQ(saveDibToJpegString(section(noise(100, 100)), 50).size(), 2501U);
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
      {"good", good, true, true},
      {"without end marker", good.substr(0, good.size() - 2), true, true},
      {"text after the end", good + "tail", true, true},
      {"half of the image data", good.substr(0, good.size() - (good.size() - frame) / 4), false, true},
      {"no image data", good.substr(0, good.find("\xFF\xDA")), false, false},
      {"one byte", good.substr(0, 1), false, false},
      {"no JPEG", "GIF89a, say", false, false},
      {"more pixels than its bytes can tell", patched(frame + 5, "\xFF\xDC\xFF\xDC"), false, false},
      {"no rows", patched(frame + 5, std::string(2, '\0')), false, false},
      {"two channels", patched(frame + 9, "\x02"), false, false},
      {"12 bits", patched(frame + 4, "\x0C"), false, false},
      {"no Huffman tables, so the standard ones", patched(good.find("\xFF\xC4"), "\xFF\xFE"), true, true}};
  for (const auto& [label, bytes, loads, hasPixels] : cases) {
    cDIBSection dib;
    EXPECT_EQ(decode(dib, bytes), loads) << label;
    EXPECT_EQ(dib.hDC() != 0, hasPixels) << label;
  }
  cDIBSection dib;
  EXPECT_FALSE(loadJpegBufferToDib(dib, nullptr, 100));
  EXPECT_FALSE(decode(dib, ""));
}

TEST(JpegModule, WritesWholeFilesOrNone) {
  const TemporaryFolder folder;
  const Image image = scenery(1200, 900);  // more than one chunk of output
  const cDIBSection dib = section(image);
  ASSERT_TRUE(saveDibToJpegFile(dib, folder / "a b.jpg", 100));
  EXPECT_EQ(readWholeFile(folder / "a b.jpg"), encode(dib, 100));
  cDIBSection back;
  EXPECT_TRUE(loadJpegFileToDib(back, folder / "a b.jpg"));
  EXPECT_GT(psnr(contents(back), image), 35.0);
  EXPECT_FALSE(saveDibToJpegFile(dib, folder / "missing" / "a.jpg", 50));
  EXPECT_FALSE(saveDibToJpegFile(cDIBSection(), folder / "empty.jpg", 50));
  EXPECT_EQ(filesIn(folder), 1);
}

}  // namespace
}  // namespace veltrano::tests
