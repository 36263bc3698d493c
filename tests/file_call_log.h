#ifndef VELTRANO_TESTS_FILE_CALL_LOG_H
#define VELTRANO_TESTS_FILE_CALL_LOG_H

// Notes the calls that reach the file system while it exists, and has those fail that the test wants to.

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "base/files/calls.h"

namespace veltrano::tests {

class FileCallLog final : public FileCallWatcher {
 public:
  using Answer = std::function<Failure(FileCall call, const std::filesystem::path& file)>;

  FileCallLog() { watchFileCalls(this); }
  explicit FileCallLog(Answer answer) : answer_(std::move(answer)) { watchFileCalls(this); }
  FileCallLog(const FileCallLog&) = delete;
  FileCallLog& operator=(const FileCallLog&) = delete;
  ~FileCallLog() override { watchFileCalls(nullptr); }

  Failure before(FileCall call, const std::filesystem::path& file) override {
    calls_.push_back({call, file.filename()});
    return answer_ ? answer_(call, file) : Failure::none;
  }

  [[nodiscard]] std::size_t count(FileCall call) const {
    return static_cast<std::size_t>(std::count_if(calls_.begin(), calls_.end(),
                                                  [call](const Entry& entry) { return entry.call == call; }));
  }

  /// "create *, write *, rename a.txt": * stands for a temporary file.
  [[nodiscard]] std::string text() const {
    constexpr const char* names[] = {"open", "create",         "read",   "write", "resize",
                                     "sync", "sync folder of", "rename", "remove"};
    std::string result;
    for (const Entry& entry : calls_) {
      const bool temporary = entry.file.native().starts_with(std::filesystem::path(".veltrano-").native());
      result += result.empty() ? "" : ", ";
      result += names[static_cast<std::size_t>(entry.call)];
      result += " " + (temporary ? "*" : entry.file.string());
    }
    return result;
  }

 private:
  struct Entry {
    FileCall call;
    std::filesystem::path file;
  };
  Answer answer_;
  std::vector<Entry> calls_;
};

}  // namespace veltrano::tests

#endif
