#include "base/trace.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <utility>

#include "base/files/file.h"
#include "base/files/paths.h"
#include "base/os/clock.h"
#include "base/os/host.h"
#include "base/os/trace_output.h"
#include "base/text/utf.h"
#include "veltrano/text.h"
#include "veltrano/version.h"

namespace veltrano {

namespace {

/// Where lines go.
struct Target {
  enum class Kind { off, standardError, debugOutput, file };
  Kind kind = Kind::off;
  std::filesystem::path file;
};

/// Without blanks around it: `set VELTRANO_TRACE=stderr & cscript ...` leaves one.
std::filesystem::path trimmed(const std::filesystem::path& setting) {
  std::filesystem::path::string_type text = setting.native();
  const auto isBlank = [](auto c) { return c == ' '; };
  text.erase(std::find_if_not(text.rbegin(), text.rend(), isBlank).base(), text.end());
  text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), isBlank));
  return text;
}

Target targetOf(const std::filesystem::path& setting) {
  if (setting.empty() || setting == "off") {
    return {};
  }
  if (setting == "stderr") {
    return {Target::Kind::standardError, {}};
  }
  if (setting == "debug") {
    return {Target::Kind::debugOutput, {}};
  }
  // A host may change its current folder later.
  std::error_code error;
  const auto file = std::filesystem::absolute(setting, error);
  return {Target::Kind::file, error ? setting : file};
}

const Target& target() {
  // Never destroyed: objects that the host destroys at its end may still have something to say.
  static const Target& found = *new Target(targetOf(trimmed(traceSetting())));
  return found;
}

thread_local const TracedMember* currentlyTraced = nullptr;

void write(std::string line) {
  if (target().kind == Target::Kind::debugOutput) {
    writeDebugOutput(line);
    return;
  }
  line += systemLineEnd;
  if (target().kind == Target::Kind::standardError) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
    return;
  }
  // Opened anew for each line, so that a user may move or delete the file meanwhile; and written in one piece, so
  // that lines of several processes never mix.
  writeInTurn([&line] {
    if (auto file = File::open(target().file, Opening::appendShared)) {
      file->write(line);
    }
  });
}

bool endsLineOrControls(char16_t unit) {
  constexpr char16_t firstPrintable = u' ';
  constexpr char16_t firstControlAbove = u'\x7F';
  constexpr char16_t lastControlAbove = u'\x9F';
  return unit < firstPrintable || (unit >= firstControlAbove && unit <= lastControlAbove) ||
         unit == u'\u2028' || unit == u'\u2029';
}

/// One line of UTF-8, whatever names hold: without control characters and not endless.
std::string asOneLine(std::string_view text) {
  constexpr std::size_t longest = 4000;
  std::u16string line = utf8ToUtf16(text);
  if (line.size() > longest) {
    line.resize(longest);
    line += u" ...";
  }
  std::ranges::replace_if(line, endsLineOrControls, u' ');
  return utf16ToUtf8(line);
}

std::string prefix() {
  const LocalTime now = localTime();
  const ProcessAndThread caller = processAndThread();
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d.%03d %lu/%lu ", now.year, now.month,
                now.day, now.hour, now.minute, now.second, now.millisecond, caller.process, caller.thread);
  return text.data();
}

void writeLine(const std::string& subject, std::string_view sentence) {
  std::string line = pathToUtf8(hostExecutable().filename());
  line.append(" ").append(subject).append(": ").append(sentence);
  write(prefix() + asOneLine(line));
}

/// Said once: what else a reader of the trace wants to know first.
void introduce() {
  static const bool introduced = [] {
    std::string sentence =
        std::string("Version ") + versionText + ", " + std::to_string(8 * sizeof(void*)) + " bits, from ";
    appendTraced(sentence, libraryFolder());
    sentence.append(", in the host ");
    appendTraced(sentence, hostExecutable());
    sentence += ", code page " + codePage() + ".";
    writeLine("VeltranoFrameWorkDLL", sentence);
    return true;
  }();
  static_cast<void>(introduced);
}

}  // namespace

std::string currentMember() {
  if (currentlyTraced == nullptr) {
    return "VeltranoFrameWorkDLL";
  }
  const TracedMember& current = *currentlyTraced;
  std::string name;
  if (current.narrowClass_ != nullptr) {
    name = current.narrowClass_;
  } else {
    const std::wstring_view wide = current.wideClass_;
    name.assign(wide.begin(), wide.end());
  }
  return name.append(".").append(current.member_);
}

bool readTraceState() noexcept {
  try {
    const bool on = target().kind != Target::Kind::off;
    traceState = on ? TraceState::on : TraceState::off;
    return on;
  } catch (const std::exception&) {
    return false;  // Memory is short: asked again by the next line.
  }
}

void TracedMember::enter() noexcept {
  outer_ = std::exchange(currentlyTraced, this);
}

void TracedMember::leave() const noexcept {
  currentlyTraced = outer_;
}

void appendTraced(std::string& sentence, std::string_view text) {
  const bool isUtf8 = utf16ToUtf8(utf8ToUtf16(text)) == text;
  sentence += isUtf8 ? std::string(text) : ansiToUtf8(text);
}
void appendTraced(std::string& sentence, std::u16string_view text) {
  sentence += utf16ToUtf8(text);
}
void appendTraced(std::string& sentence, const std::filesystem::path& file) {
  sentence += '"';
  // Names of files need not be UTF-8 where they are bytes.
  appendTraced(sentence, std::string_view(pathToUtf8(file)));
  sentence += '"';
}

void writeTraceLine(std::string_view sentence) {
  introduce();
  writeLine(currentMember(), sentence);
}

}  // namespace veltrano
