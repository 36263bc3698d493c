#include "settings/xml_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

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

/// Gathers short pieces before the string takes them: most are a few bytes long.
class Gatherer {
 public:
  explicit Gatherer(std::string& target) : target_(target) {}
  Gatherer(const Gatherer&) = delete;
  Gatherer& operator=(const Gatherer&) = delete;
  ~Gatherer() = default;

  /// Less than a block.
  void put(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(end() - next_)) {
      flush();
    }
    next_ = std::copy(text.begin(), text.end(), next_);
  }

  /// Short literals: the compiler knows their size and needs no call to copy them.
  template <std::size_t size>
  void put(const char (&literal)[size]) {
    if (size > static_cast<std::size_t>(end() - next_)) {
      flush();
    }
    std::memcpy(next_, literal, size - 1);
    next_ += size - 1;
  }

  /// Copies bytes up to the first that is among `stops`; returns where that is.
  const char* putUpTo(const char* text, unsigned stops) {
    for (;;) {
      char* next = next_;
      while (next != end() && (needs[static_cast<unsigned char>(*text)] & stops) == 0) {
        *next++ = *text++;
      }
      next_ = next;
      if (next != end()) {
        return text;
      }
      flush();
    }
  }

  void flush() {
    target_.append(block_.data(), next_);
    next_ = block_.data();
  }

 private:
  char* end() { return block_.data() + block_.size(); }

  std::string& target_;
  std::array<char, 4096> block_;
  char* next_ = block_.data();
};

class Writer {
 public:
  Writer(const XmlForm& form, std::u32string_view missing, std::string& target)
      : missing_(missing),
        lineEnd_(form.crlf ? "\r\n" : "\n"),
        always_(missing.empty() ? 0U : unsigned{inNarrow}),
        text_(target) {}

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
          text_.flush();
          return;
        }
        close(node.name());
      }
      node = next;
    }
  }

  [[nodiscard]] bool complete() const { return complete_; }

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
        text_.put("<![CDATA[");
        verbatim(node.value());
        text_.put("]]>");
        break;
      case pugi::node_comment:
        text_.put("<!--");
        verbatim(node.value());
        text_.put("-->");
        break;
      case pugi::node_pi:
        text_.put("<?");
        verbatim(node.name());
        if (*node.value() != '\0') {
          text_.put(" ");
          verbatim(node.value());
        }
        text_.put("?>");
        break;
      default:
        break;
    }
    return {};
  }

  pugi::xml_node openElement(const pugi::xml_node& element) {
    const char* const elementName = element.name();
    text_.put("<");
    verbatim(elementName);
    for (auto attribute = element.first_attribute(); attribute; attribute = attribute.next_attribute()) {
      text_.put(" ");
      verbatim(attribute.name());
      text_.put("=\"");
      escaped(attribute.value(), inAttribute);
      text_.put("\"");
    }
    const pugi::xml_node child = element.first_child();
    const pugi::xml_node_type childType = child.type();
    if (childType == pugi::node_null) {
      text_.put("/>");
      return {};
    }
    text_.put(">");
    // Nearly all elements of a settings file are keys, which hold one text.
    if (childType == pugi::node_pcdata && child.next_sibling().type() == pugi::node_null) {
      escaped(child.value(), inText);
      close(elementName);
      return {};
    }
    return child;
  }

  void close(const char* elementName) {
    text_.put("</");
    verbatim(elementName);
    text_.put(">");
  }

  void put(std::string_view text) { text_.put(text); }

  /// What holds no references: line ends become the file's, and all characters must be in the encoding.
  void verbatim(const char* text) {
    copy(text, inVerbatim, [this](const char* rest) -> std::size_t {
      if (*rest == '\r' || *rest == '\n') {
        put(lineEnd_);
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
          text_.put("&amp;");
          return 1;
        case '<':
          text_.put("&lt;");
          return 1;
        case '>':
          text_.put("&gt;");
          return 1;
        case '"':
          text_.put("&quot;");
          return 1;
        case '\t':
          text_.put("&#9;");
          return 1;
        case '\n':
          put(where == inText ? lineEnd_ : "&#10;");
          return 1;
        case '\r': {
          // A value's own CR LF: as a reference beside a line end it would look like neither.
          const bool pair = rest[1] == '\n';
          put(pair ? "&#13;&#10;" : "&#13;");
          return pair ? 2 : 1;
        }
        default:
          return reference(rest);
      }
    });
  }

  std::size_t reference(const char* text) {
    const auto character = characterAt(text);
    text_.put("&#");
    put(integerText(character.code));
    text_.put(";");
    return character.length;
  }

  /// Copies `text`; where a byte cannot be copied, `special` writes something instead and says how many bytes
  /// that stands for.
  template <typename Special>
  void copy(const char* text, Need where, const Special& special) {
    const unsigned stops = where | always_;
    while (*(text = text_.putUpTo(text, stops)) != '\0') {
      const std::size_t length = (*text & 0x80) == 0 ? 0 : wholeCharacter(text);
      text += length != 0 ? length : special(text);
    }
  }

  /// Writes the character beyond ASCII at the start of `text`, and returns its bytes; writes nothing if the
  /// encoding lacks it.
  std::size_t wholeCharacter(const char* text) {
    const auto character = characterAt(text);
    if (std::binary_search(missing_.begin(), missing_.end(), character.code)) {
      return 0;
    }
    put({text, character.length});
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
  Gatherer text_;
  bool complete_ = true;
};

}  // namespace

std::optional<std::string> writeXml(const pugi::xml_document& document, const XmlForm& form,
                                    std::u32string_view missing, std::size_t sizeHint) {
  std::string text;
  text.reserve(sizeHint);
  text = form.declaration;
  Writer writer(form, missing, text);
  writer.write(document);
  if (!writer.complete()) {
    return std::nullopt;
  }
  return text;
}

}  // namespace veltrano
