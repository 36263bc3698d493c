#include "settings/xml_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

#include "base/numbers/numbers.h"
#include "base/text/utf.h"

namespace veltrano {

namespace {

enum Need : std::uint8_t { inText = 1, inAttribute = 2, inVerbatim = 4, inNarrow = 8 };

/// Where a byte cannot be copied as it is. The zero at the end of a text never can.
constexpr auto needs = [] {
  std::array<std::uint8_t, 256> table{};
  table['\0'] = inText | inAttribute | inVerbatim;
  table['&'] = inText | inAttribute;
  table['<'] = inText | inAttribute;
  table['>'] = inText;  // "]]>" must not come about
  table['"'] = inAttribute;
  table['\t'] = inAttribute;
  table['\n'] = inText | inAttribute | inVerbatim;
  table['\r'] = inText | inAttribute | inVerbatim;
  for (std::size_t lead = 0xC0; lead < table.size(); ++lead) {
    table[lead] = inNarrow;  // the encoding may lack it
  }
  return table;
}();

class Writer {
 public:
  Writer(const XmlForm& form, std::u32string_view missing, std::size_t sizeHint)
      : missing_(missing),
        lineEnd_(form.crlf ? "\r\n" : "\n"),
        always_(missing.empty() ? 0U : unsigned{inNarrow}) {
    text_.reserve(sizeHint);
    text_ = form.declaration;
  }

  /// Goes from node to node without recursion. Each question to the document is a call into another library,
  /// and a large store has hundreds of thousands of nodes: none is asked twice, and nodes are tested by their
  /// type alone.
  void write(const pugi::xml_document& document) {
    pugi::xml_node node = document.first_child();
    for (;;) {
      pugi::xml_node next = open(node);
      while (next.type() == pugi::node_null) {
        next = node.next_sibling();
        if (next.type() != pugi::node_null) {
          break;
        }
        node = node.parent();
        if (node.type() != pugi::node_element) {
          return;
        }
        close(node.name());
      }
      node = next;
    }
  }

  /// Empty if it is not complete.
  std::optional<std::string> take() { return complete_ ? std::optional(std::move(text_)) : std::nullopt; }

 private:
  /// Writes what comes before the children, and returns the first one; or writes the whole node.
  pugi::xml_node open(const pugi::xml_node& node) {
    switch (node.type()) {
      case pugi::node_element:
        return openElement(node);
      case pugi::node_pcdata:
        escaped(node.value(), inText);
        break;
      case pugi::node_cdata:
        text_.append("<![CDATA[");
        verbatim(node.value());
        text_.append("]]>");
        break;
      case pugi::node_comment:
        text_.append("<!--");
        verbatim(node.value());
        text_.append("-->");
        break;
      case pugi::node_pi:
        text_.append("<?");
        verbatim(node.name());
        if (*node.value() != '\0') {
          text_.append(" ");
          verbatim(node.value());
        }
        text_.append("?>");
        break;
      default:
        break;
    }
    return {};
  }

  pugi::xml_node openElement(const pugi::xml_node& element) {
    const char* const elementName = element.name();
    text_.append("<");
    verbatim(elementName);
    for (auto attribute = element.first_attribute(); attribute; attribute = attribute.next_attribute()) {
      text_.append(" ");
      verbatim(attribute.name());
      text_.append("=\"");
      escaped(attribute.value(), inAttribute);
      text_.append("\"");
    }
    const pugi::xml_node child = element.first_child();
    const pugi::xml_node_type childType = child.type();
    if (childType == pugi::node_null) {
      text_.append("/>");
      return {};
    }
    text_.append(">");
    // Nearly all elements of a settings file are keys, which hold one text.
    if (childType == pugi::node_pcdata && child.next_sibling().type() == pugi::node_null) {
      escaped(child.value(), inText);
      close(elementName);
      return {};
    }
    return child;
  }

  void close(const char* elementName) {
    text_.append("</");
    verbatim(elementName);
    text_.append(">");
  }

  /// What holds no references: line ends become the file's, and all characters must be in the encoding.
  void verbatim(const char* text) {
    copy(text, inVerbatim, [this](const char* rest) -> std::size_t {
      if (*rest == '\r' || *rest == '\n') {
        text_.append(lineEnd_);
        return rest[0] == '\r' && rest[1] == '\n' ? 2 : 1;
      }
      complete_ = false;
      return 1;
    });
  }

  void escaped(const char* text, Need where) {
    copy(text, where, [this, where](const char* rest) -> std::size_t {
      switch (*rest) {
        case '&':
          text_.append("&amp;");
          return 1;
        case '<':
          text_.append("&lt;");
          return 1;
        case '>':
          text_.append("&gt;");
          return 1;
        case '"':
          text_.append("&quot;");
          return 1;
        case '\t':
          text_.append("&#9;");
          return 1;
        case '\n':
          text_.append(where == inText ? lineEnd_ : "&#10;");
          return 1;
        case '\r': {
          // A value's own CR LF: as a reference beside a line end it would look like neither.
          const bool pair = rest[1] == '\n';
          text_.append(pair ? "&#13;&#10;" : "&#13;");
          return pair ? 2 : 1;
        }
        default:
          return reference(rest);
      }
    });
  }

  std::size_t reference(const char* text) {
    const auto character = characterAt(text);
    text_.append("&#");
    text_.append(integerText(character.code).view());
    text_.append(";");
    return character.length;
  }

  /// Copies `text`; where a byte cannot be copied, `special` writes something instead and says how many bytes
  /// that stands for.
  template <typename Special>
  void copy(const char* text, Need where, const Special& special) {
    const unsigned stops = where | always_;
    for (;;) {
      const char* end = text;
      while ((needs[static_cast<unsigned char>(*end)] & stops) == 0) {
        ++end;
      }
      text_.append(text, end);
      if (*end == '\0') {
        return;
      }
      const std::size_t length = (*end & 0x80) == 0 ? 0 : wholeCharacter(end);
      text = end + (length != 0 ? length : special(end));
    }
  }

  /// Writes the character beyond ASCII at the start of `text`, and returns its bytes; writes nothing if the
  /// encoding lacks it.
  std::size_t wholeCharacter(const char* text) {
    const auto character = characterAt(text);
    if (std::binary_search(missing_.begin(), missing_.end(), character.code)) {
      return 0;
    }
    text_.append(text, character.length);
    return character.length;
  }

  struct Character {
    char32_t code;
    std::size_t length;  ///< bytes
  };

  /// The document holds well-formed texts only.
  static Character characterAt(const char* text) {
    constexpr std::size_t longest = 4;
    std::size_t length = 0;
    const char32_t code = nextCharacter(std::string_view(text, strnlen(text, longest)), length);
    return {code, length};
  }

  const std::u32string_view missing_;
  std::string_view lineEnd_;
  /// What needs a closer look everywhere.
  const unsigned always_;
  std::string text_;
  bool complete_ = true;
};

}  // namespace

std::optional<std::string> writeXml(const pugi::xml_document& document, const XmlForm& form,
                                    std::u32string_view missing, std::size_t sizeHint) {
  Writer writer(form, missing, sizeHint);
  writer.write(document);
  return writer.take();
}

}  // namespace veltrano
