#include "database/access/engine.h"

#include <mutex>
#include <thread>
#include <vector>

#include "base/files/whole.h"
#include "database/access/recordset.h"
#include "database/access/schema/catalog.h"
#include "database/access/storage/file.h"

namespace veltrano {

namespace {

using access::AccessRecordset;
using access::OpenFile;
using access::Pager;

class AccessDatabase final : public Database {
 public:
  explicit AccessDatabase(std::shared_ptr<OpenFile> file)
      : file_(std::move(file)), number_(++file_->openers) {}

  std::unique_ptr<Recordset> openTable(std::string_view table) override {
    if (!file_) {
      fail("the database is closed");
      return nullptr;
    }
    std::string reason;
    auto definition = access::findTable(*file_->pager, table, reason);
    if (!definition) {
      fail(std::move(reason));
      return nullptr;
    }
    return std::make_unique<AccessRecordset>(file_, std::move(*definition), number_);
  }

  bool close() override {
    if (!file_) {
      return fail("the database is closed");
    }
    // Other objects may have recordsets on the same file.
    const std::vector<AccessRecordset*> recordsets = file_->recordsets;
    for (AccessRecordset* recordset : recordsets) {
      if (recordset->opener() == number_) {
        recordset->close();
      }
    }
    const bool synced = file_->pager->checkpoint();
    file_.reset();
    return synced || fail("the disk does not confirm the writing");
  }

 private:
  std::shared_ptr<OpenFile> file_;
  std::uint64_t number_;  ///< tells the recordsets opened on it from others
};

/// The files that are open, so that several objects of one thread can work on one file: a host that reads two
/// tables of a database has two objects. Other threads are told no, like other processes, for a file has one
/// user at a time.
class OpenFiles {
 public:
  std::shared_ptr<OpenFile> open(const std::filesystem::path& name, const Pager::Options& options,
                                 std::string& reason) {
    const auto number = access::fileNumber(name);
    if (number) {
      const std::lock_guard lock(mutex_);
      std::erase_if(known_, [](const Known& known) { return known.file.expired(); });
      for (const Known& known : known_) {
        if (known.number == *number && known.thread == std::this_thread::get_id()) {
          return share(known, options, reason);
        }
      }
    }
    auto pager = Pager::open(name, options, reason);
    if (!pager) {
      return nullptr;
    }
    auto file = std::make_shared<OpenFile>();
    file->pager = std::move(pager);
    if (number) {
      const std::lock_guard lock(mutex_);
      known_.push_back({*number, std::this_thread::get_id(), options.password, file});
    }
    return file;
  }

 private:
  struct Known {
    access::FileNumber number;
    std::thread::id thread;
    std::string password;
    std::weak_ptr<OpenFile> file;
  };

  static std::shared_ptr<OpenFile> share(const Known& known, const Pager::Options& options,
                                         std::string& reason) {
    if (options.password != known.password) {
      reason = "not the password that the file was opened with";
      return nullptr;
    }
    return known.file.lock();
  }

  std::mutex mutex_;
  std::vector<Known> known_;
};

class AccessEngine final : public DatabaseEngine {
 public:
  std::unique_ptr<Database> openDatabase(std::string_view fileName, std::optional<std::string_view> connect,
                                         std::string& reason) override {
    Pager::Options options;
    if (connect) {
      if (!connect->starts_with(passwordConnectPrefix)) {
        reason = "not a connect string for this kind of file";
        return nullptr;
      }
      options.password = connect->substr(passwordConnectPrefix.size());
    }
    auto file = files_.open(pathFromUtf8(fileName), options, reason);
    return file ? std::make_unique<AccessDatabase>(std::move(file)) : nullptr;
  }

 private:
  OpenFiles files_;
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeAccessEngine() {
  return std::make_unique<AccessEngine>();
}

}  // namespace veltrano
