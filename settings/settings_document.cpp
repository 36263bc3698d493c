#include "settings/settings_document.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/os/files.h"
#include "base/trace.h"
#include "settings/xml_characters.h"
#include "settings/xml_well_formed.h"
#include "settings/xml_writer.h"

namespace veltrano {

namespace {

constexpr const char* rootName = "XML";

// Everything is kept. A fragment, because otherwise the white space around the root would be dropped.
constexpr unsigned parseFlags = pugi::parse_cdata | pugi::parse_comments | pugi::parse_pi |
                                pugi::parse_ws_pcdata | pugi::parse_escapes | pugi::parse_eol |
                                pugi::parse_wconv_attribute | pugi::parse_fragment;

/// One element, and no text beside it.
bool isDocument(const pugi::xml_document& document) {
  const auto children = document.children();
  return std::count_if(children.begin(), children.end(),
                       [](auto& node) { return node.type() == pugi::node_element; }) == 1 &&
         std::all_of(children.begin(), children.end(),
                     [](auto& node) { return node.type() != pugi::node_pcdata || isBlank(node.value()); });
}

}  // namespace

SettingsDocument::LoadResult SettingsDocument::load(const std::filesystem::path& file) {
  clear();
  const LoadResult result = read(file);
  if (result != LoadResult::loaded) {
    clear();
    std::error_code ignored;
    outOfReach_ = result == LoadResult::outOfMemory ||
                  (result == LoadResult::unreadable && std::filesystem::exists(file, ignored));
    traceSkipped("XML_Open", "the file is not a settings file or cannot be read");
  }
  return result;
}

SettingsDocument::LoadResult SettingsDocument::read(const std::filesystem::path& file) try {
  auto bytes = readWholeFile(file);
  return bytes ? parse(*std::move(bytes)) : LoadResult::unreadable;
} catch (const std::bad_alloc&) {
  return LoadResult::outOfMemory;
}

void SettingsDocument::clear() {
  index_.forget();
  document_.reset();
  form_ = XmlForm();
  outOfReach_ = false;
}

SettingsDocument::LoadResult SettingsDocument::parse(std::string bytes) {
  auto decoded = decodeXml(std::move(bytes));
  if (!decoded) {
    return LoadResult::malformed;
  }
  form_ = std::move(decoded->form);
  buffer_ = std::move(decoded->text);
  const std::size_t behindDeclaration = form_.declaration.size();
  if (!isAcceptableXml(std::string_view(buffer_).substr(behindDeclaration))) {
    return LoadResult::malformed;
  }
  // The parser puts a zero over the last byte: it gets the one that ends the string, or it would lose a line
  // end.
  const auto result =
      document_.load_buffer_inplace(buffer_.data() + behindDeclaration,
                                    buffer_.size() - behindDeclaration + 1, parseFlags, pugi::encoding_utf8);
  if (result.status == pugi::status_out_of_memory) {
    return LoadResult::outOfMemory;
  }
  return result && isDocument(document_) ? LoadResult::loaded : LoadResult::malformed;
}

bool SettingsDocument::save(const std::filesystem::path& file) const {
  if (outOfReach_ || !document_.document_element()) {
    return false;
  }
  // A little is changed as a rule.
  const std::size_t sizeHint = buffer_.size() + buffer_.size() / 8;
  if (auto text = writeXml(document_, form_, sizeHint)) {
    return static_cast<bool>(replaceFile(file, encodeXml(form_, *std::move(text)), Durability::power));
  }
  // A name that the file's encoding lacks has been added.
  const XmlForm unicode = inUtf8(form_);
  return static_cast<bool>(
      replaceFile(file, encodeXml(unicode, writeXml(document_, unicode, sizeHint).value_or(std::string())),
                  Durability::power));
}

pugi::xml_node SettingsDocument::root() const {
  const pugi::xml_node element = document_.document_element();
  return std::string_view(element.name()) == rootName ? element : pugi::xml_node();
}

pugi::xml_node SettingsDocument::createRoot() {
  return document_.document_element() ? pugi::xml_node() : document_.append_child(rootName);
}

}  // namespace veltrano
