#include "pdf/assembly/catalog.h"

#include <array>
#include <utility>

#include "pdf/document/content_stream.h"
#include "veltrano/pdf.h"

namespace veltrano {

namespace {

void writeOpenAction(ObjectWriter& writer, const Value& zoomMode) {
  const auto zoom = zoomMode.toDouble();
  if (!zoom) {
    return;
  }
  const auto is = [&](std::int32_t mode) { return *zoom == mode; };
  // Object 3 is the length of the first page's content; the action has always named it.
  ContentStream line;
  ContentWriter action(line);
  action.text("/OpenAction [3 0 R ");
  if (is(ZOOM_FULLPAGE)) {
    action.text("/Fit]");
  } else if (is(ZOOM_FULLWIDTH)) {
    action.text("/FitH null]");
  } else if (is(ZOOM_REAL)) {
    action.text("/XYZ null null 1]");
  } else {
    action.text("/XYZ null null ").number(*zoom / 100).text("]");
  }
  action.end();
  writer.lines(line.view());
}

void writeLayout(ObjectWriter& writer, const Value& layoutMode) {
  switch (layoutMode.toInt32().value_or(LAYOUT_DEFAULT)) {
    case LAYOUT_SINGLE:  // unset, too
      return writer.line("/PageLayout /SinglePage");
    case LAYOUT_CONTINOUS:
      return writer.line("/PageLayout /OneColumn");
    case LAYOUT_TWO:
      return writer.line("/PageLayout /TwoColumnLeft");
    default:
      return;
  }
}

void writeViewerPreferences(ObjectWriter& writer, std::int32_t preference) {
  constexpr std::array<std::pair<char, std::string_view>, 6> entries{{
      {'2', "/HideMenubar true"},
      {'1', "/HideToolbar true"},
      {'3', "/HideWindowUI true"},
      {'6', "/DisplayDocTitle true"},
      {'5', "/CenterWindow true"},
      {'4', "/FitWindow true"},
  }};
  const NumberText digits = integerText(preference);
  writer.line("/ViewerPreferences<<");
  for (const auto& [digit, entry] : entries) {
    if (digits.view().find(digit) != std::string_view::npos) {
      writer.line(entry);
    }
  }
  writer.line(">>");
}

}  // namespace

int writeCatalog(ObjectWriter& writer, const ViewerSettings& viewer, int pageTreeObject, int outlineObject) {
  const int object = writer.begin();
  writer.line("<<");
  writer.line("/Type /Catalog");
  writer.line({"/Pages ", integerText(pageTreeObject), " 0 R"});
  writeOpenAction(writer, viewer.zoomMode);
  writeLayout(writer, viewer.layoutMode);
  if (viewer.useThumbs) {
    writer.line("/PageMode /UseThumbs");
  }
  if (viewer.useOutlines) {
    writer.line({"/Outlines ", integerText(outlineObject), " 0 R"});
    writer.line("/PageMode /UseOutlines");
  }
  if (viewer.viewerPreference) {
    writeViewerPreferences(writer, *viewer.viewerPreference);
  }
  writer.line(">>");
  writer.end();
  return object;
}

}  // namespace veltrano
