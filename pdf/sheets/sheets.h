#ifndef VELTRANO_PDF_SHEETS_SHEETS_H
#define VELTRANO_PDF_SHEETS_SHEETS_H

// A text or a table on pages.

#include "pdf/sheets/book.h"

namespace veltrano::sheets {

/// Called with the part of the work that is done, 0 to 1.
using Tick = std::function<void(double done)>;

/// Lines are wrapped where they are too long; in FONT_COURIER the letters first become smaller, down to 7
/// points. Tabs lead to columns of 8 characters, a form feed starts a page.
Status makeTextSheets(Book& book, const std::string& title, const std::string& text, PDFFontNme font,
                      const Tick& tick);

/// The first row is repeated at the top of each page; where it is longer than half a page, as much of it as
/// that, after all of it once. Columns are as wide as their content; columns of numbers are aligned to the
/// right. Wide columns are wrapped; where that leaves them too narrow, the pages turn if they may, and the
/// letters become smaller. Columns that still do not fit come on further pages after all rows, each time
/// after the first column.
Status makeTableSheets(Book& book, const std::string& title, std::vector<std::vector<std::string>> rows,
                       bool mayTurn, const Tick& tick);

}  // namespace veltrano::sheets

#endif
