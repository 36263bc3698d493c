#include "database/access/engine.h"

#include <algorithm>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "base/files/identity.h"
#include "base/files/whole.h"
#include "database/access/recordset.h"
#include "database/access/schema/catalog.h"

namespace veltrano {

namespace {

using access::AccessRecordset;
using access::OpenFile;
using access::Pager;

class AccessDatabase final : public Database {
 public:
  explicit AccessDatabase(std::shared_ptr<OpenFile> file)
      : file_(std::move(file)), number_(++file_->openers) {}

  Result<std::unique_ptr<Recordset>> openTable(std::string_view table) override {
    if (!file_) {
      return closed();
    }
    auto definition = access::findTable(*file_->pager, table);
    if (!definition) {
      return definition.status();
    }
    return std::make_unique<AccessRecordset>(file_, *std::move(definition), number_);
  }

  Status close() override {
    if (!file_) {
      return closed();
    }
    // Other objects may have recordsets on the same file.
    const std::vector<AccessRecordset*> recordsets = file_->recordsets;
    for (AccessRecordset* recordset : recordsets) {
      if (recordset->opener() == number_) {
        recordset->close();
      }
    }
    return std::exchange(file_, nullptr)->pager->checkpoint();
  }

 private:
  static Status closed() { return {Failure::missing, "the database is closed"}; }

  std::shared_ptr<OpenFile> file_;
  std::uint64_t number_;  ///< tells the recordsets opened on it from others
};

/// The files that are open, so that several objects of one thread can work on one file: a host that reads two
/// tables of a database has two objects. Other threads are told no, like other processes, for a file has one
/// user at a time.
class OpenFiles {
 public:
  Result<std::shared_ptr<OpenFile>> open(const std::filesystem::path& name, const Pager::Options& options) {
    const auto number = fileNumber(name);
    if (number) {
      const std::lock_guard lock(mutex_);
      std::erase_if(known_, [](const Known& known) { return known.file.expired(); });
      for (const Known& known : known_) {
        if (known.number == *number && known.thread == std::this_thread::get_id()) {
          return share(known, options);
        }
      }
    }
    auto pager = Pager::open(name, options);
    if (!pager) {
      return pager.status();
    }
    auto file = std::make_shared<OpenFile>();
    file->pager = *std::move(pager);
    file->password = access::Secret(bytesOf(options.password));
    if (number) {
      const std::lock_guard lock(mutex_);
      known_.push_back({*number, std::this_thread::get_id(), file});
    }
    return file;
  }

 private:
  struct Known {
    FileNumber number;
    std::thread::id thread;
    std::weak_ptr<OpenFile> file;
  };

  static access::Bytes bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
  }
  static Result<std::shared_ptr<OpenFile>> share(const Known& known, const Pager::Options& options) {
    auto file = known.file.lock();
    const access::Bytes given = bytesOf(options.password);
    if (file && !std::equal(given.begin(), given.end(), file->password.bytes().begin(),
                            file->password.bytes().end())) {
      return {Failure::notAllowed, "the password is wrong"};
    }
    return file;
  }

  std::mutex mutex_;
  std::vector<Known> known_;
};

class AccessEngine final : public DatabaseEngine {
 public:
  Result<std::unique_ptr<Database>> openDatabase(std::string_view fileName,
                                                 std::optional<std::string_view> connect) override {
    Pager::Options options;
    if (connect) {
      if (!connect->starts_with(passwordConnectPrefix)) {
        return {Failure::other, "not a connect string for this kind of file"};
      }
      options.password = connect->substr(passwordConnectPrefix.size());
    }
    auto file = files_.open(pathFromUtf8(fileName), options);
    if (!file) {
      return file.status();
    }
    return std::make_unique<AccessDatabase>(*std::move(file));
  }

 private:
  OpenFiles files_;
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeAccessEngine() {
  return std::make_unique<AccessEngine>();
}

}  // namespace veltrano
