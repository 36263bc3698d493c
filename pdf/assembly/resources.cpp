#include "pdf/assembly/resources.h"

namespace veltrano {

namespace {

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

NumberText number(std::size_t value) {
  return integerText(static_cast<std::int64_t>(value));
}

}  // namespace

std::vector<int> writeFonts(ObjectWriter& writer, const std::vector<std::string>& names) {
  std::vector<int> objects;
  for (const std::string& name : names) {
    objects.push_back(writer.begin());
    writer.line("<< /Type /Font");
    writer.line("/Subtype /Type1");
    writer.line({"/Name /F", number(objects.size())});
    writer.line({"/BaseFont /", nameText(name)});
    writer.line("/Encoding /WinAnsiEncoding");
    writer.line(">>");
    writer.end();
  }
  return objects;
}

int writeResources(ObjectWriter& writer, const std::vector<int>& fontObjects, std::size_t imageCount) {
  const int object = writer.begin();
  writer.line("<< /ProcSet [ /PDF /Text /ImageC]");
  writer.line("/XObject << ");
  for (int image = 1; image <= static_cast<int>(imageCount); ++image) {
    writer.line({"/ImgJPEG", integerText(image), " ", integerText(object + image), " 0 R"});
  }
  writer.line(">>");
  writer.line("/Font << ");
  for (std::size_t i = 0; i < fontObjects.size(); ++i) {
    writer.line({"/F", number(i + 1), " ", integerText(fontObjects[i]), " 0 R "});
  }
  writer.line(">>");
  writer.line(">>");
  writer.end();
  return object;
}

void writeImages(ObjectWriter& writer, const std::vector<Image>& images) {
  std::size_t count = 0;
  for (const Image& image : images) {
    writer.begin();
    writer.line("<</Type /XObject");
    writer.line("/Subtype /Image");
    writer.line("/Filter [/DCTDecode ]");
    writer.line({"/Width ", integerText(image.width)});
    writer.line({"/Height ", integerText(image.height)});
    writer.line({"/ColorSpace /", image.colourSpace});
    writer.line({"/BitsPerComponent ", integerText(image.bitsPerComponent)});
    writer.line({"/Length ", number(image.data->size())});
    writer.line({"/Name /ImgJPEG", number(++count), ">>"});
    writer.line("stream");
    writer.sharedLine(image.data);
    writer.line("endstream");
    writer.end();
  }
}

}  // namespace veltrano
