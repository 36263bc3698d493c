#include "settings/settings_nodes.h"

#include <algorithm>

#include "base/trace.h"
#include "settings/child_index.h"
#include "settings/xml_characters.h"
#include "settings/xml_well_formed.h"

namespace veltrano {

namespace {

/// Evaluates the expression, which may be no XPath at all or give a number.
pugi::xpath_node select(const pugi::xml_node& from, const std::string& expression) try {
  const pugi::xpath_query query(expression.c_str());
  const pugi::xpath_node first = query.evaluate_node(from);
  if (!isLayout(first.node())) {
    return first;
  }
  pugi::xpath_node_set all = query.evaluate_node_set(from);
  all.sort();
  for (const pugi::xpath_node& node : all) {
    if (!isLayout(node.node())) {
      return node;
    }
  }
  return {};
} catch (const pugi::xpath_exception& error) {
  traceSkipped("VeltranoXML", "a name is no path expression", error.what());
  return {};
}

bool isDeclared(pugi::xml_node from, std::string_view prefix) {
  if (prefix == "xml") {
    return true;
  }
  const std::string declaration = "xmlns:" + std::string(prefix);
  for (; from; from = from.parent()) {
    if (from.attribute(declaration.c_str())) {
      return true;
    }
  }
  return false;
}

std::size_t depthOf(pugi::xml_node node) {
  std::size_t depth = 0;
  for (; node.type() == pugi::node_element; node = node.parent()) {
    ++depth;
  }
  return depth;
}

/// The next node behind `node` in document order, within `top`.
pugi::xml_node nextNode(pugi::xml_node node, const pugi::xml_node& top) {
  if (node.first_child()) {
    return node.first_child();
  }
  while (node != top && !node.next_sibling()) {
    node = node.parent();
  }
  return node == top ? pugi::xml_node() : node.next_sibling();
}

void removeChildren(pugi::xml_node element) {
  while (element.remove_child(element.first_child())) {
  }
}

void setNodeText(pugi::xml_node node, const std::string& text) {
  switch (node.type()) {
    case pugi::node_element:
      removeChildren(node);
      if (!text.empty()) {
        node.append_child(pugi::node_pcdata).set_value(text.c_str());
      }
      break;
    case pugi::node_cdata:
      // A section cannot hold everything that a text can.
      node.parent().insert_child_after(pugi::node_pcdata, node).set_value(text.c_str());
      node.parent().remove_child(node);
      break;
    case pugi::node_pcdata:
      node.set_value(text.c_str());
      break;
    case pugi::node_comment:
      if (text.find("--") == std::string::npos && !text.ends_with('-')) {
        node.set_value(text.c_str());
      }
      break;
    case pugi::node_pi:
      if (text.find("?>") == std::string::npos) {
        node.set_value(text.c_str());
      }
      break;
    default:
      break;
  }
}

}  // namespace

bool isLayout(const pugi::xml_node& node) {
  return node.type() == pugi::node_pcdata && isBlank(node.value()) &&
         (node.previous_sibling() || node.next_sibling());
}

pugi::xpath_node lookUp(const pugi::xml_node& from, std::string_view expression, ChildIndex& index) {
  if (!from) {
    return {};
  }
  const std::string text(expression);
  if (isQualifiedName(expression)) {
    const pugi::xml_node child = index.find(from, text.c_str());
    return child ? pugi::xpath_node(child) : pugi::xpath_node();
  }
  // The evaluator would take the part before a zero character for the whole.
  return text.find('\0') == std::string::npos && !text.empty() ? select(from, text) : pugi::xpath_node();
}

bool canCreateElement(const pugi::xml_node& parent, std::string_view name) {
  const std::size_t colon = name.find(':');
  return isQualifiedName(name) && depthOf(parent) < deepestNesting &&
         (colon == std::string_view::npos || isDeclared(parent, name.substr(0, colon)));
}

pugi::xml_node createElement(pugi::xml_node parent, std::string_view name) {
  return parent.append_child(std::string(name).c_str());
}

std::string textOf(const pugi::xpath_node& node) {
  if (node.attribute()) {
    return node.attribute().value();
  }
  const pugi::xml_node top = node.node();
  if (top.type() == pugi::node_comment || top.type() == pugi::node_pi) {
    return top.value();
  }
  std::string text;
  for (pugi::xml_node part = top; part; part = nextNode(part, top)) {
    if ((part.type() == pugi::node_pcdata && !isLayout(part)) || part.type() == pugi::node_cdata) {
      text.append(part.value());
    }
  }
  return text;
}

void setText(const pugi::xpath_node& node, std::string_view text) {
  const std::string allowed = withoutForbiddenCharacters(text);
  if (node.attribute()) {
    node.attribute().set_value(allowed.c_str());
  } else {
    setNodeText(node.node(), allowed);
  }
}

std::vector<std::string> childNames(const pugi::xml_node& node) {
  std::vector<std::string> names;
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() == pugi::node_pcdata && isBlank(child.value())) {
      continue;
    }
    std::string_view name = child.type() == pugi::node_element ? child.name() : "";
    name.remove_prefix(name.find(':') + 1);
    names.emplace_back(name);
  }
  return names;
}

bool hasChildElements(const pugi::xml_node& node) {
  const auto children = node.children();
  return std::any_of(children.begin(), children.end(),
                     [](const pugi::xml_node& child) { return child.type() == pugi::node_element; });
}

void removeChild(pugi::xml_node parent, const pugi::xpath_node& node, ChildIndex& index) {
  const pugi::xml_node child = node.node();
  if (!child || child.parent() != parent) {
    return;
  }
  // The line of a pretty-printed file goes with its element.
  const pugi::xml_node before = child.previous_sibling();
  if (isLayout(before) && isLayout(child.next_sibling())) {
    parent.remove_child(before);
  }
  index.removing(child);
  parent.remove_child(child);
}

}  // namespace veltrano
