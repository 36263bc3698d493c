#include "pdf/assembly/information.h"

#include <cstddef>
#include <string>

#include "base/os/clock.h"

namespace veltrano {

namespace {

void appendPadded(std::string& target, int number, std::size_t width) {
  const NumberText digits = decimal(number);
  if (digits.view().size() < width) {
    target.append(width - digits.view().size(), '0');
  }
  target.append(digits.view());
}

/// YYYYMMDDHHmmSS
std::string timeStamp(const LocalTime& time) {
  std::string stamp;
  appendPadded(stamp, time.year, 4);
  for (const int part : {time.month, time.day, time.hour, time.minute, time.second}) {
    appendPadded(stamp, part, 2);
  }
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
