#ifndef VELTRANO_SETTINGS_XML_WELL_FORMED_H
#define VELTRANO_SETTINGS_XML_WELL_FORMED_H

// What the XML parser does not refuse and a settings file must not hold.

#include <cstddef>
#include <string_view>

#include "settings/xml_plain_text.h"

namespace veltrano {

/// Elements may be nested so deep: as in the parsers of other vendors, which must read what is saved here.
constexpr std::size_t deepestNesting = 256;

/// Judges a document in UTF-8 behind its XML declaration. True when it is well-formed, has no document type
/// declaration and is not nested deeper than deepestNesting. What the parser checks itself (that tags match,
/// and that there is but one root) may go unnoticed here.
/// `scan` is one of usableXmlPlainTextScans().
bool isAcceptableXml(std::string_view text, XmlPlainTextScan scan = usableXmlPlainTextScans().back());

}  // namespace veltrano

#endif
