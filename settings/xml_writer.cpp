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

  /// Copies bytes up to the first that `where` does not allow; returns where that is.
  const char* putWhileAllowed(const char* text, unsigned where) {
    for (;;) {
      char* target = block_.data() + used_;
      char* const end = block_.data() + block_.size();
      while (target != end && (needs[static_cast<unsigned char>(*text)] & where) == 0) {
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
          break;
        }
        close(node);
      }
      node = node.next_sibling();
    }
    text_.flush();
  }

  [[nodiscard]] bool complete() const { return complete_; }

 private:
  /// Writes what comes before the children; true when there are some.
  bool open(const pugi::xml_node& node) {
    switch (node.type()) {
      case pugi::node_element:
        put("<");
        verbatim(node.name());
        for (auto attribute = node.first_attribute(); attribute; attribute = attribute.next_attribute()) {
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
    put("&#");
    put(integerText(character.code));
    put(";");
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
