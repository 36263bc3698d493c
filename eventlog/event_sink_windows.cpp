#include <windows.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/os/owned.h"
#include "base/trace.h"
#include "eventlog/event_sink.h"

namespace veltrano {

namespace {

void closeLog(HANDLE log) {
  DeregisterEventSource(log);
}

class WindowsEventSink final : public EventSink {
 public:
  void open(const std::string& source) override {
    // The empty server name, not a null one, stands for the local computer.
    log_ = Log(RegisterEventSourceA("", source.c_str()));
    if (!log_) {
      trace("The event source \"", source, "\" cannot be opened: system error ", GetLastError(), ".");
    }
  }

  void report(std::uint16_t type, std::int32_t id, const std::string& message) override {
    // Strings and binary data are given at one address, so the binary data of an entry is the pointer to its
    // text. Its size, one byte more than the text, is kept because hosts rely on it; the rest of it is zero.
    const char* const text = message.c_str();
    const std::size_t size = message.size() + 1;
    std::vector<char> block(std::max(size, sizeof text));
    std::memcpy(block.data(), static_cast<const void*>(&text), sizeof text);
    auto* strings = static_cast<LPCSTR*>(static_cast<void*>(block.data()));
    if (ReportEventA(log_.get(), type, 0, static_cast<DWORD>(id), nullptr, 1, static_cast<DWORD>(size),
                     strings, block.data()) == FALSE) {
      trace("The entry was not written: system error ", GetLastError(), ".");
    }
  }

  void close() override { log_ = Log(); }

 private:
  using Log = Owned<HANDLE, closeLog>;

  Log log_;
};

}  // namespace

std::unique_ptr<EventSink> systemEventSink() {
  return std::make_unique<WindowsEventSink>();
}

}  // namespace veltrano
