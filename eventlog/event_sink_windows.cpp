#include <windows.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "base/trace.h"
#include "eventlog/event_sink.h"

namespace veltrano {

namespace {

/// Memory of GlobalAlloc, zeroed.
class GlobalBlock {
 public:
  explicit GlobalBlock(std::size_t size) : memory_(GlobalAlloc(GPTR, size)) {}
  GlobalBlock(const GlobalBlock&) = delete;
  GlobalBlock& operator=(const GlobalBlock&) = delete;
  GlobalBlock(GlobalBlock&&) = delete;
  GlobalBlock& operator=(GlobalBlock&&) = delete;
  ~GlobalBlock() { GlobalFree(memory_); }
  [[nodiscard]] void* get() const { return memory_; }

 private:
  HGLOBAL memory_;
};

class WindowsEventSink final : public EventSink {
 public:
  WindowsEventSink() = default;
  WindowsEventSink(const WindowsEventSink&) = delete;
  WindowsEventSink& operator=(const WindowsEventSink&) = delete;
  ~WindowsEventSink() override { close(); }

  void open(const std::string& source) override {
    close();
    // The empty server name, not a null one, stands for the local computer.
    log_ = RegisterEventSourceA("", source.c_str());
    if (log_ == nullptr) {
      traceSkipped("LogNTEvent", "the event source cannot be registered");
    }
  }

  void report(std::uint16_t type, std::int32_t id, const std::string& message) override {
    const std::size_t size = message.size() + 1;
    const GlobalBlock text(size);
    if (text.get() == nullptr) {
      traceSkipped("LogNTEvent", "no memory for the message");
      return;
    }
    std::memcpy(text.get(), message.c_str(), size);
    // Strings and binary data are given at one address, so the binary data of an entry is the pointer to its
    // text, followed by nothing of interest. Hosts rely on its size; the rest of it is ours and zero.
    std::vector<char> block(std::max(size, sizeof(void*)));
    void* const pointer = text.get();
    std::memcpy(block.data(), static_cast<const void*>(&pointer), sizeof pointer);
    auto* strings = static_cast<LPCSTR*>(static_cast<void*>(block.data()));
    if (ReportEventA(log_, type, 0, static_cast<DWORD>(id), nullptr, 1, static_cast<DWORD>(size), strings,
                     block.data()) == FALSE) {
      traceSkipped("LogNTEvent", "the entry was not written");
    }
  }

  void close() override {
    if (log_ != nullptr) {
      DeregisterEventSource(log_);
      log_ = nullptr;
    }
  }

 private:
  HANDLE log_ = nullptr;
};

}  // namespace

std::unique_ptr<EventSink> systemEventSink() {
  return std::make_unique<WindowsEventSink>();
}

}  // namespace veltrano
