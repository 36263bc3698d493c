#include <syslog.h>

#include "base/text/code_page.h"
#include "eventlog/event_sink.h"
#include "veltrano/wev.h"

namespace veltrano {

namespace {

int priorityOf(std::uint16_t type) {
  switch (static_cast<EventType>(type)) {
    case EventType::error:
      return LOG_ERR;
    case EventType::warning:
    case EventType::auditFailure:
      return LOG_WARNING;
    case EventType::success:
    case EventType::information:
    case EventType::auditSuccess:
      return LOG_INFO;
  }
  return LOG_NOTICE;
}

/// Writes "source: event 7: message". The process's own log settings (openlog) are the host's and stay as
/// they are.
class SyslogEventSink final : public EventSink {
 public:
  void open(const std::string& source) override { source_ = ansiToUtf8(source); }
  void report(std::uint16_t type, std::int32_t id, const std::string& message) override {
    syslog(LOG_USER | priorityOf(type), "%s: event %d: %s", source_.c_str(), id, ansiToUtf8(message).c_str());
  }
  void close() override { source_.clear(); }

 private:
  std::string source_;
};

}  // namespace

std::unique_ptr<EventSink> systemEventSink() {
  return std::make_unique<SyslogEventSink>();
}

}  // namespace veltrano
