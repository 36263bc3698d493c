#ifndef VELTRANO_SETTINGS_XML_WRITER_H
#define VELTRANO_SETTINGS_XML_WRITER_H

// Turns a document back into text. Unlike the parser's own writer it keeps a value's line ends apart from
// those of the layout and knows which characters the file's encoding lacks.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "settings/xml_encoding.h"

namespace veltrano {

/// The document in UTF-8, after the form's declaration. Characters of `missing`, which is sorted, become
/// references. Empty if one of them stands where there are no references (a name, a comment): then only
/// Unicode will do.
std::optional<std::string> writeXml(const pugi::xml_document& document, const XmlForm& form,
                                    std::u32string_view missing, std::size_t sizeHint);

}  // namespace veltrano

#endif
