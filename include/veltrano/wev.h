#ifndef VELTRANO_WEV_H
#define VELTRANO_WEV_H

// Writes entries to the system's event log: that of the local computer on Windows, syslog elsewhere.

#include <cstdint>
#include <memory>
#include <string>

#include "veltrano/export.h"

namespace veltrano {

class EventSink;

/// Windows' own headers have macros of the usual names; these stand for the same numbers, the last one
/// excepted.
enum class EventType : std::int32_t {
  success = 0,
  error = 1,
  warning = 2,
  information = 4,
  auditSuccess = 8,
  auditFailure = 10,  ///< not the system's 16: hosts have always passed 10, and 10 is what the log gets
};

class VELTRANO_API VeltranoWEV {
 public:
  /// Writes to the system's log.
  VeltranoWEV();
  /// Writes to `sink` instead, which must not be null.
  explicit VeltranoWEV(std::unique_ptr<EventSink> sink);
  VeltranoWEV(VeltranoWEV&&) noexcept;
  VeltranoWEV& operator=(VeltranoWEV&&) noexcept;
  VeltranoWEV(const VeltranoWEV&) = delete;
  VeltranoWEV& operator=(const VeltranoWEV&) = delete;
  ~VeltranoWEV();

  /// Writes one entry. `iLogType` is an EventType, or any other number that fits 16 bits; one that does not
  /// fit writes nothing. An empty `AppSource` is the host application's name. Texts are in the ANSI code
  /// page. Never reports a failure.
  void LogNTEvent(const std::string& sString, std::int32_t iLogType, std::int32_t iEventID,
                  const std::string& AppSource = {});

 private:
  std::unique_ptr<EventSink> sink_;
};

}  // namespace veltrano

#endif
