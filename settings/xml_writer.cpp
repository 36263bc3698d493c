#include "settings/xml_writer.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "base/numbers.h"
#include "settings/xml_characters.h"

namespace veltrano {

namespace {

enum Need : std::uint8_t { inText = 1, inAttribute = 2, inVerbatim = 4 };

/// Where a byte cannot be copied as it is.
constexpr auto needs = [] {
  std::array<std::uint8_t, 256> table{};
  table['&'] = inText | inAttribute;
  table['<'] = inText | inAttribute;
  table['>'] = inText;  // "]]>" must not come about
  table['"'] = inAttribute;
  table['\t'] = inAttribute;
  table['\n'] = inText | inAttribute | inVerbatim;
  table['\r'] = inText | inAttribute | inVerbatim;
  return table;
}();

class Writer {
 public:
  Writer(const XmlForm& form, std::string& target)
      : form_(form), lineEnd_(form.crlf ? "\r\n" : "\n"), target_(target) {}

  void write(const pugi::xml_document& document) {
    pugi::xml_node node = document.first_child();
    while (node) {
      const bool descends = open(node);
      if (descends) {
        node = node.first_child();
        continue;
      }
      while (node && !node.next_sibling()) {
        node = node.parent();
        if (node.type() != pugi::node_element) {
          return;
        }
        close(node);
      }
      node = node.next_sibling();
    }
  }

  [[nodiscard]] bool complete() const { return complete_; }

 private:
  /// Writes what comes before the children; true when there are some.
  bool open(const pugi::xml_node& node) {
    switch (node.type()) {
      case pugi::node_element:
        put("<");
        verbatim(node.name());
        for (const pugi::xml_attribute& attribute : node.attributes()) {
          put(" ");
          verbatim(attribute.name());
          put("=\"");
          escaped(attribute.value(), inAttribute);
          put("\"");
        }
        put(node.first_child() ? ">" : "/>");
        return static_cast<bool>(node.first_child());
      case pugi::node_pcdata:
        escaped(node.value(), inText);
        return false;
      case pugi::node_cdata:
        put("<![CDATA[");
        verbatim(node.value());
        put("]]>");
        return false;
      case pugi::node_comment:
        put("<!--");
        verbatim(node.value());
        put("-->");
        return false;
      case pugi::node_pi:
        put("<?");
        verbatim(node.name());
        if (*node.value() != '\0') {
          put(" ");
          verbatim(node.value());
        }
        put("?>");
        return false;
      default:
        return false;
    }
  }

  void close(const pugi::xml_node& element) {
    put("</");
    verbatim(element.name());
    put(">");
  }

  void put(std::string_view text) { target_.append(text); }

  /// What holds no references: line ends become the file's, and all characters must be in the encoding.
  void verbatim(std::string_view text) {
    copy(text, inVerbatim, [this](std::string_view rest) -> std::size_t {
      if (rest.front() == '\r' || rest.front() == '\n') {
        put(lineEnd_);
        return rest.starts_with("\r\n") ? 2 : 1;
      }
      complete_ = false;
      return 1;
    });
  }

  void escaped(std::string_view text, Need where) {
    copy(text, where, [this, where](std::string_view rest) -> std::size_t {
      switch (rest.front()) {
        case '&':
          put("&amp;");
          return 1;
        case '<':
          put("&lt;");
          return 1;
        case '>':
          put("&gt;");
          return 1;
        case '"':
          put("&quot;");
          return 1;
        case '\t':
          put("&#9;");
          return 1;
        case '\n':
          put(where == inText ? lineEnd_ : "&#10;");
          return 1;
        case '\r':
          // A value's own CR LF: as a reference beside a line end it would look like neither.
          put(rest.starts_with("\r\n") ? "&#13;&#10;" : "&#13;");
          return rest.starts_with("\r\n") ? 2 : 1;
        default: {
          const auto character = decodeCharacter(rest);
          put("&#");
          put(integerText(character ? static_cast<std::int64_t>(character->code) : 0xFFFD));
          put(";");
          return character ? character->length : 1;
        }
      }
    });
  }

  /// Copies `text`; where a character cannot be copied, `special` writes something instead and says how many
  /// bytes that stands for.
  template <typename Special>
  void copy(std::string_view text, Need where, const Special& special) {
    const bool narrow = form_.encoding == XmlForm::Encoding::singleByte;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < text.size();) {
      const auto byte = static_cast<unsigned char>(text[i]);
      const bool lacking = narrow && byte >= 0x80 && (byte & 0xC0U) != 0x80 && !canHold(text.substr(i));
      if ((needs[byte] & where) == 0 && !lacking) {
        ++i;
        continue;
      }
      put(text.substr(copied, i - copied));
      i += special(text.substr(i));
      copied = i;
    }
    put(text.substr(copied));
  }

  [[nodiscard]] bool canHold(std::string_view text) const {
    const auto character = decodeCharacter(text);
    return character && form_.canHold(character->code);
  }

  const XmlForm& form_;
  std::string_view lineEnd_;
  std::string& target_;
  bool complete_ = true;
};

}  // namespace

std::optional<std::string> writeXml(const pugi::xml_document& document, const XmlForm& form) {
  std::string text = form.declaration;
  Writer writer(form, text);
  writer.write(document);
  if (!writer.complete()) {
    return std::nullopt;
  }
  return text;
}

}  // namespace veltrano
