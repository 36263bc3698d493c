#ifndef VELTRANO_TOOLS_PROGRAM_H
#define VELTRANO_TOOLS_PROGRAM_H

// The parts of the program. Names and texts are UTF-8.

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/files/new_file.h"
#include "base/files/whole.h"
#include "base/os/interruption.h"

namespace veltrano::tools {

// --- Commands (doctor.cpp, mdb.cpp, pdf.cpp). One that cannot do what it is asked throws a Problem, and has
// then changed and left nothing.

/// Prints what an installation consists of and what is wrong with it; true if nothing is.
bool diagnose();

struct DatabaseFile {
  std::string name;
  std::string password;
};
void createDatabaseFrom(const DatabaseFile& file, const std::string& schema);
void listTables(const DatabaseFile& file, bool asSchema);
struct Export {
  std::string table;
  std::string output;  ///< empty for standard output
  bool asJson = false;
  bool rescue = false;  ///< in storage order, without what is damaged
};
void exportTable(const DatabaseFile& file, const Export& options);
void importTable(const DatabaseFile& file, const std::string& table, const std::string& csv);
/// Prints the first fault or that there is none; false if there is one.
bool checkFile(const DatabaseFile& file);

struct Pages {
  std::string input;
  std::string output;
  std::string title;          ///< empty for the name of the input
  std::string font = "mono";  ///< of a text: or "sans", "serif"
  bool letter = false;
  bool landscape = false;
  bool asTable = false;
};
void makePages(const Pages& options);

// --- Failures, output and progress (output.cpp)

/// Why a command cannot do what it was asked: a message for the user.
struct Problem : std::runtime_error {
  Problem(const std::string& file, const std::string& reason) : runtime_error(file + ": " + reason) {}
};
inline void orProblem(const Status& status, const std::string& file) {
  if (!status) throw Problem(file, status.reason());
}
template <typename T>
T orProblem(Result<T> result, const std::string& file) {
  orProblem(result.status(), file);
  return *std::move(result);
}
/// Bytes of an input that is held in memory.
inline constexpr std::size_t mostInput = std::size_t{256} << 20;
inline std::string readInput(const std::string& name) {
  return orProblem(readFile(pathFromUtf8(name), mostInput), name);
}

/// Standard output, or a file that appears when it is complete. Interruptions leave nothing of it.
class Output {
 public:
  /// Empty for standard output. Nothing is written over the input, whatever names lead there.
  explicit Output(const std::string& name = {}, const std::string& input = {});
  /// Takes the text away.
  void write(std::string& text);
  void finish() {
    if (file_) orProblem(file_->complete(), name_);
  }
  /// Where another writer may write the file.
  [[nodiscard]] const std::filesystem::path& unfinished() const { return file_->unfinished(); }

 private:
  std::string name_;
  std::optional<NewFile> file_;
};

/// A bar on the terminal while something takes longer than a second. Stops what is interrupted.
class Progress {
 public:
  explicit Progress(const char* what) : what_(what) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();
  /// To be called often, with the part that is done, 0 to 1; cheap.
  void at(double done) {
    if (interrupted()) throw Problem(what_, "interrupted");
    if ((++calls_ & 255U) == 0) show(done);
  }

 private:
  void show(double done);
  const char* what_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  unsigned calls_ = 0;
  int shown_ = -1;
};

// --- The system (platform_*.cpp)

/// The program's arguments without its name, as UTF-8. Also makes standard output carry UTF-8 without changed
/// line ends.
std::vector<std::string> prepare(int count, char** arguments);
bool errorsGoToTerminal();
struct Finding {
  std::string subject;
  std::string state;
  std::string advice = {};  ///< what to do about it; empty if nothing is wrong
};
/// How hosts of this system reach the library, and by which engine they open databases.
std::vector<Finding> examineSystem();

}  // namespace veltrano::tools

#endif
