#include "settings/nodes.h"

#include <algorithm>

#include "base/trace.h"
#include "settings/name_tables.h"
#include "settings/xml_characters.h"
#include "settings/xml_parser.h"

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
  trace("The name \"", expression, "\" is not a path expression: ", error.what(), ".");
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

/// True for white space that starts a line.
bool isIndentation(const pugi::xml_node& node) {
  const std::string_view text = node.value();
  return node.type() == pugi::node_pcdata && isBlank(text) && text.find('\n') != std::string_view::npos;
}

std::size_t depthOf(pugi::xml_node node) {
  std::size_t depth = 0;
  for (; node.type() == pugi::node_element; node = node.parent()) {
    ++depth;
  }
  return depth;
}

/// The next node after `node` in document order, within `top`.
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

pugi::xpath_node lookUp(const pugi::xml_node& from, std::string_view expression, NameTables& names) {
  if (!from || expression.empty()) {
    return {};
  }
  // The name of an element is an expression that selects the elements of that name.
  if (const pugi::xml_node child = names.find(from, expression)) {
    return child;
  }
  // The evaluator would take the part before a zero character for the whole.
  const bool evaluate = !maybeElementName(expression) && expression.find('\0') == std::string_view::npos;
  return evaluate ? select(from, std::string(expression)) : pugi::xpath_node();
}

bool canCreateElement(const pugi::xml_node& parent, std::string_view name) {
  const std::size_t colon = name.find(':');
  return isElementName(name) && depthOf(parent) < deepestNesting &&
         (colon == std::string_view::npos || isDeclared(parent, name.substr(0, colon)));
}

pugi::xml_node createElement(pugi::xml_node parent, std::string_view name) {
  const std::string elementName(name);
  const pugi::xml_node last = parent.last_child();
  if (!isIndentation(last)) {
    return parent.append_child(elementName.c_str());
  }
  // A line of its own, indented as the element before it or, without one, as the closing tag, which keeps its
  // line.
  const pugi::xml_node sibling = last.previous_sibling();
  const pugi::xml_node before = isIndentation(sibling.previous_sibling()) ? sibling.previous_sibling() : last;
  parent.insert_child_before(pugi::node_pcdata, last).set_value(before.value());
  return parent.insert_child_before(elementName.c_str(), last);
}

std::string textOf(const pugi::xpath_node& node) {
  if (node.attribute()) {
    return node.attribute().value();
  }
  const pugi::xml_node top = node.node();
  if (top.type() == pugi::node_comment || top.type() == pugi::node_pi) {
    return top.value();
  }
  const pugi::xml_node only = top.first_child();
  if (only.type() == pugi::node_pcdata && !only.next_sibling()) {
    return only.value();  // as in nearly all keys
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
  if (allowed.size() != text.size()) {
    trace("Characters that XML cannot hold are left out of the value of \"",
          node.attribute() ? node.attribute().name() : node.node().name(), "\".");
  }
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

void removeChild(pugi::xml_node parent, const pugi::xpath_node& node, NameTables& names) {
  const pugi::xml_node child = node.node();
  if (!child || child.parent() != parent) {
    return;
  }
  // The line of a pretty-printed file goes with its element.
  const pugi::xml_node before = child.previous_sibling();
  if (isLayout(before) && isLayout(child.next_sibling())) {
    parent.remove_child(before);
  }
  names.removing(child);
  parent.remove_child(child);
}

}  // namespace veltrano
