#ifndef VELTRANO_PDF_DOCUMENT_SETTINGS_H
#define VELTRANO_PDF_DOCUMENT_SETTINGS_H

// What the document says of itself and how a viewer is asked to show it.

#include <cstdint>
#include <optional>
#include <string>

#include "veltrano/value.h"

namespace veltrano {

/// Entries of the information object, ANSI text, written as they are.
struct DocumentInformation {
  std::string title;
  std::string author;
  std::string creator;
  std::string keywords;
  std::string subject;
  std::string producer;
};

struct ViewerSettings {
  Value zoomMode;    ///< empty counts as 0
  Value layoutMode;  ///< empty counts as 0
  bool useThumbs = false;
  bool useOutlines = false;
  /// Its decimal digits name the preferences.
  std::optional<std::int32_t> viewerPreference;
};

}  // namespace veltrano

#endif
