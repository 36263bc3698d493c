#ifndef VELTRANO_BASE_TRACE_H
#define VELTRANO_BASE_TRACE_H

// The trace: the one place where everything is said that hosts never see, since no member raises an error. What
// was rejected, skipped, refused or replaced, and which choice was made and why, one line each:
//
//   2026-11-22 14:03:07.125 4711/4712 wscript.exe VeltranoMDB.OpenTable: There is no table "Custmers".
//
// Local time, process and thread, host, class and member, a sentence. docs/trace.md tells users how to switch
// it on. Off, it costs one test of a flag. It holds no content of documents beyond the names of files, fonts,
// fields, tables and keys.

#include <filesystem>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/status.h"

namespace veltrano {

/// True if tracing is on; what decides is read once, at the first question.
bool traceEnabled();

/// While it lives, lines of this thread name this class and member. Members that call others nest: the innermost
/// is named.
class TracedMember {
 public:
  template <typename Character>
  TracedMember(const Character* className, const char* member) {
    if (traceEnabled()) {
      const std::basic_string_view<Character> name(className);
      enter(std::string(name.begin(), name.end()) + "." + member);
    }
  }
  TracedMember(const TracedMember&) = delete;
  TracedMember& operator=(const TracedMember&) = delete;
  ~TracedMember() {
    if (!name_.empty()) {
      leave();
    }
  }

 private:
  friend std::string currentMember();
  void enter(std::string name);
  void leave();

  std::string name_;
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
/// Callable at any time and from any thread; failures to write are ignored. Parts that take work to compute
/// belong under `if (traceEnabled())`.
template <typename... Parts>
void trace(const Parts&... parts) {
  if (traceEnabled()) {
    std::string sentence;
    (appendTracedPart(sentence, parts), ...);
    writeTraceLine(sentence);
  }
}

}  // namespace veltrano

#endif
