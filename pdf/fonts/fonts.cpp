#include "pdf/fonts/fonts.h"

#include <algorithm>
#include <limits>

#include "base/numbers/numbers.h"
#include "base/os/files.h"
#include "base/text/code_page.h"
#include "base/trace.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

namespace {

/// Families of PDFFontNme, in its order.
constexpr std::string_view families[] = {"Helvetica", "Courier", "Times", "Symbol", "ZapfDingbats"};

constexpr std::string_view extension = ".afm";

/// The base-font name of a family and a style. Nobody checks that it exists: bold Symbol is asked for as it
/// is.
std::string baseFontName(std::string_view family, bool italic, bool bold) {
  const bool times = family == "Times";
  if (italic && !bold && times) {
    return "TimesItalic";  // without a hyphen, as hosts know it; metrics of this name are shipped
  }
  std::string name(family);
  if (italic && bold) {
    name += times ? "-BoldItalic" : "-BoldOblique";
  } else if (italic) {
    name += "-Oblique";
  } else if (bold) {
    name += "-Bold";
  } else if (times) {
    name += "-Roman";
  }
  return name;
}

}  // namespace

void VeltranoPDF::findFontNumber() {
  const auto& table = fonts_.fontTable;
  const auto found = std::find(table.begin(), table.end(), fonts_.currentFontName);
  if (fonts_.currentFontName.empty()) {
    fonts_.fontNumber = 1;
  } else {
    fonts_.fontNumber = found == table.end() ? 0 : static_cast<int>(found - table.begin()) + 1;
  }
}

void VeltranoPDF::PDFLoadAfm(const std::filesystem::path& folder) {
  const auto files = listFiles(folder);
  if (!files) traceSkipped("PDFLoadAfm", "no such folder");
  // The table is overwritten from its start and never shrinks: entries of a longer folder before stay.
  std::size_t count = 0;
  const auto isNamed = [](std::string_view name) {
    return ansiLower(name).find(extension) != std::string::npos;
  };
  // The whole path counts: in a folder "fonts.afm" every file is taken for a font, as hosts know it.
  std::error_code ignored;
  const bool anyFile = isNamed(pathToAnsi(std::filesystem::absolute(folder, ignored)));
  for (const std::filesystem::path& file : files.value_or(std::vector<std::filesystem::path>())) {
    const std::string name = pathToAnsi(file);
    if (!anyFile && !isNamed(name)) {
      continue;
    }
    ++count;
    if (fonts_.fontTable.size() < count) {
      fonts_.fontTable.resize(count);
    }
    if (name.size() >= extension.size()) {
      fonts_.fontTable[count - 1] = name.substr(0, name.size() - extension.size());
    }
  }
  if (count > 0) {
    fonts_.folder.setPath(folder);
  }
  findFontNumber();
  fonts_.metrics = fonts_.folder.read(fonts_.currentFontName);
}

void VeltranoPDF::PDFSetFont(std::int32_t font, std::int16_t size, std::int32_t style) {
  if (font < FONT_ARIAL || font > FONT_ZAPFDINGBATS) {
    raise("Invalid Fort ");
    fonts_.currentFontName = "TimesRoman";
    fonts_.italicFlag = false;
    fonts_.boldFlag = false;
  } else {
    fonts_.currentFontFamily = families[font];
    const NumberText digits = integerText(style);
    const auto has = [&digits](char digit) { return digits.view().find(digit) != std::string_view::npos; };
    fonts_.italicFlag = has('1');
    fonts_.boldFlag = has('2');
    // An underline stays asked for until a text has been written.
    fonts_.underlineFlag = fonts_.underlineFlag || has('3');
    fonts_.currentFontName = baseFontName(fonts_.currentFontFamily, fonts_.italicFlag, fonts_.boldFlag);
  }
  if (fonts_.fontCounter <= std::numeric_limits<std::int16_t>::max()) {
    fonts_.fontSerial = static_cast<std::int16_t>(fonts_.fontCounter);
  }
  fonts_.fontSize = size;
  if (fonts_.fontCounter < std::numeric_limits<std::int32_t>::max()) {
    ++fonts_.fontCounter;
  }
  findFontNumber();
  fonts_.lookAtMetrics();
}

double VeltranoPDF::PDFGetStringWidth(std::string_view text, std::string_view fontName, std::int16_t size) {
  const bool current = fontName.empty() || fontName == fonts_.currentFontName;
  const auto metrics = fonts_.folder.read(current ? fonts_.currentFontName : fontName);
  if (current) {
    fonts_.metrics = metrics;
  }
  return metrics->width(text, size);
}

}  // namespace veltrano
