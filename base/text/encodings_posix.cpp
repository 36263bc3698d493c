#include "base/text/encodings.h"

#include "base/text/iconv_posix.h"

namespace veltrano {

namespace {

/// Codes that these code pages leave unassigned stand for the C1 controls on Windows.
bool hasControls(const std::string& systemName) {
  return systemName.starts_with("CP125");
}

bool isControl(char16_t c) {
  return c >= 0x80 && c < 0xA0;
}

}  // namespace

std::optional<std::u16string> decodeText(std::string_view encoding, std::string_view bytes) {
  const std::string name = systemEncodingName(encoding);
  Converter converter(name, nativeUtf16);
  const auto otherwise = [&](std::string_view rest, std::string& result) -> std::size_t {
    const auto unit = static_cast<char16_t>(static_cast<unsigned char>(rest.front()));
    if (!hasControls(name) || !isControl(unit)) {
      return 0;
    }
    result.append(reinterpret_cast<const char*>(&unit), sizeof unit);
    return 1;
  };
  std::string units;
  if (!converter || !converter.convert(bytes, units, otherwise)) {
    return std::nullopt;
  }
  std::u16string text(units.size() / sizeof(char16_t), u'\0');
  units.copy(reinterpret_cast<char*>(text.data()), units.size());
  return text;
}

std::optional<std::string> encodeText(std::string_view encoding, std::u16string_view text) {
  const std::string name = systemEncodingName(encoding);
  Converter converter(nativeUtf16, name);
  const std::string_view units(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t));
  const auto otherwise = [&](std::string_view rest, std::string& result) -> std::size_t {
    const char16_t unit = text[text.size() - rest.size() / sizeof(char16_t)];
    if (!hasControls(name) || !isControl(unit)) {
      return 0;
    }
    result.push_back(static_cast<char>(unit));
    return sizeof unit;
  };
  std::string bytes;
  if (!converter || !converter.convert(units, bytes, otherwise)) {
    return std::nullopt;
  }
  return bytes;
}

}  // namespace veltrano
