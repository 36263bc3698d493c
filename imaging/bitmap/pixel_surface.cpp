#include "imaging/bitmap/pixel_surface.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <vector>

namespace veltrano {
namespace {

// A raster operation without pattern: bit 2 * source + target of the truth table is the result.
using TruthTable = unsigned;
constexpr TruthTable copySource = 0xC;

std::optional<TruthTable> truthTable(std::uint32_t operation) {
  const unsigned code = (operation >> 16) & 0xFF;
  // The high half is the table with the pattern bit set: when the halves differ, a brush takes part.
  if ((code >> 4) != (code & 0xF)) return std::nullopt;
  return code & 0xF;
}

void combine(std::uint8_t* target, const std::uint8_t* source, std::size_t count, TruthTable table) {
  if (table == copySource) {
    std::memmove(target, source, count);
    return;
  }
  const auto mask = [table](unsigned bit) { return (table >> bit) & 1U ? 0xFFU : 0U; };
  const unsigned neither = mask(0), targetOnly = mask(1), sourceOnly = mask(2), both = mask(3);
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned s = source[i], t = target[i];
    target[i] = static_cast<std::uint8_t>((~s & ~t & neither) | (~s & t & targetOnly) |
                                          (s & ~t & sourceOnly) | (s & t & both));
  }
}

// Half-open range of source pixels under target pixel `i` of `targetSize`, never empty.
struct Span {
  std::int64_t first;
  std::int64_t end;
};

Span spanUnder(std::int64_t i, std::int64_t targetSize, std::int64_t sourceSize) {
  const std::int64_t first = i * sourceSize / targetSize;
  return {first, std::max(first + 1, (i + 1) * sourceSize / targetSize)};
}

// The spans of one axis, only those that lie in both surfaces; `start` is the first target coordinate that
// has one.
struct Axis {
  std::int64_t start = 0;
  std::vector<Span> spans;
};

Axis makeAxis(std::int64_t to, std::int64_t toSize, std::int64_t targetSize, std::int64_t from,
              std::int64_t fromSize, std::int64_t sourceSize) {
  Axis axis;
  const std::int64_t end = std::min(to + toSize, targetSize);
  for (std::int64_t at = std::max<std::int64_t>(to, 0); at < end; ++at) {
    Span span = spanUnder(at - to, toSize, fromSize);
    span.first = std::max<std::int64_t>(span.first + from, 0);
    span.end = std::min(span.end + from, sourceSize);
    if (span.first >= span.end) {
      if (!axis.spans.empty()) break;
      continue;
    }
    if (axis.spans.empty()) axis.start = at;
    axis.spans.push_back(span);
  }
  return axis;
}

// Sums of the three channels of `count` pixels are kept in 64 bits: a surface can have 2^29 pixels.
void averageRow(std::uint8_t* line, const PixelSurface& source, Span rows, const std::vector<Span>& columns) {
  std::vector<std::array<std::uint64_t, 3>> sums(columns.size());
  for (std::int64_t y = rows.first; y < rows.end; ++y) {
    const std::uint8_t* row = source.row(y);
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::uint8_t* end = row + columns[i].end * 3;
      for (const std::uint8_t* pixel = row + columns[i].first * 3; pixel != end; pixel += 3) {
        sums[i][0] += pixel[0];
        sums[i][1] += pixel[1];
        sums[i][2] += pixel[2];
      }
    }
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const auto count =
        static_cast<std::uint64_t>((columns[i].end - columns[i].first) * (rows.end - rows.first));
    for (const std::uint64_t sum : sums[i]) *line++ = static_cast<std::uint8_t>((sum + count / 2) / count);
  }
}

void nearestRow(std::uint8_t* line, const std::uint8_t* row, const std::vector<Span>& columns) {
  for (const Span& column : columns) {
    const std::uint8_t* pixel = row + column.first * 3;
    *line++ = pixel[0];
    *line++ = pixel[1];
    *line++ = pixel[2];
  }
}

// Moves the start of a copy inside both surfaces and shortens it to fit.
void clip(std::int64_t& to, std::int64_t& from, std::int64_t& size, std::int64_t targetSize,
          std::int64_t sourceSize) {
  const std::int64_t skip = std::max({std::int64_t{0}, -to, -from});
  to += skip;
  from += skip;
  size = std::min({size - skip, targetSize - to, sourceSize - from});
}

}  // namespace

void blitPixels(const PixelSurface& target, PixelRectangle rectangle, const PixelSurface& source,
                std::int64_t sourceX, std::int64_t sourceY, std::uint32_t operation) {
  const std::optional<TruthTable> table = truthTable(operation);
  auto [x, y, width, height] = rectangle;
  clip(x, sourceX, width, target.width, source.width);
  clip(y, sourceY, height, target.height, source.height);
  if (!table || width <= 0 || height <= 0) return;

  // Within one surface rows are taken in the order that reads each before it is overwritten.
  const bool upwards = target.bits == source.bits && y > sourceY;
  const auto length = static_cast<std::size_t>(width * 3);
  std::vector<std::uint8_t> copy(target.bits == source.bits && *table != copySource ? length : 0);
  for (std::int64_t i = 0; i < height; ++i) {
    const std::int64_t at = upwards ? height - 1 - i : i;
    const std::uint8_t* from = source.row(sourceY + at) + sourceX * 3;
    if (!copy.empty()) from = static_cast<const std::uint8_t*>(std::memcpy(copy.data(), from, length));
    combine(target.row(y + at) + x * 3, from, length, *table);
  }
}

void stretchPixels(const PixelSurface& target, PixelRectangle to, const PixelSurface& source,
                   PixelRectangle from, std::uint32_t operation, bool averaging) {
  const std::optional<TruthTable> table = truthTable(operation);
  if (!table || to.width <= 0 || to.height <= 0 || from.width <= 0 || from.height <= 0) return;
  const Axis columns = makeAxis(to.x, to.width, target.width, from.x, from.width, source.width);
  const Axis rows = makeAxis(to.y, to.height, target.height, from.y, from.height, source.height);
  std::vector<std::uint8_t> line(columns.spans.size() * 3);
  std::int64_t y = rows.start;
  for (const Span& span : rows.spans) {
    if (averaging) {
      averageRow(line.data(), source, span, columns.spans);
    } else {
      nearestRow(line.data(), source.row(span.first), columns.spans);
    }
    combine(target.row(y++) + columns.start * 3, line.data(), line.size(), *table);
  }
}

}  // namespace veltrano
