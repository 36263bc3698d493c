#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tools/program.h"

namespace veltrano::tools {

Output::Output(const std::string& name, const std::string& input)
    : name_(name.empty() ? "standard output" : name) {
  if (!name.empty()) {
    const auto read = fileNumber(pathFromUtf8(input));
    if (read && read == fileNumber(pathFromUtf8(name))) throw Problem(name, "is what is being read");
    noteInterruptions({});
    file_.emplace(orProblem(NewFile::create(pathFromUtf8(name)), name));
    noteInterruptions(file_->unfinished());
  }
}

void Output::write(std::string& text) {
  if (file_) {
    orProblem(file_->write(text), name_);
  } else if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    throw Problem(name_, std::strerror(errno));
  }
  text.clear();
}

void Progress::show(double done) {
  static const bool terminal = errorsGoToTerminal();
  if (!terminal || std::chrono::steady_clock::now() - start_ < std::chrono::seconds(1)) {
    return;
  }
  constexpr int width = 40;
  const int percent = static_cast<int>(100 * done);
  if (percent != shown_) {
    shown_ = percent;
    const std::string bar(static_cast<std::size_t>(percent * width / 100), '#');
    std::fprintf(stderr, "\r%s [%-*s] %3d %%", what_, width, bar.c_str(), percent);
  }
}

Progress::~Progress() {
  if (shown_ >= 0) {
    std::fprintf(stderr, "\r%70s\r", "");
  }
}

}  // namespace veltrano::tools
