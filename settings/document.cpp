#include "settings/document.h"

#include <new>
#include <utility>

#include "base/files/whole.h"
#include "base/trace.h"
#include "settings/xml_parser.h"
#include "settings/xml_writer.h"

namespace veltrano {

namespace {

constexpr const char* rootName = "XML";

/// Copies the file to NAME.bak. True if there is nothing to keep.
bool keepCopy(const std::filesystem::path& file) {
  const auto content = readWholeFile(file);
  std::error_code ignored;
  if (!content || content->empty()) {
    return content || !std::filesystem::exists(file, ignored);
  }
  std::filesystem::path copy = file;
  copy += ".bak";
  return static_cast<bool>(replaceFileAs(file, copy, *content, Durability::power));
}

const char* reasonOf(SettingsDocument::LoadResult result) {
  switch (result) {
    case SettingsDocument::LoadResult::missing:
      return "there is no such file";
    case SettingsDocument::LoadResult::unreadable:
      return "the file cannot be read and will not be written";
    case SettingsDocument::LoadResult::malformed:
      return "the file is not well-formed XML, has a document type or is in an encoding that the system does "
             "not know; saving keeps a copy of it";
    case SettingsDocument::LoadResult::outOfMemory:
      return "memory is short, and nothing can be read or saved";
    default:
      return "";
  }
}

}  // namespace

SettingsDocument::LoadResult SettingsDocument::load(const std::filesystem::path& file) {
  const auto clear = [this] {
    names_.forget();
    document_.reset();
    text_ = std::string();
    form_ = XmlForm();
  };
  clear();
  try {
    lastLoad_ = read(file);
  } catch (const std::bad_alloc&) {
    lastLoad_ = LoadResult::outOfMemory;
  }
  if (lastLoad_ != LoadResult::loaded) {
    clear();
    trace("The settings start empty: ", reasonOf(lastLoad_), ": ", file, ".");
  }
  return lastLoad_;
}

SettingsDocument::LoadResult SettingsDocument::read(const std::filesystem::path& file) {
  auto bytes = readWholeFile(file);
  if (!bytes) {
    std::error_code ignored;
    return std::filesystem::exists(file, ignored) ? LoadResult::unreadable : LoadResult::missing;
  }
  auto decoded = decodeXml(*std::move(bytes));
  if (!decoded) {
    return LoadResult::malformed;
  }
  form_ = std::move(decoded->form);
  text_ = std::move(decoded->text);
  switch (parseXml(text_, form_.declaration.size(), document_)) {
    case ParseResult::parsed:
      return LoadResult::loaded;
    case ParseResult::outOfMemory:
      return LoadResult::outOfMemory;
    case ParseResult::malformed:
      break;
  }
  return LoadResult::malformed;
}

bool SettingsDocument::save(const std::filesystem::path& file) {
  if (lastLoad_ == LoadResult::unreadable || lastLoad_ == LoadResult::outOfMemory ||
      !document_.document_element()) {
    return false;
  }
  if (lastLoad_ == LoadResult::malformed && !keepCopy(file)) {
    trace("Nothing is saved: the malformed file ", file, " cannot be kept as a copy.");
    return false;
  }
  if (!replaceFile(file, bytes(), Durability::power)) {
    return false;
  }
  lastLoad_ = LoadResult::loaded;
  return true;
}

std::string SettingsDocument::bytes() const {
  // A little is changed as a rule.
  const std::size_t sizeHint = text_.size() + text_.size() / 8;
  std::string text = writeXml(document_, form_, {}, sizeHint).value_or(std::string());
  if (form_.encoding != XmlForm::Encoding::named) {
    return encodeXml(form_, std::move(text)).value_or(std::string());
  }
  if (auto bytes = encodeXml(form_, text)) {
    return *std::move(bytes);
  }
  const std::u32string missing = missingCharacters(form_, text);
  if (const auto referring = writeXml(document_, form_, missing, sizeHint)) {
    if (auto bytes = encodeXml(form_, *referring)) {
      return *std::move(bytes);
    }
  }
  // A name that the file's encoding lacks has been added.
  const XmlForm unicode = inUtf8(form_);
  return encodeXml(unicode, writeXml(document_, unicode, {}, sizeHint).value_or(std::string()))
      .value_or(std::string());
}

pugi::xml_node SettingsDocument::root() const {
  const pugi::xml_node element = document_.document_element();
  return std::string_view(element.name()) == rootName ? element : pugi::xml_node();
}

pugi::xml_node SettingsDocument::createRoot() {
  return document_.document_element() ? pugi::xml_node() : document_.append_child(rootName);
}

}  // namespace veltrano
