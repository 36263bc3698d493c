// A text or a table as a PDF.

#include "base/files/whole.h"
#include "database/access/transfer/table_text.h"
#include "pdf/sheets/sheets.h"
#include "tools/program.h"
#include "veltrano/text.h"
#include "veltrano/version.h"

namespace veltrano::tools {

namespace {

/// Text that is not UTF-8 is taken to be in the code page.
std::string toAnsi(const std::string& text) {
  return access::isDatabaseText(text) ? utf8ToAnsi(text) : text;
}

std::string readText(const std::string& name) {
  auto text = readWholeFile(pathFromUtf8(name));
  if (!text) {
    throw Problem(name, "cannot be read");
  }
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  return toAnsi(text->substr(text->starts_with(byteOrderMark) ? byteOrderMark.size() : 0));
}

std::vector<std::vector<std::string>> readTable(const std::string& name) {
  auto reader = orProblem(access::CsvReader::open(pathFromUtf8(name)), name);
  std::vector<std::vector<std::string>> rows;
  std::vector<access::CsvField> fields;
  while (reader.next(fields)) {
    auto& row = rows.emplace_back();
    for (const auto& field : fields) row.push_back(toAnsi(field.text));
  }
  orProblem(reader.status(), name + ": line " + std::to_string(reader.line()));
  if (rows.empty()) {
    throw Problem(name, "an empty table");
  }
  return rows;
}

}  // namespace

void makePages(const Pages& options) {
  const auto input = pathFromUtf8(options.input);
  keepApart(options.input, options.output);
  const std::string title = utf8ToAnsi(options.title.empty() ? pathToUtf8(input.stem()) : options.title);
  auto output = orProblem(NewFile::create(pathFromUtf8(options.output)), options.output);
  sheets::Book book(options.letter ? 612 : 595, options.letter ? 792 : 842);
  if (options.landscape) {
    book.turn();
  }
  book.pdf.PDFFileName(output.unfinished());
  book.pdf.PDFCreator(std::string("veltrano ") + versionText);
  Progress progress("drawing");
  const auto tick = [&progress](double done) { progress.at(done); };
  const auto kind = input.extension();
  if (options.asTable || kind == ".csv" || kind == ".tsv") {
    orProblem(makeTableSheets(book, title, readTable(options.input), !options.landscape, tick),
              options.input);
  } else {
    const auto font = options.font == "mono"   ? FONT_COURIER
                      : options.font == "sans" ? FONT_ARIAL
                                               : FONT_TIMES;
    orProblem(makeTextSheets(book, title, readText(options.input), font, tick), options.input);
  }
  // The class does not say whether it could write.
  std::error_code error;
  if (std::filesystem::file_size(output.unfinished(), error) == 0 || error) {
    throw Problem(options.output, "cannot be written");
  }
  orProblem(output.complete(), options.output);
}

}  // namespace veltrano::tools
