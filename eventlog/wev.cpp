#include "veltrano/wev.h"

#include <limits>
#include <utility>

#include "base/os/host.h"
#include "base/trace.h"
#include "eventlog/event_sink.h"

namespace veltrano {

namespace {

bool fitsInt16(std::int32_t number) {
  return number >= std::numeric_limits<std::int16_t>::min() &&
         number <= std::numeric_limits<std::int16_t>::max();
}

}  // namespace

VeltranoWEV::VeltranoWEV() : sink_(systemEventSink()) {}

VeltranoWEV::VeltranoWEV(std::unique_ptr<EventSink> sink) : sink_(std::move(sink)) {}

VeltranoWEV::VeltranoWEV(VeltranoWEV&&) noexcept = default;
VeltranoWEV& VeltranoWEV::operator=(VeltranoWEV&&) noexcept = default;
VeltranoWEV::~VeltranoWEV() = default;

void VeltranoWEV::LogNTEvent(const std::string& sString, std::int32_t iLogType, std::int32_t iEventID,
                             const std::string& AppSource) {
  const TracedMember member("VeltranoWEV", "LogNTEvent");
  sink_->open(AppSource.empty() ? hostApplicationName() : AppSource);
  if (fitsInt16(iLogType)) {
    sink_->report(static_cast<std::uint16_t>(iLogType), iEventID, sString);
  } else {
    trace("The event type ", iLogType, " does not fit 16 bits; no entry is written.");
  }
  sink_->close();
}

}  // namespace veltrano
