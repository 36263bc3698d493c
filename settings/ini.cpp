#include "veltrano/ini.h"

#include <array>
#include <optional>

#include "base/files/whole.h"
#include "base/text/code_page.h"
#include "base/trace.h"
#include "settings/ini_lines.h"

namespace veltrano {

namespace {

/// Names the member in the trace.
struct IniMember : TracedMember {
  explicit IniMember(const char* name) : TracedMember("VeltranoINI", name) {}
};

std::u16string keyLine(std::u16string_view key, std::u16string_view value) {
  return std::u16string(key).append(1, u'=').append(value);
}

/// Writes the text and one CR LF.
void writeText(const std::filesystem::path& file, std::string_view text) {
  constexpr std::string_view lineEnd = "\r\n";
  if (text.ends_with(lineEnd)) {
    text.remove_suffix(lineEnd.size());
  }
  const std::array<std::string_view, 2> pieces = {text, lineEnd};
  replaceFile(file, pieces, Durability::power);
}

}  // namespace

std::u16string VeltranoINI::GetIniValue(const std::filesystem::path& filename, std::u16string_view Key,
                                        std::u16string_view Default) {
  const IniMember member("GetIniValue");
  // Bytes, not converted text: only the one value need be converted.
  const std::string text = readWholeFile(filename).value_or(std::string());
  const auto line = findLine(std::string_view(text), IniKey(Key));
  return line ? ansiToUtf16(std::string_view(text).substr(line->value, line->end - line->value))
              : std::u16string(Default);
}

void VeltranoINI::SetIniValue(const std::filesystem::path& filename, std::u16string_view Key,
                              std::u16string_view Value) {
  const IniMember member("SetIniValue");
  const auto text = readWholeFile(filename);
  std::error_code ignored;
  if (!text && std::filesystem::exists(filename, ignored)) {
    // Going on as with a missing file would put one line in place of all settings.
    trace("Nothing is set: the file is there but cannot be read.");
    return;
  }
  const std::string_view old = text ? std::string_view(*text) : std::string_view();
  const std::string line = utf16ToAnsi(keyLine(Key, Value));
  writeText(filename, withLine(old, IniKey(Key), std::string_view(line)));
}

std::u16string VeltranoINI::ChangeValue(std::u16string_view xFileBuffer, std::u16string_view Key,
                                        std::u16string_view Value) {
  return withLine(xFileBuffer, IniKey(Key), std::u16string_view(keyLine(Key, Value)));
}

std::u16string VeltranoINI::GetValue(std::u16string_view xFileBuffer, std::u16string_view Key,
                                     std::u16string_view Default) {
  const auto line = findLine(xFileBuffer, IniKey(Key));
  return std::u16string(line ? xFileBuffer.substr(line->value, line->end - line->value) : Default);
}

std::u16string VeltranoINI::OpenFile(const std::filesystem::path& xFilename) {
  const IniMember member("OpenFile");
  return ansiToUtf16(readWholeFile(xFilename).value_or(std::string()));
}

void VeltranoINI::CloseFile(const std::filesystem::path& filename, std::u16string_view xText) {
  const IniMember member("CloseFile");
  writeText(filename, utf16ToAnsi(xText));
}

}  // namespace veltrano
