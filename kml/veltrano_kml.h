#ifndef VELTRANO_KML_VELTRANO_KML_H
#define VELTRANO_KML_VELTRANO_KML_H

// Writes KML 2.2 files line by line: place marks, paths, photo and ground overlays. docs/kml.md describes the
// file.
//
// Texts are ANSI and are written as they are, markup included: escaping is the caller's business. X is the
// latitude and y the longitude, in degrees, altitudes are in metres; files have longitude, latitude,
// altitude. Flags are true only when they are -1.
//
// Nothing is kept of the document but the path buffer. A line whose number is not finite or whose text the
// memory cannot hold is left out, and so is everything written while no file is open. What was written
// reaches the file at CloseKML, or when the object goes away. Not to be used by two threads at once.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/os/output_file.h"
#include "base/value.h"

namespace veltrano {

class CoordinateTriple;
struct FieldOfView;

class VeltranoKML {
 public:
  /// Starts the file anew and writes the head of the document. Description is not used. A file that an
  /// earlier call opened and nobody closed stays open and as it is; later members write to the new one (to
  /// none, if it cannot be created).
  void CreateKML(const std::filesystem::path& filename, const Value& Description,
                 std::string_view ExtendedData = {}, std::int16_t IncludeGeneratedBy = 0);
  /// Empties the path buffer, which nothing else does.
  void ClearPath();
  /// Writes the path buffer as a line string in a style of its own. pColor is aabbggrr, Size the width.
  void CreatePathFromPlaceMarks(std::int16_t Size, std::string_view pColor);
  /// The same for points made by CreatePathString. The last two characters of PathData, its final line end,
  /// are cut whatever they are. Line3D draws the path at its altitude, with a curtain down to the ground.
  void CreatePathFromString(std::int16_t Size, std::string_view pColor, std::string_view PathData,
                            std::string_view PathName, std::int16_t Line3D = 0);
  /// A photo overlay seen from 10 m above the point, whatever Altitude is. filename is the picture's address.
  void CreateCameraOverlay(std::string_view filename, double X, double y, double Altitude,
                           std::string_view pName, std::string_view visibility = "0",
                           std::string_view shape = "rectangle");
  /// A picture on the ground, in a box of 0.0001 degrees at the point. What follows pName is not used.
  void CreateGroundOverlay(std::string_view filename, double X, double y, double Altitude,
                           std::string_view pName, std::string_view HTMLDescription,
                           std::string_view shape = "rectangle", std::string_view Heading = {});
  /// A photo seen from 15 m above the point towards Heading. "%streetview_id" in HTMLDescription becomes "#"
  /// and the overlay's identifier. The point joins the path buffer.
  void CreateStreetView(std::string_view filename, double X, double y, double Altitude,
                        std::string_view pName, std::string_view HTMLDescription,
                        std::string_view shape = "rectangle", std::string_view Heading = {});
  /// TimeStamp has no zone ("2015-03-01T10:20:30"); "Z" is put after it. The point joins the path buffer.
  void CreatePlaceMark(double X, double y, double Altitude, std::string_view pName,
                       std::string_view pDescription, std::string_view TimeStamp = {},
                       std::string_view ExtendedData = {});
  /// Adds the point to the path buffer and writes nothing.
  void CreatePathPoint(double X, double y, double Altitude);
  /// "longitude,latitude,altitude" and CR LF; empty when one of them is not finite.
  std::string CreatePathString(double X, double y, double Altitude);
  /// Writes the end of the document and closes the file.
  void CloseKML();

 private:
  /// Lines of the member at work, gathered so that the file is asked once; reused from call to call, unless
  /// they were long.
  std::string lines_;
  std::optional<OutputFile> file_;
  /// Files that a later CreateKML left behind open.
  std::vector<OutputFile> abandonedFiles_;
  /// Coordinate triples, a CR LF after each.
  std::string pathBuffer_;

  template <typename... Pieces>
  void line(const Pieces&... pieces);
  void remember(const CoordinateTriple& point);
  void numberLine(std::string_view before, double number, std::string_view after);
  void pointLine(const CoordinateTriple& point);
  void camera(std::string_view altitude, std::string_view heading, double X, double y);
  void viewVolume(const FieldOfView& view);
  void pathStyle(std::string_view id, std::int16_t Size, std::string_view pColor);
  void coordinateLines(std::string_view points);
  void writeLines();
};

}  // namespace veltrano

#endif
