#ifndef VELTRANO_BASE_OS_INTERRUPTION_H
#define VELTRANO_BASE_OS_INTERRUPTION_H

// What a program does about Ctrl-C, the end of the session and the like, so that it can take back what it
// began. Not for libraries: the host decides about its own signals.

#include <filesystem>

namespace veltrano {

/// From now on the first interruption is only noted; a read or write that it finds waiting fails. The next
/// one removes `unfinished`, unless that is empty, and ends the program. What the program's caller lets it
/// ignore stays ignored.
void noteInterruptions(const std::filesystem::path& unfinished);
/// True once one is noted.
bool interrupted();
/// Ends the program as the interruption would have: shells see 130 after Ctrl-C, 143 after a polite kill.
[[noreturn]] void endInterrupted();

}  // namespace veltrano

#endif
