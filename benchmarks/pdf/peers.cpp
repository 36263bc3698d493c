#include "benchmarks/pdf/peers.h"

#include <hpdf.h>

#include <charconv>
#include <cmath>
#include <fstream>

namespace veltrano::bench {

namespace {

constexpr double pageHeight = 841.89;
constexpr double perMillimetre = 72 / 25.4;

class Floor {
 public:
  explicit Floor(std::size_t size) { text_.reserve(size); }
  Floor& number(double value) {
    char digits[24];
    auto hundredths = std::llround(value * 100);
    if (hundredths < 0) {
      text_ += '-';
      hundredths = -hundredths;
    }
    char* end = std::to_chars(digits, digits + sizeof digits, hundredths / 100).ptr;
    *end++ = '.';
    *end++ = static_cast<char>('0' + hundredths / 10 % 10);
    *end++ = static_cast<char>('0' + hundredths % 10);
    text_.append(digits, end);
    return *this;
  }
  Floor& text(std::string_view text) {
    text_ += text;
    return *this;
  }
  void line(std::string_view line) { text_.append(line).append("\r\n"); }
  void save(const std::filesystem::path& file) const {
    std::ofstream(file, std::ios::binary).write(text_.data(), static_cast<std::streamsize>(text_.size()));
  }

 private:
  std::string text_;
};

double xPoints(double x) {
  return x * perMillimetre;
}
double yPoints(double y) {
  return pageHeight - y * perMillimetre;
}

class Haru {
 public:
  explicit Haru(const std::filesystem::path& file)
      : file_(file.string()), document_(HPDF_New(nullptr, nullptr)) {
    HPDF_SetCompressionMode(document_, HPDF_COMP_NONE);
    font_ = HPDF_GetFont(document_, "Helvetica", "WinAnsiEncoding");
  }
  Haru(const Haru&) = delete;
  Haru& operator=(const Haru&) = delete;
  ~Haru() {
    HPDF_SaveToFile(document_, file_.c_str());
    HPDF_Free(document_);
  }
  HPDF_Page addPage() {
    HPDF_Page page = HPDF_AddPage(document_);
    HPDF_Page_SetSize(page, HPDF_PAGE_SIZE_A4, HPDF_PAGE_PORTRAIT);
    HPDF_Page_SetFontAndSize(page, font_, 10);
    return page;
  }

 private:
  std::string file_;
  HPDF_Doc document_;
  HPDF_Font font_ = nullptr;
};

}  // namespace

void haruTextPages(const std::filesystem::path& file, int pages) {
  Haru haru(file);
  for (int i = 0; i < pages; ++i) {
    HPDF_Page page = haru.addPage();
    for (int row = 0; row < stringsPerPage; ++row) {
      HPDF_Page_BeginText(page);
      HPDF_Page_TextOut(page, static_cast<float>(xPoints(10)), static_cast<float>(yPoints(10 + row * 4.5)),
                        sentence.data());
      HPDF_Page_EndText(page);
    }
    for (int row = 0; row < linesPerPage; ++row) {
      HPDF_Page_SetLineWidth(page, 0.5F);
      HPDF_Page_MoveTo(page, static_cast<float>(xPoints(10)), static_cast<float>(yPoints(11 + row * 12.3)));
      HPDF_Page_LineTo(page, static_cast<float>(xPoints(190)), static_cast<float>(yPoints(11 + row * 12.3)));
      HPDF_Page_Stroke(page);
    }
    for (int row = 0; row < rectanglesPerPage; ++row) {
      HPDF_Page_Rectangle(page, static_cast<float>(xPoints(150)),
                          static_cast<float>(yPoints(20 + row * 25.7)), static_cast<float>(xPoints(30)),
                          static_cast<float>(xPoints(8)));
      HPDF_Page_Stroke(page);
    }
  }
}

void haruTablePages(const std::filesystem::path& file, int pages) {
  Haru haru(file);
  for (int i = 0; i < pages; ++i) {
    HPDF_Page page = haru.addPage();
    for (int row = 0; row < tableRows; ++row) {
      for (int column = 0; column < tableColumns; ++column) {
        const auto x = static_cast<float>(xPoints(15 + column * 30));
        const auto y = static_cast<float>(yPoints(10 + row * 6.5));
        HPDF_Page_Rectangle(page, x, y, static_cast<float>(xPoints(30)), static_cast<float>(xPoints(6.5)));
        HPDF_Page_Stroke(page);
        const float width = HPDF_Page_TextWidth(page, amount.data());
        HPDF_Page_BeginText(page);
        HPDF_Page_TextOut(page, x + static_cast<float>(xPoints(29)) - width, y + 4, amount.data());
        HPDF_Page_EndText(page);
      }
    }
  }
}

void floorTextPages(const std::filesystem::path& file, int pages) {
  Floor floor(static_cast<std::size_t>(pages) * 16000);
  for (int i = 0; i < pages; ++i) {
    for (int row = 0; row < stringsPerPage; ++row) {
      floor.line("q 0.000 0.000 0.000 rg ");
      floor.line("%DEBUT_TEXT/%");
      floor.line("BT");
      floor.number(xPoints(10)).text(" ").number(yPoints(10 + row * 4.5)).line(" Td");
      floor.line("/F9 10 Tf");
      floor.text("(").text(sentence).line(") Tj");
      floor.line("ET");
      floor.line("Q");
      floor.line("%FIN_TEXT/%");
    }
    for (int row = 0; row < linesPerPage; ++row) {
      const double y = yPoints(11 + row * 12.3);
      floor.line("%DEBUT_LNH/%");
      floor.line("[] 0 d");
      floor.number(xPoints(10)).text(" ").number(y).line(" m");
      floor.number(xPoints(190)).text(" ").number(y).line(" l");
      floor.line("0 G");
      floor.number(xPoints(0.2)).line(" w S");
      floor.line("%FIN_LNH/%");
    }
    for (int row = 0; row < rectanglesPerPage; ++row) {
      floor.line("%DEBUT_RECT/%");
      floor.line("0 G");
      floor.line("[] 0 d");
      floor.number(xPoints(150)).text(" ").number(yPoints(20 + row * 25.7)).text(" ");
      floor.number(xPoints(30)).text(" ").number(-xPoints(8)).line(" re s");
      floor.number(xPoints(0.2)).line(" w S");
      floor.line("%FIN_RECT/%");
    }
  }
  floor.save(file);
}

void floorTablePages(const std::filesystem::path& file, int pages) {
  Floor floor(static_cast<std::size_t>(pages) * 45000);
  for (int i = 0; i < pages; ++i) {
    for (int row = 0; row < tableRows; ++row) {
      for (int column = 0; column < tableColumns; ++column) {
        const double x = xPoints(15 + column * 30);
        const double y = yPoints(10 + row * 6.5);
        floor.line("%DEBUT_CELL/%");
        floor.line("0 g");
        floor.number(xPoints(0.2)).line(" w");
        floor.number(x).text(" ").number(y).text(" ");
        floor.number(xPoints(30)).text(" ").number(-xPoints(6.5)).line(" re S\r");
        floor.line("q 0 g ");
        floor.line("BT");
        floor.number(x + 40).text(" ").number(y - 12).line(" Td");
        floor.line("/F9 10 Tf");
        floor.text("(").text(amount).line(") Tj");
        floor.line("ET");
        floor.line("Q");
        floor.line("%FIN_CELL/%");
      }
    }
  }
  floor.save(file);
}

}  // namespace veltrano::bench
