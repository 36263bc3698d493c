#include "settings/xml_writer.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/numbers.h"
#include "settings/xml_characters.h"

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

  void put(std::string_view text) {
    if (text.size() > block_.size() - used_) {
      flush();
      target_.append(text);
      return;
    }
    std::memcpy(block_.data() + used_, text.data(), text.size());
    used_ += text.size();
  }

  /// Short literals: the compiler knows their size and needs no call to copy them.
  template <std::size_t size>
  void put(const char (&literal)[size]) {
    if (size > block_.size() - used_) {
      flush();
    }
    std::memcpy(block_.data() + used_, literal, size - 1);
    used_ += size - 1;
  }

  /// Copies bytes up to the first that `where` does not allow; returns where that is.
  const char* putWhileAllowed(const char* text, unsigned where) {
    const auto allowed = [where](char c) { return (needs[static_cast<unsigned char>(c)] & where) == 0; };
    for (;;) {
      char* target = block_.data() + used_;
      char* const end = block_.data() + block_.size();
      while (target != end && allowed(*text)) {
        *target++ = *text++;
      }
      used_ = static_cast<std::size_t>(target - block_.data());
      if (target != end) {
        return text;
      }
      flush();
    }
  }

  void flush() {
    target_.append(block_.data(), used_);
    used_ = 0;
  }

 private:
  std::string& target_;
  std::array<char, 4096> block_;
  std::size_t used_ = 0;
};

class Writer {
 public:
  Writer(const XmlForm& form, std::string& target)
      : form_(form), lineEnd_(form.crlf ? "\r\n" : "\n"), text_(target) {}

  /// Goes from node to node without recursion; each step asks the document for one neighbour.
  void write(const pugi::xml_document& document) {
    pugi::xml_node node = document.first_child();
    while (node) {
      pugi::xml_node next = open(node);
      while (!next) {
        next = node.next_sibling();
        if (next) {
          break;
        }
        node = node.parent();
        if (node.type() != pugi::node_element) {
          break;
        }
        close(node);
      }
      node = next;
    }
    text_.flush();
  }

  [[nodiscard]] bool complete() const { return complete_; }

 private:
  /// Writes what comes before the children; returns the first one.
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
        name(node.name());
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
    text_.put("<");
    name(element.name());
    for (auto attribute = element.first_attribute(); attribute; attribute = attribute.next_attribute()) {
      text_.put(" ");
      name(attribute.name());
      text_.put("=\"");
      escaped(attribute.value(), inAttribute);
      text_.put("\"");
    }
    const pugi::xml_node child = element.first_child();
    if (child) {
      text_.put(">");
    } else {
      text_.put("/>");
    }
    return child;
  }

  void close(const pugi::xml_node& element) {
    text_.put("</");
    name(element.name());
    text_.put(">");
  }

  void put(std::string_view text) { text_.put(text); }

  /// Names hold no line ends.
  void name(const char* text) {
    if (form_.encoding == XmlForm::Encoding::singleByte) {
      verbatim(text);
    } else {
      put(text);
    }
  }

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
    const bool narrow = form_.encoding == XmlForm::Encoding::singleByte;
    const unsigned stops = narrow ? where | inNarrow : where;
    for (text = text_.putWhileAllowed(text, stops); *text != '\0';
         text = text_.putWhileAllowed(text, stops)) {
      const auto character = characterAt(text);
      if (character.length > 1 && form_.canHold(character.code)) {
        put({text, character.length});
        text += character.length;
      } else {
        text += special(text);
      }
    }
  }

  /// The document holds well-formed texts only.
  static DecodedCharacter characterAt(const char* text) {
    constexpr std::size_t longest = 4;
    return decodeCharacter({text, strnlen(text, longest)}).value_or(DecodedCharacter{0xFFFD, 1});
  }

  const XmlForm& form_;
  std::string_view lineEnd_;
  Gatherer text_;
  bool complete_ = true;
};

}  // namespace

std::optional<std::string> writeXml(const pugi::xml_document& document, const XmlForm& form,
                                    std::size_t sizeHint) {
  std::string text;
  text.reserve(sizeHint);
  text = form.declaration;
  Writer writer(form, text);
  writer.write(document);
  if (!writer.complete()) {
    return std::nullopt;
  }
  return text;
}

}  // namespace veltrano
