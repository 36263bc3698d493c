#include "pdf/assembly/information.h"

#include <cstdio>
#include <string>

#include "base/os/clock.h"

namespace veltrano {

namespace {

/// YYYYMMDDHHmmSS
std::string timeStamp(const LocalTime& time) {
  char stamp[80];
  std::snprintf(stamp, sizeof stamp, "%04d%02d%02d%02d%02d%02d", time.year, time.month, time.day, time.hour,
                time.minute, time.second);
  return stamp;
}

}  // namespace

void writeInformation(ObjectWriter& writer, const DocumentInformation& information) {
  writer.begin();
  writer.line("<<");
  // The strings go in as they are: escaping is the host's, who may rely on writing escapes of its own.
  writer.line({"/Producer (", information.producer, ")"});
  writer.line({"/Author (", information.author, ")"});
  writer.line({"/CreationDate (D:", timeStamp(localTime()), ")"});
  writer.line({"/Creator (", information.creator, ")"});
  writer.line({"/Keywords (", information.keywords, ")"});
  writer.line({"/Subject (", information.subject, ")"});
  writer.line({"/Title (", information.title, ")"});
  writer.line("/ModDate ()");
  writer.line(">>");
  writer.end();
}

}  // namespace veltrano
