#include "settings/name_tables.h"

#include <new>

namespace veltrano {

namespace {

/// Fewer children are found as fast by going through them.
constexpr std::size_t manyChildren = 24;

}  // namespace

pugi::xml_node NameTables::find(const pugi::xml_node& parent, std::string_view name) {
  const auto known = tables_.empty() ? tables_.end() : tables_.find(parent.hash_value());
  if (known != tables_.end()) {
    const auto found = known->second.find(name);
    return found == known->second.end() ? pugi::xml_node() : found->second.first;
  }
  pugi::xml_node child = parent.first_child();
  for (std::size_t i = 0; child; child = child.next_sibling(), ++i) {
    // An instruction may have the name as well.
    if (child.type() == pugi::node_element && child.name() == name) {
      return child;
    }
    if (i == manyChildren) {
      try {
        Table table;
        for (pugi::xml_node element = parent.first_child(); element; element = element.next_sibling()) {
          add(table, element);
        }
        tables_.emplace(parent.hash_value(), std::move(table));
        return find(parent, name);
      } catch (const std::bad_alloc&) {
        continue;
      }
    }
  }
  return {};
}

void NameTables::add(Table& table, const pugi::xml_node& element) {
  if (element.type() == pugi::node_element) {
    Children& children = table[element.name()];
    if (children.count++ == 0) {
      children.first = element;
    }
  }
}

void NameTables::added(const pugi::xml_node& element) {
  const auto known = tables_.find(element.parent().hash_value());
  if (known == tables_.end()) {
    return;
  }
  try {
    add(known->second, element);
  } catch (const std::bad_alloc&) {
    tables_.erase(known);
  }
}

void NameTables::removing(const pugi::xml_node& node) {
  const pugi::xml_node child = node.first_child();
  if (child.type() == pugi::node_element || child.next_sibling()) {
    forget();  // elements with tables may lie below it
    return;
  }
  tables_.erase(node.hash_value());
  const auto known = tables_.find(node.parent().hash_value());
  if (known == tables_.end() || node.type() != pugi::node_element) {
    return;
  }
  const auto found = known->second.find(node.name());
  if (found != known->second.end() && --found->second.count == 0) {
    known->second.erase(found);
  } else {
    tables_.erase(known);  // another one is the first now, maybe
  }
}

}  // namespace veltrano
