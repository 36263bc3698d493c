#ifndef VELTRANO_EVENTLOG_EVENT_SINK_H
#define VELTRANO_EVENTLOG_EVENT_SINK_H

// Where event log entries go: the system's log, or a test's list.

#include <cstdint>
#include <memory>
#include <string>

namespace veltrano {

/// One entry is one open, at most one report, and one close, whether or not open and report succeeded. Texts
/// are in the ANSI code page. Throws only std::bad_alloc; failures are silent.
class EventSink {
 public:
  EventSink() = default;
  EventSink(const EventSink&) = delete;
  EventSink& operator=(const EventSink&) = delete;
  EventSink(EventSink&&) = delete;
  EventSink& operator=(EventSink&&) = delete;
  virtual ~EventSink() = default;

  virtual void open(const std::string& source) = 0;
  /// `type` and `id` are passed on unchanged.
  virtual void report(std::uint16_t type, std::int32_t id, const std::string& message) = 0;
  virtual void close() = 0;
};

/// The system's log: the event log of the local computer on Windows, syslog elsewhere.
std::unique_ptr<EventSink> systemEventSink();

}  // namespace veltrano

#endif
