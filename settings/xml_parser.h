#ifndef VELTRANO_SETTINGS_XML_PARSER_H
#define VELTRANO_SETTINGS_XML_PARSER_H

// Reads settings files strictly: what is not well-formed is refused, and so are document types, which could
// name files to fetch and entities that grow.

#include <cstddef>
#include <string>
#include <string_view>

#include <pugixml.hpp>

namespace veltrano {

/// Elements may be nested this deep, as in the parsers of other vendors, which must read what is saved here.
constexpr std::size_t deepestNesting = 256;

enum class ParseResult { parsed, malformed, outOfMemory };

/// Reads a whole document in UTF-8, whatever encoding its declaration names, into `document`. The document
/// points into `text`, which is changed and must live as long. All of it becomes nodes, white space between
/// elements and around the root included, but for the declaration, which takes the first `declarationSize`
/// bytes. If the result is not `parsed`, `document` is undefined until it is reset.
ParseResult parseXml(std::string& text, std::size_t declarationSize, pugi::xml_document& document);

/// True for a name that an element can have: one XML name, or two with a colon between them.
bool isElementName(std::string_view name);

}  // namespace veltrano

#endif
