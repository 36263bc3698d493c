#ifndef VELTRANO_BASE_OS_HOST_H
#define VELTRANO_BASE_OS_HOST_H

// What the library knows of the process it lives in.

#include <filesystem>
#include <string>

namespace veltrano {

/// Folder of the file that holds this code: the DLL's on Windows; the shared library's, or the program's when
/// linked statically, elsewhere. No separator at its end.
std::filesystem::path libraryFolder();

/// Folder of the font metrics that come with the library: the library's own folder. If that has none (a program
/// linked with an installed library, elsewhere than Windows) it is the folder
/// "share/veltranoframework/metrics" beside the program's, or the one that came with the library's headers
/// (veltrano/installed.h). Elsewhere than Windows the environment variable VELTRANO_METRICS comes before all.
/// Checked anew at each call, since files come and go.
std::filesystem::path metricsFolder();

/// The application's name as ANSI text: the product name from the executable's version resource when it has
/// one (Windows), otherwise the executable's file name without extension. The KML writer and the event log
/// use it.
std::string hostApplicationName();

/// The program that the library lives in.
std::filesystem::path hostExecutable();

/// Gives the host's pending user-interface messages a turn, so that it stays responsive during long work.
/// Does nothing where there is no message queue.
void yieldToHost();

}  // namespace veltrano

#endif
