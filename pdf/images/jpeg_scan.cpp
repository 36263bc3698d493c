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

std::optional<int> byteAt(std::string_view bytes, std::size_t position) {
  if (position < 1 || position > bytes.size()) {
    return std::nullopt;
  }
  return static_cast<unsigned char>(bytes[position - 1]);
}

/// FFC4 is no frame header, and neither are the markers above FFC7 here.
bool isFrameHeader(std::string_view marker) {
  return marker.starts_with("FFC") && std::string_view("0123567").find(marker[3]) != std::string_view::npos;
}

/// Gives the host's messages a turn at the first step and then at every 4096th. A step takes a few
/// nanoseconds and a turn up to a microsecond, while a file of zeros makes ten million steps: a turn at each
/// would freeze the host that it is meant to keep responsive, and so the longest wait for one stays far below
/// a millisecond.
class HostTurns {
 public:
  explicit HostTurns(const std::function<void()>& yield) : yield_(yield) {}
  void step() {
    if (yield_ && (steps_++ & 4095U) == 0) {
      yield_();
    }
  }

 private:
  const std::function<void()>& yield_;
  std::uint32_t steps_ = 0;
};

class SegmentWalk {
 public:
  SegmentWalk(std::string_view bytes, const std::function<void()>& yield) : bytes_(bytes), turns_(yield) {}

  /// False for a density unit that does not exist. The walk does not stop at the start of the compressed
  /// data: it goes on by the lengths it finds there, and a frame header met on the way overwrites the one
  /// before. Hosts know the sizes that come out.
  bool run() {
    std::size_t position = 3;
    while (position + 1 < bytes_.size()) {
      const std::string marker = markerAt(bytes_, position);
      readLength(position);
      if (marker == "FFFF") {
        // What follows the fill bytes is stepped over like an unknown segment, a frame header too: kept so.
        position = skipFillBytes(position);
        readLength(position);
      } else if (marker == "FFE0") {
        if (!readDensityUnit(position)) {
          return false;
        }
      } else if (isFrameHeader(marker)) {
        readFrameHeader(position);
      }
      position += length_ + 2;
      turns_.step();
    }
    return true;
  }

  JpegHeader takeHeader() { return std::move(header_); }

 private:
  /// Past the end of the bytes the length of the step before stays.
  void readLength(std::size_t position) { length_ = wordAt(bytes_, position + 2).value_or(length_); }

  std::size_t skipFillBytes(std::size_t position) {
    while (byteAt(bytes_, position + 1) == 255) {
      ++position;
      turns_.step();
    }
    return position;
  }

  bool readDensityUnit(std::size_t position) {
    const auto unit = byteAt(bytes_, position + 11);
    if (!unit) {
      return true;
    }
    constexpr std::string_view units[] = {"Dots", "Dots/inch (DPI)", "Dots/cm"};
    if (*unit > 2) {
      return false;
    }
    header_.densityUnit = units[*unit];
    return true;
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
  HostTurns turns_;
  JpegHeader header_;
  std::size_t length_ = 0;
};

}  // namespace

std::string markerAt(std::string_view bytes, std::size_t position) {
  const auto word = wordAt(bytes, position);
  if (!word) {
    return {};
  }
  constexpr char digits[] = "0123456789ABCDEF";
  return {digits[*word >> 12], digits[*word >> 8 & 15], digits[*word >> 4 & 15], digits[*word & 15]};
}

std::optional<std::size_t> wordAt(std::string_view bytes, std::size_t position) {
  const auto high = byteAt(bytes, position);
  const auto low = byteAt(bytes, position + 1);
  if (!high || !low) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(*high * 256 + *low);
}

JpegScan scanJpeg(std::string_view bytes, const std::function<void()>& yield) {
  if (bytes.size() < smallestFile) {
    return {std::nullopt, invalid};
  }
  if (markerAt(bytes, 1) != "FFD8" || markerAt(bytes, bytes.size() - 1) != "FFD9") {
    return {std::nullopt, invalidEnds};
  }
  SegmentWalk walk(bytes, yield);
  if (!walk.run()) {
    return {std::nullopt, invalidUnit};
  }
  return {walk.takeHeader(), {}};
}

}  // namespace veltrano
