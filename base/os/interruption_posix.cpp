#include <unistd.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <string>

#include "base/os/interruption.h"

namespace veltrano {

namespace {

volatile std::sig_atomic_t noted = 0;
char unfinishedFile[PATH_MAX];  // no string: a handler may use neither locks nor the heap

void end(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

extern "C" void note(int signal) {
  if (noted == 0) {
    noted = signal;
    return;
  }
  ::unlink(unfinishedFile);
  end(signal);
}

}  // namespace

void noteInterruptions(const std::filesystem::path& unfinished) {
  const std::size_t length = unfinished.native().copy(unfinishedFile, sizeof unfinishedFile - 1);
  unfinishedFile[length] = '\0';
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action = {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler != SIG_IGN) {
      action.sa_handler = note;
      action.sa_flags = 0;  // waiting calls are not restarted
      ::sigaction(signal, &action, nullptr);
    }
  }
}

bool interrupted() {
  return noted != 0;
}

void endInterrupted() {
  end(noted);
  std::_Exit(128 + noted);
}

}  // namespace veltrano
