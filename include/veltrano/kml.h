#ifndef VELTRANO_KML_H
#define VELTRANO_KML_H

// Writes KML 2.2 files line by line: place marks, paths, photo and ground overlays. docs/kml.md describes the
// file.
//
// Texts are in the ANSI code page and are written as they are, markup included: escaping is up to the caller.
// X is the latitude and y the longitude, in degrees, altitudes are in metres; files have longitude, latitude,
// altitude. Flags are true only if they are -1.
//
// Only the path buffer is kept in memory. The lines of a member are in the file when it returns. A line whose
// number is not finite or for whose text memory runs out is left out, and so is everything written while no
// file is open. Members never report a failure; only memory exhaustion leaves CreateKML as an
// exception (std::bad_alloc). Not to be used by two threads at once.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "veltrano/export.h"

namespace veltrano {

class VELTRANO_API VeltranoKML {
 public:
  VeltranoKML();
  VeltranoKML(VeltranoKML&&) noexcept;
  VeltranoKML& operator=(VeltranoKML&&) noexcept;
  VeltranoKML(const VeltranoKML&) = delete;
  VeltranoKML& operator=(const VeltranoKML&) = delete;
  ~VeltranoKML();

  /// Starts the file anew and writes the head of the document. Description is not used. A file that an
  /// earlier call opened and CloseKML did not close stays open and as it is; later members write to the new
  /// one, or to none if it cannot be created.
  void CreateKML(const std::filesystem::path& filename, std::string_view Description,
                 std::string_view ExtendedData = {}, std::int16_t IncludeGeneratedBy = 0);
  /// Empties the path buffer. No other member does.
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
  /// "longitude,latitude,altitude" and CR LF; empty if one of them is not finite.
  std::string CreatePathString(double X, double y, double Altitude);
  /// Writes the end of the document and closes the file.
  void CloseKML();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace veltrano

#endif
