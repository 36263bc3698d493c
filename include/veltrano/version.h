#ifndef VELTRANO_VERSION_H
#define VELTRANO_VERSION_H

// The version of the library that these headers belong to, for the preprocessor and as constants. A change of
// the first number may break programs that use the library, one of the second adds, one of the third mends.

#define VELTRANO_VERSION_MAJOR 1
#define VELTRANO_VERSION_MINOR 0
#define VELTRANO_VERSION_PATCH 0

namespace veltrano {

inline constexpr int versionMajor = VELTRANO_VERSION_MAJOR;
inline constexpr int versionMinor = VELTRANO_VERSION_MINOR;
inline constexpr int versionPatch = VELTRANO_VERSION_PATCH;
inline constexpr const char* versionText = "1.0.0";

}  // namespace veltrano

#endif
