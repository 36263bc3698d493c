#include "pdf/images/jpeg_scan.h"

#include <cstdint>
#include <utility>

namespace veltrano {

namespace {

constexpr std::string_view invalid = "JPEG format invalid";
constexpr std::string_view invalidEnds = "JPEG format invalid. Pass 2";
constexpr std::string_view invalidUnit = "JPEG format invalid. Pass 3";

/// A shorter file cannot be a photograph that is worth embedding.
constexpr std::size_t smallestFile = 250;

// Markers, as the number of their two bytes.
constexpr std::size_t startOfImage = 0xFFD8;
constexpr std::size_t endOfImage = 0xFFD9;
constexpr std::size_t jfifSegment = 0xFFE0;
constexpr std::size_t fillBytes = 0xFFFF;

/// FFC4 is not a frame header, and neither are the markers above FFC7 here.
bool isFrameHeader(std::size_t marker) {
  return marker >= 0xFFC0 && marker <= 0xFFC7 && marker != 0xFFC4;
}

std::optional<int> byteAt(std::string_view bytes, std::size_t position) {
  if (position < 1 || position > bytes.size()) {
    return std::nullopt;
  }
  return static_cast<unsigned char>(bytes[position - 1]);
}

/// The two bytes at `position`, the first one counting 256; empty if they are not both within the bytes.
std::optional<std::size_t> wordAt(std::string_view bytes, std::size_t position) {
  const auto high = byteAt(bytes, position);
  const auto low = byteAt(bytes, position + 1);
  if (!high || !low) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(*high * 256 + *low);
}

class SegmentWalk {
 public:
  SegmentWalk(std::string_view bytes, const std::function<void()>& yield) : bytes_(bytes), yield_(yield) {}

  /// False for a density unit that does not exist. The walk does not stop at the start of the compressed
  /// data: it goes on by the lengths it finds there, and a frame header met on the way overwrites the
  /// previous one. Kept because hosts rely on the sizes that come out.
  bool run() {
    std::size_t position = 3;
    while (position + 1 < bytes_.size()) {
      const auto marker = wordAt(bytes_, position).value_or(0);
      readLength(position);
      if (marker == fillBytes) {
        // What follows the fill bytes is stepped over like an unknown segment, a frame header too: kept so.
        position = skipFillBytes(position);
        readLength(position);
      } else if (marker == jfifSegment) {
        constexpr int highestDensityUnit = 2;  // of none, inch and centimetre
        if (byteAt(bytes_, position + 11).value_or(0) > highestDensityUnit) {
          return false;
        }
      } else if (isFrameHeader(marker)) {
        readFrameHeader(position);
      }
      position += length_ + 2;
      giveTurn();
    }
    return true;
  }

  JpegHeader takeHeader() { return std::move(header_); }

 private:
  void giveTurn() const {
    if (yield_) {
      yield_();
    }
  }

  /// Past the end of the bytes the length of the step before stays.
  void readLength(std::size_t position) { length_ = wordAt(bytes_, position + 2).value_or(length_); }

  /// A fill byte takes a nanosecond and a turn up to a thousand: one at each would freeze the host that it is
  /// meant to keep responsive.
  std::size_t skipFillBytes(std::size_t position) {
    constexpr std::size_t bytesPerTurn = 4096;
    for (std::size_t skipped = 1; byteAt(bytes_, position + 1) == 255; ++skipped) {
      ++position;
      if (skipped % bytesPerTurn == 0) {
        giveTurn();
      }
    }
    return position;
  }

  void readFrameHeader(std::size_t position) {
    if (const auto width = wordAt(bytes_, position + 7)) {
      header_.width = static_cast<int>(*width);
    }
    if (const auto height = wordAt(bytes_, position + 5)) {
      header_.height = static_cast<int>(*height);
    }
    const auto components = byteAt(bytes_, position + 9);
    if (!components) {
      return;
    }
    switch (*components) {
      case 1:
        header_.colourSpace = "DeviceGray";
        break;
      case 3:
        header_.colourSpace = "DeviceRGB";
        break;
      case 4:
        header_.colourSpace = "DeviceCMYK";
        break;
      default:
        // The colour space stays what it was, and a later, ordinary frame does not mend the bits: kept so.
        header_.bitsPerComponent = *components * 8;
    }
  }

  std::string_view bytes_;
  const std::function<void()>& yield_;
  JpegHeader header_;
  std::size_t length_ = 0;
};

}  // namespace

JpegScan scanJpeg(std::string_view bytes, const std::function<void()>& yield) {
  if (bytes.size() < smallestFile) {
    return {std::nullopt, invalid};
  }
  if (wordAt(bytes, 1) != startOfImage || wordAt(bytes, bytes.size() - 1) != endOfImage) {
    return {std::nullopt, invalidEnds};
  }
  SegmentWalk walk(bytes, yield);
  if (!walk.run()) {
    return {std::nullopt, invalidUnit};
  }
  return {walk.takeHeader(), {}};
}

}  // namespace veltrano
