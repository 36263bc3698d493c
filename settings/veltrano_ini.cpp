#include "settings/veltrano_ini.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/os/files.h"
#include "base/trace.h"
#include "settings/ini_lines.h"

namespace veltrano {

namespace {

constexpr std::string_view lineBreak = "\r\n";
constexpr std::size_t pieceSize = std::size_t{256} * 1024;

/// Looks for a key in a text that arrives in pieces, holding no more of it than one line.
class PiecewiseSearch {
 public:
  explicit PiecewiseSearch(std::string_view key) : key_(key) {}

  /// False when nothing more is needed.
  bool take(std::string_view piece) {
    const std::size_t rest = unfinished_.empty() ? 0 : finishLine(piece);
    piece.remove_prefix(rest);
    if (!value_ && !piece.empty()) {
      const std::size_t lastBreak = piece.rfind(lineBreak);
      const std::size_t whole = lastBreak == std::string_view::npos ? 0 : lastBreak + lineBreak.size();
      look(piece.substr(0, whole));
      unfinished_.append(piece.substr(whole));
    }
    return !value_;
  }

  /// The value, after the last piece.
  std::optional<std::string> finish() {
    if (!value_) {
      look(unfinished_);
    }
    return std::move(value_);
  }

 private:
  /// Completes the line that earlier pieces began; returns how much of this one it took.
  std::size_t finishLine(std::string_view piece) {
    std::size_t taken = piece.size();
    if (unfinished_.back() == '\r' && piece.starts_with('\n')) {
      taken = 1;
    } else if (const std::size_t at = piece.find(lineBreak); at != std::string_view::npos) {
      taken = at + lineBreak.size();
    }
    unfinished_.append(piece.substr(0, taken));
    if (unfinished_.ends_with(lineBreak)) {
      look(unfinished_);
      unfinished_.clear();
    }
    return taken;
  }

  void look(std::string_view lines) {
    if (const auto line = key_.findLine(lines)) {
      value_ = lines.substr(line->value, line->end - line->value);
    }
  }

  IniKey key_;
  std::string unfinished_;
  std::optional<std::string> value_;
};

}  // namespace

std::string VeltranoINI::GetIniValue(const std::filesystem::path& filename, std::string_view Key,
                                     std::string_view Default) {
  PiecewiseSearch search(Key);
  if (!readFileInPieces(filename, [&search](std::string_view piece) { return search.take(piece); })) {
    return std::string(Default);
  }
  return search.finish().value_or(std::string(Default));
}

void VeltranoINI::SetIniValue(const std::filesystem::path& filename, std::string_view Key,
                              std::string_view Value) {
  const auto text = readWholeFile(filename);
  std::error_code ignored;
  if (!text && std::filesystem::exists(filename, ignored)) {
    // Going on as with a missing file would put one line in place of all settings.
    traceSkipped("SetIniValue", "the file cannot be read");
    return;
  }
  CloseFile(filename, ChangeValue(text.value_or(std::string()), Key, Value));
}

std::string VeltranoINI::ChangeValue(std::string_view xFileBuffer, std::string_view Key,
                                     std::string_view Value) {
  const IniKey key(Key);
  std::string result;
  result.reserve(xFileBuffer.size() + lineBreak.size() + Key.size() + 1 + Value.size());
  const auto appendLine = [&] { result.append(Key).append(1, '=').append(Value); };
  bool found = false;
  // By pieces, so that what was searched is still in the processor's cache when it is copied.
  for (std::size_t at = 0; at < xFileBuffer.size();) {
    const std::size_t pieceEnd = std::min(at + pieceSize, xFileBuffer.size());
    const auto line = key.findLine(xFileBuffer, at, pieceEnd);
    result.append(xFileBuffer.substr(at, (line ? line->begin : pieceEnd) - at));
    if (line) {
      appendLine();
      found = true;
    }
    at = line ? line->end : pieceEnd;
  }
  if (!found) {
    // Also when the text ends with a line break or is empty: an empty line comes before the new one then.
    result.append(lineBreak);
    appendLine();
  }
  return result;
}

std::string VeltranoINI::GetValue(std::string_view xFileBuffer, std::string_view Key,
                                  std::string_view Default) {
  const auto line = IniKey(Key).findLine(xFileBuffer);
  return std::string(line ? xFileBuffer.substr(line->value, line->end - line->value) : Default);
}

std::string VeltranoINI::OpenFile(const std::filesystem::path& xFilename) {
  return readWholeFile(xFilename).value_or(std::string());
}

void VeltranoINI::CloseFile(const std::filesystem::path& filename, std::string_view xText) {
  if (xText.ends_with(lineBreak)) {
    xText.remove_suffix(lineBreak.size());
  }
  const std::array<std::string_view, 2> pieces = {xText, lineBreak};
  replaceFile(filename, pieces, Durability::power);
}

}  // namespace veltrano
