#include "database/access/access_engine.h"

#include <algorithm>

#include "base/files.h"
#include "database/access/access_recordset.h"
#include "database/access/catalog.h"

namespace veltrano {

namespace {

using access::AccessRecordset;
using access::OpenFile;
using access::Pager;

class AccessDatabase final : public Database {
 public:
  explicit AccessDatabase(std::unique_ptr<Pager> pager) : file_(std::make_shared<OpenFile>()) {
    file_->pager = std::move(pager);
  }
  AccessDatabase(const AccessDatabase&) = delete;
  AccessDatabase& operator=(const AccessDatabase&) = delete;
  ~AccessDatabase() override { AccessDatabase::close(); }

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
    return std::make_unique<AccessRecordset>(file_, std::move(*definition));
  }

  bool close() override {
    if (!file_) {
      return fail("the database is closed");
    }
    while (!file_->recordsets.empty()) {
      file_->recordsets.back()->close();
    }
    const bool synced = file_->pager->sync();
    file_.reset();
    return synced || fail("the disk does not confirm the writing");
  }

 private:
  std::shared_ptr<OpenFile> file_;
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
    auto pager = Pager::open(pathFromUtf8(fileName), options, reason);
    return pager ? std::make_unique<AccessDatabase>(std::move(pager)) : nullptr;
  }
};

}  // namespace

std::unique_ptr<DatabaseEngine> makeAccessEngine() {
  return std::make_unique<AccessEngine>();
}

}  // namespace veltrano
