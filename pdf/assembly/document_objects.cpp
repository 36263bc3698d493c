#include <array>
#include <cstddef>
#include <utility>

#include "base/numbers/numbers.h"
#include "base/os/clock.h"
#include "pdf/graphics/content_line.h"
#include "pdf/veltrano_pdf.h"

// The objects that surround the pages: information, fonts, page tree, resources, pages, catalog.

namespace veltrano {

namespace {

void appendPadded(std::string& target, int number, std::size_t width) {
  const NumberText digits = integerText(number);
  if (digits.view().size() < width) target.append(width - digits.view().size(), '0');
  target.append(digits.view());
}

/// YYYYMMDDHHmmSS
std::string timeStamp(const LocalTime& time) {
  std::string stamp;
  appendPadded(stamp, time.year, 4);
  for (const int part : {time.month, time.day, time.hour, time.minute, time.second}) {
    appendPadded(stamp, part, 2);
  }
  return stamp;
}

/// The spelling of `name` in the file. A font is called after its metrics file, and a copy of one may be
/// named "Helvetica (1).afm": what cannot stand in a name is written as "#" and two hexadecimal digits.
std::string nameText(std::string_view name) {
  constexpr std::string_view special = "#()<>[]{}/%\x7F";
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : name) {
    const auto code = static_cast<unsigned char>(c);
    if (code > ' ' && special.find(c) == std::string_view::npos) {
      text.push_back(c);
    } else {
      text.append({'#', digits[code >> 4], digits[code & 15]});
    }
  }
  return text;
}

void writeOpenAction(ObjectWriter& writer, const Value& zoomMode) {
  const auto zoom = zoomMode.toDouble();
  if (!zoom) return;
  const auto is = [&](std::int32_t mode) { return *zoom == mode; };
  // Object 3 is the length of the first page's content; the action has always named it.
  ContentText line;
  ContentLine action(line);
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
    if (digits.view().find(digit) != std::string_view::npos) writer.line(entry);
  }
  writer.line(">>");
}

/// The rectangle covers the link; one whose numbers cannot be written is left out.
void writeAnnotation(ObjectWriter& writer, const LinkEntry& link) {
  ContentText line;
  ContentLine(line)
      .text("<</Type /Annot /Subtype /Link /Rect [")
      .point(link.left, link.top - link.height)
      .text(" ")
      .point(link.left + link.width, link.top)
      .text("] /Border [0 0 0] /A <</S /URI /URI (")
      .text(escapeLinkTarget(link.target))
      .text(")>>>>")
      .end();
  writer.lines(line.view());
}

}  // namespace

void VeltranoPDF::writeInformation() {
  ObjectWriter& writer = assembly_.writer;
  const DocumentInformation& information = settings_.information;
  writer.begin();
  writer.line("<<");
  // The strings go in as they are: escaping is the host's, who may rely on writing escapes of its own.
  writer.line({"/Producer (", information.producer, ")"});
  writer.line({"/Author (", information.author, ")"});
  writer.line({"/CreationDate (D:", timeStamp(localTime()), ")"});
  writer.line({"/Creator (", information.creator, ")"});
  writer.line({"/Keywords (", information.keywords, ")"});
  writer.line({"/Subject (", information.subject, ")"});
  writer.line({"/Title (", information.title, ")"});
  writer.line("/ModDate ()");
  writer.line(">>");
  writer.end();
}

std::vector<int> VeltranoPDF::writeFonts() {
  ObjectWriter& writer = assembly_.writer;
  std::vector<int> objects;
  for (const std::string& name : fonts_.fontTable) {
    objects.push_back(writer.begin());
    writer.line("<< /Type /Font");
    writer.line("/Subtype /Type1");
    writer.line({"/Name /F", decimal(static_cast<std::int64_t>(objects.size()))});
    writer.line({"/BaseFont /", nameText(name)});
    writer.line("/Encoding /WinAnsiEncoding");
    writer.line(">>");
    writer.end();
  }
  return objects;
}

int VeltranoPDF::pageObject(int page) const {
  return assembly_.pagesObject + 1 + static_cast<int>(images_.imageCount) + page;
}

void VeltranoPDF::writePagesTree() {
  ObjectWriter& writer = assembly_.writer;
  const auto pageCount = static_cast<int>(assembly_.pages.size());
  assembly_.pagesObject = writer.begin();
  writer.line("<< /Type /Pages");
  writer.line("/Kids [");
  for (int page = 1; page <= pageCount; ++page) writer.line({decimal(pageObject(page)), " 0 R"});
  writer.line("]");
  writer.line({"/Count ", decimal(pageCount)});
  writer.line(">>");
  writer.end();
}

void VeltranoPDF::writeResources(const std::vector<int>& fontObjects) {
  ObjectWriter& writer = assembly_.writer;
  assembly_.resourcesObject = writer.begin();
  writer.line("<< /ProcSet [ /PDF /Text /ImageC]");
  writer.line("/XObject << ");
  for (int image = 1; image <= static_cast<int>(images_.imageCount); ++image) {
    writer.line({"/ImgJPEG", decimal(image), " ", decimal(assembly_.resourcesObject + image), " 0 R"});
  }
  writer.line(">>");
  writer.line("/Font << ");
  for (std::size_t i = 0; i < fontObjects.size(); ++i) {
    writer.line({"/F", decimal(static_cast<std::int64_t>(i + 1)), " ", decimal(fontObjects[i]), " 0 R "});
  }
  writer.line(">>");
  writer.line(">>");
  writer.end();
}

void VeltranoPDF::writeImages() {
  for (std::size_t i = 0; i < images_.imageCount; ++i) {
    writeImageObject(assembly_.writer, images_.images[i], i + 1);
  }
}

void VeltranoPDF::writePages() {
  ObjectWriter& writer = assembly_.writer;
  auto link = links_.links.cbegin();  // in the order of the pages they were made on
  ContentText mediaBox;
  for (std::size_t i = 0; i < assembly_.pages.size(); ++i) {
    const PageRecord& page = assembly_.pages[i];
    writer.begin();
    writer.line("<< /Type /Page");
    writer.line({"/Parent ", decimal(assembly_.pagesObject), " 0 R"});
    mediaBox.clear();
    ContentLine(mediaBox)
        .text("/MediaBox [ 0 0 ")
        .point(page.format.width, page.format.height)
        .text("]")
        .end();
    writer.lines(mediaBox.view());
    writer.line({"/Resources ", decimal(assembly_.resourcesObject), " 0 R"});
    const auto onThisPage = [&] {
      return link != links_.links.cend() && link->page == static_cast<int>(i + 1);
    };
    if (onThisPage()) {
      writer.line("/Annots [");
      for (; onThisPage(); ++link) writeAnnotation(writer, *link);
      writer.line("]");
    }
    writer.line({"/Contents ", decimal(page.contentObject), " 0 R"});
    writer.line(">>");
    writer.end();
  }
}

void VeltranoPDF::writeCatalog() {
  ObjectWriter& writer = assembly_.writer;
  const ViewerSettings& viewer = settings_.viewer;
  const int catalogObject = writer.begin();
  writer.line("<<");
  writer.line("/Type /Catalog");
  writer.line({"/Pages ", decimal(assembly_.pagesObject), " 0 R"});
  writeOpenAction(writer, viewer.zoomMode);
  writeLayout(writer, viewer.layoutMode);
  if (viewer.useThumbs) writer.line("/PageMode /UseThumbs");
  if (viewer.useOutlines) {
    writer.line({"/Outlines ", decimal(bookmarks_.bookmarkCount), " 0 R"});
    writer.line("/PageMode /UseOutlines");
  }
  if (viewer.viewerPreference) writeViewerPreferences(writer, *viewer.viewerPreference);
  writer.line(">>");
  writer.end();
  writer.writeTrailer(catalogObject);
}

}  // namespace veltrano
