#include "settings/xml_parser.h"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "settings/xml_characters.h"

namespace veltrano {

namespace {

/// Builds nodes from what the parser reports. The parser is C: no exception may pass it, so a report that
/// fails stops it.
class TreeBuilder {
 public:
  explicit TreeBuilder(pugi::xml_document& document)
      : parser_(XML_ParserCreate("UTF-8"), XML_ParserFree), parent_(document) {}

  ParseResult parse(std::string_view text) {
    if (!parser_) {
      return ParseResult::outOfMemory;
    }
    XML_Parser parser = parser_.get();
    XML_SetUserData(parser, this);
    XML_SetElementHandler(parser, report<&TreeBuilder::startElement, const char*, const char**>,
                          report<&TreeBuilder::endElement, const char*>);
    XML_SetCharacterDataHandler(parser, report<&TreeBuilder::characters, const char*, int>);
    // White space around the root comes as what nobody asked for; the declaration must not.
    XML_SetDefaultHandler(parser, report<&TreeBuilder::characters, const char*, int>);
    XML_SetXmlDeclHandler(parser, [](void*, const char*, const char*, int) {});
    XML_SetCdataSectionHandler(parser, report<&TreeBuilder::startSection>, report<&TreeBuilder::endSection>);
    XML_SetCommentHandler(parser, report<&TreeBuilder::comment, const char*>);
    XML_SetProcessingInstructionHandler(parser, report<&TreeBuilder::instruction, const char*, const char*>);
    XML_SetStartDoctypeDeclHandler(
        parser, report<&TreeBuilder::documentType, const char*, const char*, const char*, int>);
    // The parser counts in int.
    constexpr std::size_t pieceSize = std::size_t{1} << 30U;
    for (bool last = false; !last;) {
      const std::string_view piece = text.substr(0, pieceSize);
      text.remove_prefix(piece.size());
      last = text.empty();
      if (XML_Parse(parser, piece.data(), static_cast<int>(piece.size()), last ? XML_TRUE : XML_FALSE) !=
          XML_STATUS_OK) {
        const bool memory = outOfMemory_ || XML_GetErrorCode(parser) == XML_ERROR_NO_MEMORY;
        return memory ? ParseResult::outOfMemory : ParseResult::malformed;
      }
    }
    return flushText() ? ParseResult::parsed : ParseResult::outOfMemory;
  }

 private:
  /// Hands a report of the parser to a member, which returns false to stop.
  template <auto member, typename... Arguments>
  static void report(void* self, Arguments... arguments) noexcept {
    auto* const builder = static_cast<TreeBuilder*>(self);
    try {
      if ((builder->*member)(arguments...)) {
        return;
      }
    } catch (const std::bad_alloc&) {
      builder->outOfMemory_ = true;
    }
    XML_StopParser(builder->parser_.get(), XML_FALSE);
  }

  /// False if the tree lacked memory for a node or its text.
  bool took(bool taken) {
    outOfMemory_ |= !taken;
    return taken;
  }

  bool append(pugi::xml_node_type type, const char* name, const char* value) {
    pugi::xml_node node = parent_.append_child(type);
    return took((*name == '\0' || node.set_name(name)) && (node && node.set_value(value)));
  }

  bool flushText() {
    if (text_.empty()) {
      return true;
    }
    if (depth_ == 0) {
      unifyLineEnds();
    }
    const bool taken = append(pugi::node_pcdata, "", text_.c_str());
    text_.clear();
    return taken;
  }

  /// The parser does it everywhere but around the root.
  void unifyLineEnds() {
    std::string unified;
    for (std::size_t i = 0; i < text_.size(); ++i) {
      const bool pair = text_[i] == '\r' && text_.compare(i, 2, "\r\n") == 0;
      unified.push_back(text_[i] == '\r' ? '\n' : text_[i]);
      i += pair ? 1 : 0;
    }
    text_ = unified;
  }

  bool startElement(const char* name, const char** attributes) {
    if (!flushText() || ++depth_ > deepestNesting) {
      return false;
    }
    parent_ = parent_.append_child(name);
    bool taken = !parent_.empty() && *parent_.name() != '\0';
    for (; taken && *attributes != nullptr; attributes += 2) {
      pugi::xml_attribute attribute = parent_.append_attribute(attributes[0]);
      taken = attribute && attribute.set_value(attributes[1]);
    }
    return took(taken);
  }

  bool endElement(const char* /*name*/) {
    const bool taken = flushText();
    parent_ = parent_.parent();
    --depth_;
    return taken;
  }

  bool characters(const char* text, int size) {
    text_.append(text, static_cast<std::size_t>(size));
    return true;
  }

  bool startSection() { return flushText(); }
  bool endSection() {
    const bool taken = append(pugi::node_cdata, "", text_.c_str());
    text_.clear();
    return taken;
  }

  bool comment(const char* text) { return flushText() && append(pugi::node_comment, "", text); }

  bool instruction(const char* target, const char* text) {
    return flushText() && append(pugi::node_pi, target, text);
  }

  bool documentType(const char* /*name*/, const char* /*system*/, const char* /*id*/, int /*hasSubset*/) {
    return false;
  }

  const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser_;
  pugi::xml_node parent_;
  std::size_t depth_ = 0;
  std::string text_;  ///< what was reported since the last node
  bool outOfMemory_ = false;
};

/// One name without a colon.
bool isPlainName(std::string_view name) {
  if (isAsciiName(name)) {
    return true;
  }
  // The parser knows the letters of all scripts.
  pugi::xml_document document;
  return parseXml("<" + std::string(name) + "/>", document) == ParseResult::parsed &&
         document.document_element().name() == name;
}

}  // namespace

ParseResult parseXml(std::string_view text, pugi::xml_document& document) {
  return TreeBuilder(document).parse(text);
}

bool isElementName(std::string_view name) {
  const std::size_t colon = name.find(':');
  const std::string_view local = colon == std::string_view::npos ? name : name.substr(colon + 1);
  return (colon == std::string_view::npos || isPlainName(name.substr(0, colon))) && isPlainName(local) &&
         local.find(':') == std::string_view::npos;
}

}  // namespace veltrano
