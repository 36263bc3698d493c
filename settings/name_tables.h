#ifndef VELTRANO_SETTINGS_NAME_TABLES_H
#define VELTRANO_SETTINGS_NAME_TABLES_H

// Finding the children of an element by their names. A document only has lists of children: filling a folder
// with 100,000 keys, each looked up before it is made, would take half a minute.

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include <pugixml.hpp>

namespace veltrano {

/// A table of names for each element of many children, made when a name is first looked up in it. The code
/// that changes the document must say so. Without memory for a table the children are searched one by one.
class NameTables {
 public:
  /// The first child element of that name, or an empty node.
  pugi::xml_node find(const pugi::xml_node& parent, std::string_view name);

  /// An element was added after all other elements of its parent.
  void added(const pugi::xml_node& element);
  /// A node is about to be removed, with all below it.
  void removing(const pugi::xml_node& node);
  /// Any nodes were removed.
  void forget() { tables_.clear(); }

 private:
  struct Children {
    pugi::xml_node first;
    std::size_t count = 0;
  };
  /// The names are those of the document.
  using Table = std::unordered_map<std::string_view, Children>;

  static void add(Table& table, const pugi::xml_node& element);

  std::unordered_map<std::size_t, Table> tables_;  ///< by the parent's hash, which is unique
};

}  // namespace veltrano

#endif
