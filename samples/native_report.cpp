// A report made with the portable library: a cover, a page that shows what can be drawn, a table of orders
// over several pages, links and nested bookmarks.
//
//   native_report <folder of orders.csv> <output folder>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/numbers/numbers.h"
#include "base/os/files.h"
#include "base/text/code_page.h"
#include "veltrano/pdf.h"

namespace {

using namespace veltrano;
namespace fs = std::filesystem;

constexpr double left = 20;
constexpr double right = 190;
constexpr double pageWidth = 210;
constexpr const char* ink = "#1F2933";
constexpr const char* accent = "#0B5C8A";
constexpr const char* pale = "#E6F0F6";

struct Order {
  std::string date;
  std::string customer;
  std::string city;
  std::string article;
  double quantity = 0;
  double price = 0;
};

std::vector<std::string> split(std::string_view line, char separator) {
  std::vector<std::string> fields;
  for (std::size_t start = 0; start <= line.size();) {
    const std::size_t end = std::min(line.find(separator, start), line.size());
    fields.emplace_back(line.substr(start, end - start));
    start = end + 1;
  }
  return fields;
}

/// The lines behind the heading; what has not six fields is no order. The text stays in the ANSI code page.
std::vector<Order> readOrders(const fs::path& file) {
  std::vector<Order> orders;
  const auto content = readWholeFile(file);
  if (!content) return orders;
  for (std::string& line : split(*content, '\n')) {
    if (line.ends_with('\r')) line.pop_back();
    const auto fields = split(line, ';');
    if (fields.size() != 6) continue;
    const auto quantity = parseNumber(fields[4]);
    const auto price = parseNumber(fields[5]);
    if (quantity && price) orders.push_back({fields[0], fields[1], fields[2], fields[3], *quantity, *price});
  }
  return orders;
}

std::optional<fs::path> photoIn(const fs::path& folder) {
  for (const fs::path& name : listFiles(folder).value_or(std::vector<fs::path>())) {
    if (name.extension() == ".jpg") return folder / name;
  }
  return std::nullopt;
}

/// "12 345.60"
std::string money(double amount) {
  std::string text(formatPdfNumber(amount, 2).view());
  for (std::size_t at = text.find('.'); at > 3; at -= 3) text.insert(at - 3, 1, ' ');
  return text;
}

class Report {
 public:
  explicit Report(const fs::path& file) {
    pdf_.onError = [](std::string_view message) {
      std::fprintf(stderr, "native_report: %.*s\n", static_cast<int>(message.size()), message.data());
    };
    pdf_.PDFFileName(file);
    pdf_.PDFTitle(utf8ToAnsi("Orders of the year"));
    pdf_.PDFAuthor(utf8ToAnsi("Émilie Lefèvre"));
    pdf_.PDFSubject("A report made with the portable library");
    pdf_.PDFUseOutlines(true);
    pdf_.PDFSetLayoutMode(LAYOUT_CONTINOUS);
    pdf_.PDFSetZoomMode(ZOOM_FULLWIDTH);
    pdf_.PDFSetViewerPreferences(VIEW_DISPLAYDOCTITLE);
    pdf_.PDFSetUnit(UNIT_MM);
    pdf_.PDFSetMargins(20, 20);
    pdf_.PDFSetCellMargin(4);
  }

  void cover(const std::optional<fs::path>& photo, std::size_t orders);
  void drawings();
  void table(const std::vector<Order>& orders);
  void finish() { pdf_.PDFEndDoc(); }
  void begin() { pdf_.PDFBeginDoc(); }
  /// An empty watermark ends it: the pages that follow have none.
  void endCover() {
    pdf_.PDFEndPage();
    pdf_.PDFFiligran("");
    pdf_.PDFNewPage();
  }
  void nextPage() {
    pdf_.PDFEndPage();
    pdf_.PDFNewPage();
  }

 private:
  void text(std::string_view what, double x, double y, std::int16_t size, std::int32_t style = FONT_NORMAL,
            const Value& color = ink) {
    pdf_.PDFSetFont(FONT_ARIAL, size, style);
    pdf_.PDFSetTextColor(color);
    pdf_.PDFTextOut(what, x, y);
  }
  void heading(std::string_view what) {
    text(what, left, 24, 20, FONT_BOLD, accent);
    pdf_.PDFSetLineStyle(pPDF_SOLID);
    pdf_.PDFSetLineColor(accent);
    pdf_.PDFSetLineWidth(0.6);
    pdf_.PDFDrawLineHor(left, 28, right - left);
  }
  /// The box of a cell is drawn with the line that was drawn last.
  void hairline(double y) {
    pdf_.PDFSetLineColor("#9AA5B1");
    pdf_.PDFSetLineWidth(0.15);
    pdf_.PDFDrawLineHor(left, y, right - left);
  }
  void label(std::string_view what, double x, double y) { text(what, x, y, 8, FONT_NORMAL, "#52606D"); }
  void filled(double x, double y, double width, double height, const Value& color) {
    pdf_.PDFSetDrawMode(DRAW_DRAW);
    pdf_.PDFSetDrawColor(color);
    pdf_.PDFDrawRectangle(x, y, width, height);
  }
  void lineSamples();
  void shapeSamples();
  void colorSamples();
  void cellSamples();
  void textSamples();
  void row(const std::array<std::string, 6>& fields, double y, bool headingRow, bool shaded);

  VeltranoPDF pdf_;
};

void Report::cover(const std::optional<fs::path>& photo, std::size_t orders) {
  pdf_.PDFSetBookmark("Cover", 0, 0);
  pdf_.PDFFiligran("SPECIMEN");
  filled(0.01, 0.01, pageWidth, 62, accent);
  text(utf8ToAnsi("Orders of the year"), left, 34, 34, FONT_BOLD, COLOR_BLANC);
  text(utf8ToAnsi("Customers, articles and amounts · 2026"), left, 48, 14, FONT_NORMAL, pale);
  if (photo) {
    double width = right - left;
    double height = 0;
    pdf_.PDFImage(*photo, left, 78, width, height, "https://example.com/photo");
    label(utf8ToAnsi("The photo is a link, as is the address below."), left, 78 + height + 5);
  } else {
    filled(left, 78, right - left, 90, pale);
  }
  pdf_.PDFSetFont(FONT_ARIAL, 11);
  pdf_.PDFSetTextColor(ink);
  pdf_.PDFSetBorder(BORDER_NONE);
  pdf_.PDFSetAlignement(ALIGN_FJUSTIFY);
  pdf_.PDFSetCellMargin(0);  // flush with the photo
  pdf_.PDFCell(
      "This report was written by a program that comes with the library. It holds " + std::to_string(orders) +
          utf8ToAnsi(" orders, read from a file of separated values whose names carry their accents "
                     "(Renée, Jürgen, Anaïs), and shows what the library draws: lines, shapes, colours, "
                     "aligned and justified cells, pictures, links and bookmarks."),
      left, 214, right - left, 26);
  pdf_.PDFSetCellMargin(4);
  pdf_.PDFSetFont(FONT_ARIAL, 11);
  pdf_.PDFSetTextColor(accent);
  pdf_.PDFLink(left, 276, "https://example.com/orders", "https://example.com/orders?year=2026&page=(all)");
}

void Report::lineSamples() {
  constexpr std::array<std::pair<std::int32_t, const char*>, 4> styles{{{pPDF_SOLID, "solid"},
                                                                        {pPDF_DASH, "dash"},
                                                                        {pPDF_DASHDOT, "dash dot"},
                                                                        {pPDF_DASHDOTDOT, "dash dot dot"}}};
  double y = 42;
  for (const auto& [style, name] : styles) {
    pdf_.PDFSetLineColor(ink);
    pdf_.PDFSetLineWidth(0.4);
    pdf_.PDFSetLineStyle(style);
    label(name, left, y + 1);
    pdf_.PDFDrawLineHor(left + 22, y, 68);
    y += 6;
  }
  pdf_.PDFSetLineStyle(pPDF_SOLID);
  for (int i = 0; i < 8; ++i) {
    pdf_.PDFSetLineWidth(0.1 + 0.15 * i);
    pdf_.PDFDrawLineVer(118 + 4.5 * i, 40, 20);
  }
  pdf_.PDFSetLineWidth(0.3);
  for (int i = 0; i <= 6; ++i) pdf_.PDFDrawLine(160, 60, 160 + 5 * i, 40);
  label("widths from 0.1 to 1.15 mm", 118, 65);
  label("free lines", 160, 65);
}

void Report::shapeSamples() {
  constexpr std::array<std::pair<std::int32_t, const char*>, 3> modes{
      {{DRAW_NORMAL, "line"}, {DRAW_DRAW, "fill"}, {DRAW_DRAWBORDER, "fill and line"}}};
  double y = 72;
  for (const auto& [mode, name] : modes) {
    pdf_.PDFSetLineColor(accent);
    pdf_.PDFSetDrawColor("#F7B733");
    pdf_.PDFSetLineWidth(0.5);
    pdf_.PDFSetDrawMode(mode);
    pdf_.PDFDrawEllipse(left + 62, y, 34, 14);
    // A rectangle writes its line width behind itself: its own outline has the width of the shape before.
    pdf_.PDFDrawRectangle(left + 22, y, 34, 14);
    pdf_.PDFDrawEllipse(left + 102, y, 14);
    pdf_.PDFDrawPolygon(
        {Value::List{left + 124, y + 14}, Value::List{left + 131, y}, Value::List{left + 138, y + 14}});
    pdf_.PDFDrawPolygon({Value::Doubles{left + 144, y + 5}, Value::Doubles{left + 156, y},
                         Value::Doubles{left + 168, y + 5}, Value::Doubles{left + 163, y + 14},
                         Value::Doubles{left + 149, y + 14}});
    label(name, left, y + 8);
    y += 18;
  }
}

void Report::colorSamples() {
  const std::array<std::pair<Value, const char*>, 10> colors{{{COLOR_NOIR, "NOIR"},
                                                              {COLOR_BLEU, "BLEU"},
                                                              {COLOR_VERT, "VERT"},
                                                              {COLOR_CYAN, "CYAN"},
                                                              {COLOR_ROUGE, "ROUGE"},
                                                              {COLOR_MAGENTA, "MAGENTA"},
                                                              {COLOR_JAUNE, "JAUNE"},
                                                              {"#FF8000", "#FF8000"},
                                                              {Value::List{90, 40, 140}, "90,40,140"},
                                                              {0x80C0FF, "0x80C0FF"}}};
  double x = left;
  for (const auto& [color, name] : colors) {
    filled(x, 128, 15, 8, color);
    text(name, x, 139.5, 6, FONT_NORMAL, "#52606D");
    x += 17;
  }
}

void Report::cellSamples() {
  constexpr std::array<std::pair<std::int32_t, const char*>, 4> alignments{{{ALIGN_LEFT, "left"},
                                                                            {ALIGN_CENTER, "centre"},
                                                                            {ALIGN_RIGHT, "right"},
                                                                            {ALIGN_FJUSTIFY, "justified"}}};
  hairline(142);
  double x = left;
  for (const auto& [alignment, name] : alignments) {
    pdf_.PDFSetFont(FONT_TIMES, 10);
    pdf_.PDFSetTextColor(ink);
    pdf_.PDFSetAlignement(alignment);
    pdf_.PDFSetBorder(BORDER_ALL);
    pdf_.PDFCell(
        utf8ToAnsi(name) + utf8ToAnsi(": à la carte, déjà vu and Ærøskøbing in one cell that breaks."), x,
        146, 41, 24);
    x += 43;
  }
  constexpr std::array<std::pair<std::int32_t, const char*>, 6> borders{{{BORDER_NONE, "none"},
                                                                         {BORDER_TOP, "top"},
                                                                         {BORDER_BOTTOM, "bottom"},
                                                                         {BORDER_LEFT, "left"},
                                                                         {BORDER_RIGHT, "right"},
                                                                         {2345, "2345"}}};
  x = left;
  pdf_.PDFSetAlignement(ALIGN_CENTER);
  for (const auto& [border, name] : borders) {
    pdf_.PDFSetFont(FONT_COURIER, 9);
    pdf_.PDFSetBorder(border);
    pdf_.PDFCell(name, x, 176, 24, 7);
    x += 29;
  }
  pdf_.PDFSetDrawColor(pale);
  pdf_.PDFSetFill(true);
  pdf_.PDFSetBorder(BORDER_ALL);
  pdf_.PDFCell("filled, with a border and a link", left, 188, 82, 7, "https://example.com/cell");
  pdf_.PDFSetDrawColor(pale);
  pdf_.PDFSetBorder(BORDER_NONE);
  pdf_.PDFCell("filled, without one", left + 87, 188, 83, 7);
  pdf_.PDFSetFill(false);
}

void Report::textSamples() {
  constexpr std::array<std::pair<std::int32_t, const char*>, 3> families{
      {{FONT_ARIAL, "Arial"}, {FONT_COURIER, "Courier"}, {FONT_TIMES, "Times"}}};
  constexpr std::array<std::pair<std::int32_t, const char*>, 5> styles{{{FONT_NORMAL, "normal"},
                                                                        {FONT_ITALIC, "italic"},
                                                                        {FONT_BOLD, "bold"},
                                                                        {12, "both"},
                                                                        {FONT_UNDERLINE, "under"}}};
  pdf_.PDFSetTextColor(ink);
  double y = 206;
  for (const auto& [family, familyName] : families) {
    double x = left;
    for (const auto& [style, styleName] : styles) {
      pdf_.PDFSetFont(family, 10, style);
      pdf_.PDFTextOut(std::string(familyName) + " " + styleName, x, y);
      x += 34;
    }
    y += 6;
  }
  label("Symbol", left, y + 1);
  label("ZapfDingbats", left + 34, y + 1);
  pdf_.PDFSetTextColor(ink);
  pdf_.PDFSetFont(FONT_SYMBOL, 12);
  pdf_.PDFTextOut("abgdepw", left + 13, y + 1);
  pdf_.PDFSetFont(FONT_ZAPFDINGBATS, 12);
  pdf_.PDFTextOut("\"#4Hlnv", left + 54, y + 1);
  for (int angle = 0; angle < 360; angle += 45) {
    pdf_.PDFSetFont(FONT_ARIAL, 9);
    pdf_.PDFSetRotation(angle);
    pdf_.PDFTextOut("     turned " + std::to_string(angle), 140, 255);
  }
  pdf_.PDFSetRotation(0);
  pdf_.PDFSetLineColor(accent);
  pdf_.PDFSetDrawMode(DRAW_NORMAL);
  pdf_.PDFDrawRectangle(left, 240, 40, 20, "https://example.com/rectangle");
  pdf_.PDFDrawEllipse(left + 45, 240, 40, 20, "https://example.com/ellipse");
  label("a rectangle and an ellipse that are links", left, 265);
}

void Report::drawings() {
  pdf_.PDFSetBookmark("What can be drawn", 0, 0);
  heading("What can be drawn");
  pdf_.PDFSetBookmark("Lines", 1, 36);
  lineSamples();
  pdf_.PDFSetBookmark("Shapes", 1, 68);
  shapeSamples();
  pdf_.PDFSetBookmark("Colours", 2, 124);
  colorSamples();
  pdf_.PDFSetBookmark("Cells", 1, 142);
  cellSamples();
  pdf_.PDFSetBookmark("Text", 1, 200);
  textSamples();
}

void Report::row(const std::array<std::string, 6>& fields, double y, bool headingRow, bool shaded) {
  constexpr std::array<double, 6> widths{22, 36, 28, 42, 16, 26};
  double x = left;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    pdf_.PDFSetFont(FONT_ARIAL, 9, headingRow ? FONT_BOLD : FONT_NORMAL);
    pdf_.PDFSetTextColor(headingRow ? Value(COLOR_BLANC) : Value(ink));
    pdf_.PDFSetFill(headingRow || shaded);
    pdf_.PDFSetDrawColor(headingRow ? accent : pale);
    pdf_.PDFSetAlignement(i < 4 ? ALIGN_LEFT : ALIGN_RIGHT);
    pdf_.PDFSetBorder(BORDER_ALL);
    pdf_.PDFCell(fields[i], x, y, widths[i], 6);
    x += widths[i];
  }
  pdf_.PDFSetFill(false);
}

void Report::table(const std::vector<Order>& orders) {
  constexpr std::size_t rowsPerPage = 36;
  const std::array<std::string, 6> names{"Date", "Customer", "City", "Article", "Pieces", "Amount"};
  double total = 0;
  double y = 0;
  pdf_.PDFSetBookmark("Orders", 0, 0);
  for (std::size_t i = 0; i < orders.size(); ++i) {
    if (i % rowsPerPage == 0) {
      if (i > 0) nextPage();
      const std::string page = "page " + std::to_string(pdf_.PDFPageNumber());
      pdf_.PDFSetBookmark("from " + orders[i].customer + ", " + orders[i].date, 1, 0);
      heading("Orders");
      constexpr double millimetresPerPoint = 25.4 / 72;
      label(page, right - pdf_.PDFGetStringWidth(page, "Helvetica", 8) * millimetresPerPoint, 285);
      y = 36;
      hairline(y);
      row(names, y, true, false);
      y += 6;
    }
    const Order& order = orders[i];
    const double sum = order.quantity * order.price;
    total += sum;
    row({order.date, order.customer, order.city, order.article,
         std::string(integerText(static_cast<int>(order.quantity)).view()), money(sum)},
        y, false, i % 2 == 1);
    y += 6;
  }
  pdf_.PDFSetBookmark("Total", 1, y);
  pdf_.PDFSetFont(FONT_ARIAL, 11, FONT_BOLD);
  pdf_.PDFSetTextColor(accent);
  pdf_.PDFSetAlignement(ALIGN_RIGHT);
  pdf_.PDFSetLineColor(accent);
  pdf_.PDFSetLineWidth(0.4);
  pdf_.PDFSetBorder(23);
  pdf_.PDFCell("Total   " + money(total), left, y + 2, right - left, 8);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: native_report <folder of orders.csv> <output folder>\n", stderr);
    return 2;
  }
  const fs::path source = argv[1];
  const fs::path file = fs::path(argv[2]) / "report.pdf";
  const std::vector<Order> orders = readOrders(source / "orders.csv");
  if (orders.empty()) {
    std::fprintf(stderr, "native_report: no orders in %s\n", (source / "orders.csv").string().c_str());
    return 1;
  }
  Report report(file);
  report.begin();
  report.cover(photoIn(source), orders.size());
  report.endCover();
  report.drawings();
  report.nextPage();
  report.table(orders);
  report.finish();
  if (!fs::exists(file)) {
    std::fprintf(stderr, "native_report: cannot write %s\n", file.string().c_str());
    return 1;
  }
  return 0;
}
