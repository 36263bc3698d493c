#ifndef VELTRANO_SETTINGS_XML_REFERENCES_H
#define VELTRANO_SETTINGS_XML_REFERENCES_H

namespace veltrano {

/// True when each "&" from `from` to before `to` begins a reference to a predefined entity or to a character;
/// without a document type there are no others. References may go on behind `to`, up
/// to `end`, which is where the text ends.
bool haveOnlyReferences(const char* from, const char* to, const char* end);

}  // namespace veltrano

#endif
