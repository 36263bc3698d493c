#include "veltrano/kml.h"

#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "base/files/output.h"
#include "base/numbers/numbers.h"
#include "base/os/clock.h"
#include "base/os/host.h"
#include "base/trace.h"
#include "kml/coordinates.h"
#include "kml/markup.h"

// The oddities of these files are kept on purpose, because hosts and the files they keep rely on them;
// docs/kml.md lists them: the empty document name, the width of a polygon style, the boxes of ground
// overlays, the roll after a shape, the line of blanks for omitted data.

namespace veltrano {

namespace {

/// Names the member in the trace.
struct Member : TracedMember {
  explicit Member(const char* name) : TracedMember("VeltranoKML", name) {}
};

/// Angles in degrees and the distance of the picture in metres, as they stand in the file.
struct FieldOfView {
  std::string_view left;
  std::string_view right;
  std::string_view top;
  std::string_view bottom;
  std::string_view distance;
};

constexpr std::string_view lineEnd = "\r\n";

/// The automation boolean: only all bits set counts.
bool isTrue(std::int16_t flag) {
  return flag == -1;
}

std::string identifier(std::string_view prefix) {
  return std::string(prefix).append(timeNumber(secondsSinceMidnight()).view());
}

/// More than the lines of any member need, except for long texts and many points.
constexpr std::size_t keptCapacity = std::size_t{64} << 10;

}  // namespace

struct VeltranoKML::Impl {
  /// Lines of the member at work, gathered so that the system is asked once; reused from call to call, unless
  /// they were long.
  std::string lines;
  std::optional<OutputFile> file;
  /// Files that a later CreateKML left open.
  std::vector<OutputFile> abandonedFiles;
  /// Coordinate triples, a CR LF after each.
  std::string pathBuffer;

  template <typename... Pieces>
  void line(const Pieces&... pieces);
  void remember(const CoordinateTriple& point);
  void numberLine(std::string_view before, double number, std::string_view after);
  void pointLine(const CoordinateTriple& point);
  void camera(std::string_view altitude, std::string_view heading, double X, double y);
  void viewVolume(const FieldOfView& view);
  void pathStyle(std::string_view id, std::int16_t size, std::string_view color);
  void coordinateLines(std::string_view points);
  void writeLines();
};

VeltranoKML::VeltranoKML() : impl_(std::make_unique<Impl>()) {}
VeltranoKML::VeltranoKML(VeltranoKML&&) noexcept = default;
VeltranoKML& VeltranoKML::operator=(VeltranoKML&&) noexcept = default;
VeltranoKML::~VeltranoKML() = default;

// Lines
// -----------------------------------------------------------------------------------------------------------

template <typename... Pieces>
void VeltranoKML::Impl::line(const Pieces&... pieces) {
  const std::size_t begin = lines.size();
  try {
    (appendPiece(lines, pieces), ...);
    lines.append(lineEnd);
  } catch (const std::bad_alloc&) {
    // This line is lost. The others are not, or the elements around it would stay open.
    lines.resize(begin);
    trace("Memory is short; a line is left out.");
  }
}

void VeltranoKML::Impl::remember(const CoordinateTriple& point) {
  const std::string_view line = point.withLineEnd();
  if (line.empty()) {
    trace("A coordinate is not finite; the point is left out of the path.");
  }
  try {
    pathBuffer.append(line);
  } catch (const std::bad_alloc&) {
    trace("Memory is short; a point of the path is left out.");
  }
}

void VeltranoKML::Impl::numberLine(std::string_view before, double number, std::string_view after) {
  const NumberText text = generalNumberText(number);
  if (text.view().empty()) {
    trace("A number is not finite; its line is left out: ", before.substr(before.find('<')), ".");
    return;
  }
  line(before, text, after);
}

void VeltranoKML::Impl::writeLines() {
  if (file) {
    file->write(lines);
  } else {
    trace("No file is open; nothing is written.");
  }
  if (lines.capacity() > keptCapacity) {
    lines = std::string();
  }
  lines.clear();
}

void VeltranoKML::Impl::pointLine(const CoordinateTriple& point) {
  if (!point) {
    trace("A coordinate is not finite; the coordinates are left out.");
    return;
  }
  line("          <coordinates>", point.withoutLineEnd(), "</coordinates>");
}

void VeltranoKML::Impl::camera(std::string_view altitude, std::string_view heading, double X, double y) {
  line("      <Camera>");
  numberLine("          <longitude>", y, "</longitude>");
  numberLine("          <latitude>", X, "</latitude>");
  line("          <altitude>", altitude, "</altitude>");
  line("          <heading>", heading, "</heading>");
  line("          <tilt>90</tilt>");
  line("          <roll>0</roll>");
  line("      </Camera>");
}

void VeltranoKML::Impl::viewVolume(const FieldOfView& view) {
  line("      <ViewVolume>");
  line("          <leftFov>", view.left, "</leftFov>");
  line("          <rightFov>", view.right, "</rightFov>");
  line("          <topFov>", view.top, "</topFov>");
  line("          <bottomFov>", view.bottom, "</bottomFov>");
  line("          <near>", view.distance, "</near>");
  line("      </ViewVolume>");
}

// The document
// -----------------------------------------------------------------------------------------------------------

void VeltranoKML::CreateKML(const std::filesystem::path& filename, std::string_view /*Description*/,
                            std::string_view ExtendedData, std::int16_t IncludeGeneratedBy) {
  const Member member("CreateKML");
  if (impl_->file) {
    impl_->abandonedFiles.push_back(*std::move(impl_->file));
  }
  impl_->file = OutputFile::create(filename);
  impl_->line(R"(<?xml version="1.0" encoding="UTF-8"?>)");
  impl_->line(R"(<kml xmlns="http://www.opengis.net/kml/2.2" xmlns:gx="http://www.google.com/kml/ext/2.2")",
              R"( xmlns:kml="http://www.opengis.net/kml/2.2" xmlns:atom="http://www.w3.org/2005/Atom">)");
  impl_->line("<!-- Generated by VELTRANO KML Engine - VELTRANO Software Technologies -->");
  impl_->line("<!-- Coordinates are longitude, latitude and altitude: WGS 84, degrees and metres -->");
  impl_->line("<Document>");
  impl_->line("  <name></name>");
  if (isTrue(IncludeGeneratedBy)) {
    impl_->line("  <description>Generated by ", characterData(hostApplicationName()), "</description>");
  }
  impl_->line("  ", ExtendedData);
  impl_->writeLines();
}

void VeltranoKML::CloseKML() {
  const Member member("CloseKML");
  impl_->line("</Document>");
  impl_->line("</kml>");
  impl_->writeLines();
  impl_->file.reset();
}

// Paths
// -----------------------------------------------------------------------------------------------------------

void VeltranoKML::Impl::pathStyle(std::string_view id, std::int16_t size, std::string_view color) {
  const NumberText width = integerText(size);
  line("<Style id=\"", id, "\">");
  line("<LineStyle>");
  line("<color>", color, "</color>");
  line("<width>", width, "</width>");
  line("</LineStyle>");
  line("<PolyStyle>");
  line("<color>", color, "</color>");
  line("<width>", width, "</width>");
  line("</PolyStyle>");
  line("</Style>");
}

/// The points without their last two characters.
void VeltranoKML::Impl::coordinateLines(std::string_view points) {
  line("      <coordinates>");
  if (points.size() < lineEnd.size()) {
    trace("The path has no points; its coordinates are empty.");
  } else {
    line(points.substr(0, points.size() - lineEnd.size()));
  }
  line("      </coordinates>");
}

void VeltranoKML::CreatePathFromPlaceMarks(std::int16_t Size, std::string_view pColor) {
  const Member member("CreatePathFromPlaceMarks");
  const std::string id = identifier("Poly");
  impl_->pathStyle(id, Size, pColor);
  impl_->line("  <Placemark>");
  impl_->line("  <visibility>1</visibility>");
  impl_->line("  <styleUrl>#", id, "</styleUrl>");
  impl_->line("  <LineString>");
  impl_->line("      <tessellate>1</tessellate>");
  impl_->coordinateLines(impl_->pathBuffer);
  impl_->line("  </LineString>");
  impl_->line("  </Placemark>");
  impl_->writeLines();
}

void VeltranoKML::CreatePathFromString(std::int16_t Size, std::string_view pColor, std::string_view PathData,
                                       std::string_view PathName, std::int16_t Line3D) {
  const Member member("CreatePathFromString");
  const std::string id = identifier("Poly");
  impl_->pathStyle(id, Size, pColor);
  impl_->line("  <Placemark>");
  impl_->line("  <visibility>1</visibility>");
  impl_->line("  <name>", PathName, "</name>");
  impl_->line("  <styleUrl>#", id, "</styleUrl>");
  impl_->line("  <LineString>");
  if (isTrue(Line3D)) {
    impl_->line("      <altitudeMode>relativeToGround</altitudeMode>");
    impl_->line("      <tessellate>0</tessellate>");
    impl_->line("      <extrude>1</extrude>");
  } else {
    impl_->line("      <tessellate>1</tessellate>");
  }
  impl_->coordinateLines(PathData);
  impl_->line("  </LineString>");
  impl_->line("  </Placemark>");
  impl_->writeLines();
}

void VeltranoKML::ClearPath() {
  const Member member("ClearPath");
  impl_->pathBuffer.clear();
}

void VeltranoKML::CreatePathPoint(double X, double y, double Altitude) {
  const Member member("CreatePathPoint");
  impl_->remember(CoordinateTriple(X, y, Altitude));
}

std::string VeltranoKML::CreatePathString(double X, double y, double Altitude) {
  const Member member("CreatePathString");
  return std::string(CoordinateTriple(X, y, Altitude).withLineEnd());
}

// Places and pictures
// -----------------------------------------------------------------------------------------------------------

void VeltranoKML::CreateCameraOverlay(std::string_view filename, double X, double y, double /*Altitude*/,
                                      std::string_view pName, std::string_view visibility,
                                      std::string_view shape) {
  const Member member("CreateCameraOverlay");
  impl_->line("  <PhotoOverlay>");
  impl_->line("      <name>", pName, "</name>");
  impl_->line("      <visibility>", visibility, "</visibility>");
  impl_->camera("10", "0", X, y);
  impl_->line("      <Icon><href>", filename, "</href></Icon>");
  impl_->viewVolume({.left = "-60", .right = "60", .top = "60", .bottom = "-60", .distance = "10"});
  impl_->line("      <Point>");
  impl_->pointLine(CoordinateTriple(X, y, 10));
  impl_->line("      </Point>");
  impl_->line("      <shape>", shape, "</shape>");
  impl_->line("          <roll>0</roll>");
  impl_->line("  </PhotoOverlay>");
  impl_->writeLines();
}

void VeltranoKML::CreateGroundOverlay(std::string_view filename, double X, double y, double /*Altitude*/,
                                      std::string_view pName, std::string_view /*HTMLDescription*/,
                                      std::string_view /*shape*/, std::string_view /*Heading*/) {
  const Member member("CreateGroundOverlay");
  constexpr double boxSize = 0.0001;
  impl_->line("  <GroundOverlay>");
  impl_->line("      <name>", pName, "</name>");
  impl_->line("      <Icon><href>", filename, "</href></Icon>");
  impl_->line("      <LatLonBox>");
  // North and south from the longitude, east and west from the latitude.
  impl_->numberLine("          <north>", y, "</north>");
  impl_->numberLine("          <south>", y + boxSize, "</south>");
  impl_->numberLine("          <east>", X, "</east>");
  impl_->numberLine("          <west>", X + boxSize, "</west>");
  impl_->line("          <rotation>-0.1556640799496235</rotation>");
  impl_->line("      </LatLonBox>");
  impl_->line("  </GroundOverlay>");
  impl_->writeLines();
}

void VeltranoKML::CreateStreetView(std::string_view filename, double X, double y, double Altitude,
                                   std::string_view pName, std::string_view HTMLDescription,
                                   std::string_view shape, std::string_view Heading) {
  const Member member("CreateStreetView");
  const std::string id = identifier("cam");
  const std::string reference = "#" + id;
  const CoordinateTriple point(X, y, Altitude);
  impl_->remember(point);
  impl_->line("  <PhotoOverlay id=\"", id, "\" >");
  impl_->line("      <name>", pName, "</name>");
  impl_->line("      <description><![CDATA[", Replaced{HTMLDescription, "%streetview_id", reference},
              "]]></description>");
  impl_->camera("15", Heading, X, y);
  // The style is the caller's, for instance in ExtendedData of CreateKML.
  impl_->line("      <styleUrl>#sn_camera</styleUrl>");
  impl_->line("      <Icon><href>", filename, "</href></Icon>");
  impl_->viewVolume({.left = "-50", .right = "50", .top = "45", .bottom = "-45", .distance = "20"});
  impl_->line("      <Point>");
  impl_->pointLine(point);
  impl_->line("      </Point>");
  impl_->line("      <shape>", shape, "</shape>");
  impl_->line("          <roll>0</roll>");
  impl_->line("  </PhotoOverlay>");
  impl_->writeLines();
}

void VeltranoKML::CreatePlaceMark(double X, double y, double Altitude, std::string_view pName,
                                  std::string_view pDescription, std::string_view TimeStamp,
                                  std::string_view ExtendedData) {
  const Member member("CreatePlaceMark");
  const CoordinateTriple point(X, y, Altitude);
  impl_->line("  <Placemark>");
  impl_->line("      <name>", pName, "</name>");
  if (!pDescription.empty()) {
    impl_->line("      <description>", pDescription, "</description>");
  }
  impl_->line("      ", ExtendedData);
  impl_->line("      <Point>");
  impl_->pointLine(point);
  impl_->remember(point);
  impl_->line("      </Point>");
  if (!TimeStamp.empty()) {
    impl_->line("      <TimeStamp>");
    impl_->line("      <when>", TimeStamp, "Z</when>");
    impl_->line("      </TimeStamp>");
  }
  impl_->line("  </Placemark>");
  impl_->writeLines();
}

}  // namespace veltrano
