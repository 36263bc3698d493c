#include "settings/xml_plain_text.h"

#include <algorithm>
#include <iterator>

#include "base/lane_widths.h"
#include "settings/xml_plain_text_lanes.h"

namespace veltrano {

namespace {

// Not by 64: comparisons of so many bytes give masks, which cost more to turn into lanes than the width
// saves.
constexpr XmlPlainTextScan scans[] = {scanPlainTextBy16, scanPlainTextBy32};

}  // namespace

bool scanPlainTextBy16(const char* text, const char* end) {
  return PlainTextLanes<16>(text, end).run();
}

std::span<const XmlPlainTextScan> usableXmlPlainTextScans() {
  return std::span(scans).first(std::min(usableLaneWidths(), std::size(scans)));
}

}  // namespace veltrano
