#ifndef VELTRANO_TESTS_DATABASE_ACCESS_SIMULATED_DISK_H
#define VELTRANO_TESTS_DATABASE_ACCESS_SIMULATED_DISK_H

// Files in memory, on a disk that forgets. A process that dies leaves what it has written; a power failure
// leaves of everything that was not synced any part: writes are lost, or reach the disk in part, sectors of
// 512 bytes, whatever was written before or after them. A new name may be lost and a removed one come back.

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "base/files/random_access.h"
#include "database/access/storage/bytes.h"

namespace veltrano::access {

class SimulatedDisk final : public FileSystem {
 public:
  static constexpr int never = std::numeric_limits<int>::max();

  /// A durable file.
  void put(const std::string& name, const std::string& content) {
    names_[name] = std::make_shared<Stored>(Stored{content, content, {}, true});
    removed_.erase(name);
  }
  [[nodiscard]] bool exists(const std::string& name) const { return names_.contains(name); }
  [[nodiscard]] const std::string& content(const std::string& name) const { return names_.at(name)->now; }
  /// "write a.mdb", "sync a.mdb-journal": all calls that change something, in their order.
  std::vector<std::string> calls;
  /// The first such call that the dead process would have made.
  std::string notMade;

  /// After so many more calls that change something the process is dead: the next one, a write, is done in part,
  /// and nothing after it.
  void dieAfter(int more) { lifeLeft_ = more; }
  [[nodiscard]] bool dead() const { return lifeLeft_ < 0; }
  /// Whether the folder takes new files.
  bool takesFiles = true;
  /// After so many more calls no file can grow.
  void fillAfter(int more) { roomLeft_ = more; }
  [[nodiscard]] bool full() const { return roomLeft_ < 0; }
  /// The system as it is after the process has died.
  void revive() { lifeLeft_ = roomLeft_ = never; }
  /// The same after a power failure.
  void losePower(std::mt19937& random);

  Result<std::unique_ptr<RandomAccessFile>> open(const std::filesystem::path& file, OpenMode mode) override {
    const std::string name = file.string();
    if (!names_.contains(name)) {
      if (mode != OpenMode::create || !takesFiles || !call("create ", name)) {
        return {mode == OpenMode::create ? Failure::notAllowed : Failure::missing, "no such file"};
      }
      names_[name] = std::make_shared<Stored>();
    }
    return std::make_unique<File>(*this, name, names_[name]);
  }
  bool remove(const std::filesystem::path& file) override {
    const std::string name = file.string();
    if (!names_.contains(name) || !call("remove ", name)) {
      return false;
    }
    if (names_[name]->durableName) {
      removed_[name] = names_[name];
    }
    return names_.erase(name) == 1;
  }
  bool lockFileInUse(const std::filesystem::path&) override { return false; }

 private:
  struct Write {
    std::uint64_t offset;
    std::string bytes;  ///< empty: the file gets `offset` as its length
  };
  struct Stored {
    std::string now;
    std::string durable;
    std::vector<Write> unsynced;
    bool durableName = false;
  };

  class File final : public RandomAccessFile {
   public:
    File(SimulatedDisk& disk, std::string name, std::shared_ptr<Stored> stored)
        : disk_(disk), name_(std::move(name)), stored_(std::move(stored)) {}

    std::optional<std::size_t> readAt(std::uint64_t offset, MutableBytes target) override {
      const std::size_t from = std::min(static_cast<std::size_t>(offset), stored_->now.size());
      const std::size_t size = std::min(target.size(), stored_->now.size() - from);
      std::copy_n(stored_->now.begin() + static_cast<std::ptrdiff_t>(from), size, target.begin());
      return size;
    }
    bool writeAt(std::uint64_t offset, Bytes bytes) override {
      const bool alive = disk_.call("write ", name_);
      const bool room = disk_.roomLeft_ >= 0 || offset + bytes.size() <= stored_->now.size();
      if (disk_.lifeLeft_ < -1 || bytes.empty()) {
        return false;
      }
      Write write = {offset, {bytes.begin(), bytes.end()}};
      if (!alive || !room) {
        write.bytes.resize(bytes.size() / 2);
      }
      apply(stored_->now, write);
      stored_->unsynced.push_back(std::move(write));
      return alive && room;
    }
    std::optional<std::uint64_t> size() override { return stored_->now.size(); }
    bool resize(std::uint64_t size) override {
      if (!disk_.call("resize ", name_) || (disk_.roomLeft_ < 0 && size > stored_->now.size())) {
        return false;
      }
      stored_->unsynced.push_back({size, {}});
      apply(stored_->now, stored_->unsynced.back());
      return true;
    }
    bool sync() override {
      if (!disk_.call("sync ", name_)) {
        return false;
      }
      if (!stored_->unsynced.empty()) {
        stored_->durable = stored_->now;
        stored_->unsynced.clear();
      }
      stored_->durableName = true;
      disk_.removed_.erase(name_);
      return true;
    }

   private:
    SimulatedDisk& disk_;
    std::string name_;
    std::shared_ptr<Stored> stored_;
  };

  static void apply(std::string& content, const Write& write) {
    const auto offset = static_cast<std::size_t>(write.offset);
    content.resize(write.bytes.empty() ? offset : std::max(content.size(), offset + write.bytes.size()));
    content.replace(offset, write.bytes.size(), write.bytes);
  }
  /// False if the process is dead.
  bool call(const char* what, const std::string& name) {
    lifeLeft_ = lifeLeft_ == never ? never : std::max(lifeLeft_ - 1, -2);
    roomLeft_ = roomLeft_ == never ? never : std::max(roomLeft_ - 1, -1);
    if (dead()) {
      notMade = notMade.empty() ? what + name : notMade;
      return false;
    }
    calls.push_back(what + name);
    return true;
  }

  std::map<std::string, std::shared_ptr<Stored>> names_;
  std::map<std::string, std::shared_ptr<Stored>> removed_;
  int lifeLeft_ = never;
  int roomLeft_ = never;
};

inline void SimulatedDisk::losePower(std::mt19937& random) {
  const auto chance = [&random](unsigned percent) { return random() % 100 < percent; };
  for (const auto& [name, stored] : std::exchange(removed_, {})) {
    if (chance(50)) {
      names_[name] = stored;
    }
  }
  std::erase_if(names_, [&](const auto& entry) { return !entry.second->durableName && chance(50); });
  // Of all fates, from "everything is lost" to "everything has arrived".
  const unsigned arrives = std::array<unsigned, 5>{0, 10, 50, 90, 100}[random() % 5];
  constexpr std::size_t sector = 512;
  for (auto& [name, stored] : names_) {
    for (const Write& write : stored->unsynced) {
      if (write.bytes.empty() || chance(50)) {
        if (chance(arrives)) {
          apply(stored->durable, write);
        }
        continue;
      }
      for (std::size_t at = 0; at < write.bytes.size();) {
        const std::size_t size =
            std::min(write.bytes.size() - at, sector - static_cast<std::size_t>(write.offset + at) % sector);
        if (chance(arrives)) {
          apply(stored->durable, {write.offset + at, write.bytes.substr(at, size)});
        }
        at += size;
      }
    }
    stored->now = stored->durable;
    stored->unsynced.clear();
    stored->durableName = true;
  }
  revive();
}

}  // namespace veltrano::access

#endif
