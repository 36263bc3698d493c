#ifndef VELTRANO_BASE_HOST_H
#define VELTRANO_BASE_HOST_H

// What the library knows of the process it lives in.

#include <filesystem>
#include <string>

namespace veltrano {

/// Folder of the file that holds this code: the DLL's on Windows; the shared library's, or the program's when
/// linked statically, elsewhere. No separator at its end.
std::filesystem::path libraryFolder();

/// The application's name as ANSI text: the product name from the executable's version resource when it has
/// one (Windows), otherwise the executable's file name without extension. The KML writer and the event log
/// use it.
std::string hostApplicationName();

/// Gives the host's pending user-interface messages a turn, so that it stays responsive during long work.
/// Does nothing where there is no message queue.
void yieldToHost();

}  // namespace veltrano

#endif
