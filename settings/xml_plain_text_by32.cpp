#include "settings/xml_plain_text_lanes.h"

namespace veltrano {

bool scanPlainTextBy32(const char* text, const char* end) {
  return PlainTextLanes<32>(text, end).run();
}

}  // namespace veltrano
