#ifndef VELTRANO_BASE_TRACE_H
#define VELTRANO_BASE_TRACE_H

// The trace: the one place where everything is said that hosts never see, since no member raises an error. What
// was rejected, skipped, refused or replaced, and which choice was made and why, one line each:
//
//   2026-11-22 14:03:07.125 4711/4712 wscript.exe VeltranoMDB.OpenTable: There is no table "Custmers".
//
// Local time, process and thread, host, class and member, a sentence. docs/did-it-work.md tells users how to switch
// it on. Off, it costs one test of a flag. It holds no content of documents beyond the names of files, fonts,
// fields, tables and keys.

#include <atomic>
#include <filesystem>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/status.h"

namespace veltrano {

enum class TraceState { unread, off, on };
inline std::atomic<TraceState> traceState = TraceState::unread;

/// Reads what decides, and keeps it.
bool readTraceState() noexcept;

/// True if tracing is on; what decides is read once, at the first question.
inline bool traceEnabled() noexcept {
  const TraceState state = traceState.load(std::memory_order_relaxed);
  return state == TraceState::unread ? readTraceState() : state == TraceState::on;
}

/// While it lives, lines of this thread name this class and member, whose texts must live as long. Members that call
/// others nest: the innermost is named. Nothing is allocated, so a member may begin with it whatever memory is left.
class TracedMember {
 public:
  TracedMember(const char* className, const char* member) noexcept
      : TracedMember(className, nullptr, member) {}
  TracedMember(const wchar_t* className, const char* member) noexcept
      : TracedMember(nullptr, className, member) {}
  TracedMember(const TracedMember&) = delete;
  TracedMember& operator=(const TracedMember&) = delete;
  ~TracedMember() {
    if (entered_) {
      leave();
    }
  }

 private:
  friend std::string currentMember();
  TracedMember(const char* narrow, const wchar_t* wide, const char* member) noexcept
      : narrowClass_(narrow), wideClass_(wide), member_(member), entered_(traceEnabled()) {
    if (entered_) {
      enter();
    }
  }
  void enter() noexcept;
  void leave() const noexcept;

  const char* narrowClass_;  ///< one of the two is null
  const wchar_t* wideClass_;
  const char* member_;
  bool entered_;
  const TracedMember* outer_ = nullptr;
};

void appendTraced(std::string& sentence, std::string_view text);
void appendTraced(std::string& sentence, std::u16string_view text);
void appendTraced(std::string& sentence, const std::filesystem::path& file);

/// Appends a part of a sentence. Text may be UTF-8 or in the ANSI code page; a path is put in quotes.
template <typename Part>
void appendTracedPart(std::string& sentence, const Part& part) {
  if constexpr (std::is_arithmetic_v<Part>) {
    sentence += std::to_string(part);
  } else if constexpr (std::is_same_v<Part, Status>) {
    appendTraced(sentence, std::string_view(part.reason()));
  } else if constexpr (std::is_convertible_v<Part, std::string_view>) {
    appendTraced(sentence, std::string_view(part));
  } else if constexpr (std::is_convertible_v<Part, std::u16string_view>) {
    appendTraced(sentence, std::u16string_view(part));
  } else {
    appendTraced(sentence, static_cast<const std::filesystem::path&>(part));
  }
}

void writeTraceLine(std::string_view sentence);

/// Writes a line with the sentence that the parts make up: text, paths, whole numbers, a Status for its reason.
/// Callable at any time and from any thread. Failures are ignored: a host whose memory or disk is short loses a line,
/// not its call. Parts that take work to compute belong under `if (traceEnabled())`.
template <typename... Parts>
void trace(const Parts&... parts) noexcept {
  if (traceEnabled()) [[unlikely]] {
    try {
      std::string sentence;
      (appendTracedPart(sentence, parts), ...);
      writeTraceLine(sentence);
    } catch (...) {
      return;
    }
  }
}

}  // namespace veltrano

#endif
