#ifndef VELTRANO_SETTINGS_XML_PLAIN_TEXT_H
#define VELTRANO_SETTINGS_XML_PLAIN_TEXT_H

// Telling the settings files that most are, documents of nothing but text and elements that have no
// attributes and names in ASCII. The parser reads their tags without leniency, so that only the text needs a
// look, which is many times faster than reading tag by tag.

#include <span>

namespace veltrano {

/// Judges the document in UTF-8 from `text` to before `end`. True when it is plain, its text is well-formed
/// and the elements are not nested deeper than deepestNesting; what the parser checks itself may go
/// unnoticed, and so may references beside the root, which it would not refuse. False also for what cannot be
/// told.
using XmlPlainTextScan = bool (*)(const char* text, const char* end);

/// All that the processor can run, the fastest one last; they differ in speed only.
std::span<const XmlPlainTextScan> usableXmlPlainTextScans();

}  // namespace veltrano

#endif
