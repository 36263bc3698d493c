#include "settings/xml_parser.h"

#include <expat.h>

#include <memory>

#include "settings/xml_characters.h"

namespace veltrano {

namespace {

// Everything is kept. A fragment, because otherwise the white space around the root would be dropped.
constexpr unsigned keepEverything = pugi::parse_cdata | pugi::parse_comments | pugi::parse_pi |
                                    pugi::parse_ws_pcdata | pugi::parse_escapes | pugi::parse_eol |
                                    pugi::parse_wconv_attribute | pugi::parse_fragment;

/// Decides what is well-formed, which the parser that builds the tree takes lightly: it is four times as fast
/// as this one and has the path expressions.
class StrictParser {
 public:
  ParseResult check(std::string_view text) {
    XML_Parser parser = parser_.get();
    if (parser == nullptr) {
      return ParseResult::outOfMemory;
    }
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser,
        [](void* self, const char*, const char**) {
          auto* const strict = static_cast<StrictParser*>(self);
          if (++strict->depth_ > deepestNesting) {
            strict->stop();
          }
        },
        [](void* self, const char*) { --static_cast<StrictParser*>(self)->depth_; });
    XML_SetStartDoctypeDeclHandler(parser, [](void* self, const char*, const char*, const char*, int) {
      static_cast<StrictParser*>(self)->stop();
    });
    // The parser counts in int.
    constexpr std::size_t pieceSize = std::size_t{1} << 30U;
    for (bool last = false; !last;) {
      const std::string_view piece = text.substr(0, pieceSize);
      text.remove_prefix(piece.size());
      last = text.empty();
      if (XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), last ? XML_TRUE : XML_FALSE) !=
          XML_STATUS_OK) {
        return XML_GetErrorCode(parser) == XML_ERROR_NO_MEMORY ? ParseResult::outOfMemory
                                                               : ParseResult::malformed;
      }
    }
    return ParseResult::parsed;
  }

 private:
  void stop() { XML_StopParser(parser_.get(), XML_FALSE); }

  const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser_{XML_ParserCreate("UTF-8"),
                                                                        XML_ParserFree};
  std::size_t depth_ = 0;
};

/// One name without a colon.
bool isPlainName(std::string_view name) {
  // The parser knows the letters of all scripts, but not where the name was to end.
  return isAsciiName(name) || (maybeElementName(name) &&
                               StrictParser().check("<" + std::string(name) + "/>") == ParseResult::parsed);
}

}  // namespace

ParseResult parseXml(std::string& text, std::size_t declarationSize, pugi::xml_document& document) {
  if (const ParseResult result = StrictParser().check(text); result != ParseResult::parsed) {
    return result;
  }
  // This parser puts a zero over the last byte: it gets the one that ends the string, or it would lose a line
  // end.
  const auto result = document.load_buffer_inplace(
      text.data() + declarationSize, text.size() - declarationSize + 1, keepEverything, pugi::encoding_utf8);
  if (result.status == pugi::status_out_of_memory) {
    return ParseResult::outOfMemory;
  }
  return result ? ParseResult::parsed : ParseResult::malformed;
}

bool isElementName(std::string_view name) {
  const std::size_t colon = name.find(':');
  const std::string_view local = colon == std::string_view::npos ? name : name.substr(colon + 1);
  return (colon == std::string_view::npos || isPlainName(name.substr(0, colon))) && isPlainName(local) &&
         local.find(':') == std::string_view::npos;
}

}  // namespace veltrano
