#include "settings/child_index.h"

#include <new>

namespace veltrano {

namespace {

// Fewer children are found faster by going through them.
constexpr std::size_t manyChildren = 1000;
// Now and then a search looks whether it has many children before it; the others cost what they must. An odd
// number, since folders and keys are searched in turn.
constexpr std::size_t searchesBetweenLooks = 257;

bool hasManyChildren(const pugi::xml_node& parent) {
  std::size_t count = 0;
  for (pugi::xml_node child = parent.first_child(); child && count < manyChildren;
       child = child.next_sibling()) {
    ++count;
  }
  return count == manyChildren;
}

}  // namespace

pugi::xml_node ChildIndex::find(const pugi::xml_node& parent, const char* name) {
  if (byName_.empty() || parent != parent_) {
    if (++searches_ % searchesBetweenLooks == 0 && hasManyChildren(parent)) {
      build(parent);
    }
  }
  if (!byName_.empty() && parent == parent_) {
    const auto found = byName_.find(name);
    return found == byName_.end() ? pugi::xml_node() : found->second.first;
  }
  pugi::xml_node child = parent.child(name);
  // An instruction may have the name as well.
  while (child && child.type() != pugi::node_element) {
    child = child.next_sibling(name);
  }
  return child;
}

void ChildIndex::build(const pugi::xml_node& parent) try {
  forget();
  parent_ = parent;
  for (const pugi::xml_node& child : parent.children()) {
    if (child.type() == pugi::node_element) {
      add(child);
    }
  }
} catch (const std::bad_alloc&) {
  forget();
}

void ChildIndex::add(const pugi::xml_node& child) {
  Children& children = byName_[child.name()];
  if (children.count++ == 0) {
    children.first = child;
  }
}

void ChildIndex::added(const pugi::xml_node& element) try {
  if (!byName_.empty() && element.parent() == parent_) {
    add(element);
  }
} catch (const std::bad_alloc&) {
  forget();
}

void ChildIndex::removing(const pugi::xml_node& node) {
  if (node.parent() != parent_) {
    // The indexed element may lie below it.
    forget();
    return;
  }
  const auto found = node.type() == pugi::node_element ? byName_.find(node.name()) : byName_.end();
  if (found != byName_.end()) {
    if (found->second.count > 1) {
      forget();  // another one may be the first now
    } else {
      byName_.erase(found);
    }
  }
}

void ChildIndex::forget() {
  parent_ = pugi::xml_node();
  byName_.clear();
}

}  // namespace veltrano
