#ifndef VELTRANO_SETTINGS_CHILD_INDEX_H
#define VELTRANO_SETTINGS_CHILD_INDEX_H

// Finding the children of an element by their names. A document only has lists of children: filling a folder
// with 100,000 keys, each looked up before it is made, would take half a minute.

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include <pugixml.hpp>

namespace veltrano {

/// Keeps the names in one large element that is asked about again and again; others are searched each time.
/// Whoever changes the document must say so. Never throws: without memory it searches.
class ChildIndex {
 public:
  /// The first child element of that name, or an empty node.
  pugi::xml_node find(const pugi::xml_node& parent, const char* name);

  /// An element was added behind all other children of its parent.
  void added(const pugi::xml_node& element);
  /// A node is about to be removed, with all below it.
  void removing(const pugi::xml_node& node);
  /// Any nodes were removed.
  void forget();

 private:
  void build(const pugi::xml_node& parent);
  void add(const pugi::xml_node& child);

  pugi::xml_node parent_;
  std::size_t searches_ = 0;
  struct Children {
    pugi::xml_node first;
    std::size_t count = 0;
  };
  std::unordered_map<std::string_view, Children> byName_;  ///< empty while there is no index
};

}  // namespace veltrano

#endif
