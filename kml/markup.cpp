#include "kml/markup.h"

#include "base/numbers/numbers.h"
#include "base/text/code_page.h"

namespace veltrano {

namespace {

void appendReference(std::string& target, char32_t code) {
  target.append("&#").append(integerText(code).view()).append(1, ';');
}

}  // namespace

std::string characterData(std::string_view ansi) {
  constexpr std::string_view markup = "&<>";
  const std::u16string text = ansiToUtf16(ansi);
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t code = nextCharacter(text, i);
    if (code >= 0x7F || (code >= ' ' && markup.find(static_cast<char>(code)) != std::string_view::npos)) {
      appendReference(result, code);
    } else if (code >= ' ') {
      result.push_back(static_cast<char>(code));
    }
  }
  return result;
}

void appendPiece(std::string& target, const Replaced& piece) {
  std::string_view rest = piece.text;
  for (std::size_t at = 0; (at = rest.find(piece.what)) != std::string_view::npos;
       rest.remove_prefix(at + piece.what.size())) {
    target.append(rest.substr(0, at)).append(piece.with);
  }
  target.append(rest);
}

}  // namespace veltrano
