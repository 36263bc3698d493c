#include "pdf/veltrano_pdf.h"

#include "base/os/host.h"

namespace veltrano {

VeltranoPDF::VeltranoPDF() {
  PDFInit();
}

VeltranoPDF::~VeltranoPDF() = default;

void VeltranoPDF::raise(std::string_view message) {
  // A copy, since the handler may put another one in its place while it runs.
  const auto handler = onError;
  if (handler) handler(message);
}

void VeltranoPDF::PDFInit() {
  if (fonts_.folder.path().empty()) fonts_.folder.setPath(metricsFolder());
  PDFLoadAfm(std::filesystem::path(fonts_.folder.path()));

  const int pageCount = assembly_.pageCount;
  assembly_ = Assembly();
  assembly_.pageCount = pageCount;  // only PDFBeginDoc sets it
  links_ = LinkState();
  images_ = ImageTable();

  fonts_.fontSize = 0;
  fonts_.underlineFlag = false;
  fonts_.fontCounter = 1;
  graphics_.fillFlag = false;

  geometry_ = PageGeometry();
  geometry_.pages.push_back({a4Width, a4Height, false});
  PDFSetMargins(geometry_.defaultMargin, geometry_.defaultMargin);
  moveTo(geometry_.leftMargin, geometry_.topMargin);

  const GraphicsState fresh;
  graphics_.lineWidth = fresh.lineWidth;
  graphics_.lineColorOp = fresh.lineColorOp;
  graphics_.fillColorOp = fresh.fillColorOp;
  graphics_.textColorOp = fresh.textColorOp;

  // The title is kept, as is the file name.
  DocumentInformation information;
  information.title = settings_.information.title;
  settings_.information = information;
}

}  // namespace veltrano
