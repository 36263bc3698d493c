#include "pdf/document/settings.h"

#include "base/trace.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

void VeltranoPDF::PDFPathConfiguration(const std::filesystem::path& folder) {
  fonts_.folder.setPath(folder);
}

void VeltranoPDF::PDFProducer(std::string_view text) {
  settings_.information.producer = text;
}
void VeltranoPDF::PDFSubject(std::string_view text) {
  settings_.information.subject = text;
}
void VeltranoPDF::PDFKeywords(std::string_view text) {
  settings_.information.keywords = text;
}
void VeltranoPDF::PDFCreator(std::string_view text) {
  settings_.information.creator = text;
}
void VeltranoPDF::PDFAuthor(std::string_view text) {
  settings_.information.author = text;
}
void VeltranoPDF::PDFTitle(std::string_view text) {
  settings_.information.title = text;
}

void VeltranoPDF::PDFFileName(const std::filesystem::path& file) {
  settings_.fileName = file;
  assembly_.writer.clearText();
}

std::string VeltranoPDF::PDFGetFileName() const {
  return {};
}

void VeltranoPDF::PDFConfirm(bool confirm) {
  settings_.confirmOverwrite = confirm;
}
void VeltranoPDF::PDFView(bool view) {
  settings_.viewAfterSave = view;
}
void VeltranoPDF::JustPictures(bool pictures) {
  settings_.justPictures = pictures;
}

void VeltranoPDF::PDFFiligran(std::string_view text) {
  settings_.watermarkText = std::string(text);
}

void VeltranoPDF::PDFSetZoomMode(const Value& zoom) {
  Value accepted = zoom;
  if (!zoom.isNumeric() && !zoom.isEmpty()) {
    raise("Zoom mode incorrect.");
    accepted = Value(ZOOM_FULLPAGE);
  }
  settings_.viewer.zoomMode = accepted;
}

Value VeltranoPDF::PDFGetZoomMode() const {
  return settings_.viewer.zoomMode;
}

void VeltranoPDF::PDFSetLayoutMode(std::int32_t layout) {
  if (layout < LAYOUT_SINGLE || layout > LAYOUT_DEFAULT) {
    raise("Incorrect Layout");
    layout = LAYOUT_SINGLE;
  }
  settings_.viewer.layoutMode = Value(layout);
}

Value VeltranoPDF::PDFGetLayoutMode() const {
  return settings_.viewer.layoutMode;
}

void VeltranoPDF::PDFUseThumbs(bool use) {
  settings_.viewer.useThumbs = use;
}
void VeltranoPDF::PDFUseOutlines(bool use) {
  settings_.viewer.useOutlines = use;
}

void VeltranoPDF::PDFSetViewerPreferences(std::int32_t preference) {
  settings_.viewer.viewerPreference = preference;
}

}  // namespace veltrano
