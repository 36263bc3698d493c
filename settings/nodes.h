#ifndef VELTRANO_SETTINGS_NODES_H
#define VELTRANO_SETTINGS_NODES_H

// Looking up, reading, writing and making the nodes that folders and keys are. A node may be an attribute,
// since names are XPath expressions: pugi::xpath_node stands for either.

#include <string>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

namespace veltrano {

class NameTables;

/// True for white space between elements: it is kept in the file and does not count as a child node. An
/// element's only text is its value, even if it is blank.
bool isLayout(const pugi::xml_node& node);

/// The first node in document order that the XPath expression selects, seen from `from`; an empty one if it
/// selects nothing or is not an expression. Plain element names take a direct path to the same result.
pugi::xpath_node lookUp(const pugi::xml_node& from, std::string_view expression, NameTables& names);

/// True if an element of this name can be made below `parent`: the name is valid, its prefix declared there,
/// and the document not too deep already.
bool canCreateElement(const pugi::xml_node& parent, std::string_view name);
/// Adds an element after all others, in an indented file on a line of its own. The name must be one that
/// canCreateElement allows.
pugi::xml_node createElement(pugi::xml_node parent, std::string_view name);

/// The text in a node and below it, without white space between elements.
std::string textOf(const pugi::xpath_node& node);
/// Replaces what is in the node by the text, without the characters that XML cannot hold. No-op for nodes
/// that cannot hold it (a comment with "--" in it).
void setText(const pugi::xpath_node& node, std::string_view text);

/// Local names of the child nodes but for white space between elements, in document order; empty for nodes
/// without a name.
std::vector<std::string> childNames(const pugi::xml_node& node);

bool hasChildElements(const pugi::xml_node& node);

/// Removes a child of `parent`; no-op if `node` is not one.
void removeChild(pugi::xml_node parent, const pugi::xpath_node& node, NameTables& names);

}  // namespace veltrano

#endif
