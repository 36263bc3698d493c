#include "veltrano/wev.h"

#include <gtest/gtest.h>

#include <vector>

#include "base/os/host.h"
#include "eventlog/event_sink.h"

namespace veltrano {

namespace {

/// Writes down what a sink is told.
class RecordingSink final : public EventSink {
 public:
  explicit RecordingSink(std::vector<std::string>& calls) : calls_(calls) {}
  void open(const std::string& source) override { calls_.push_back("open " + source); }
  void report(std::uint16_t type, std::int32_t id, const std::string& message) override {
    calls_.push_back("report " + std::to_string(type) + " " + std::to_string(id) + " '" + message + "'");
  }
  void close() override { calls_.push_back("close"); }

 private:
  std::vector<std::string>& calls_;
};

class EventLog : public testing::Test {
 protected:
  using Calls = std::vector<std::string>;
  Calls calls_;
  VeltranoWEV log_{std::make_unique<RecordingSink>(calls_)};
};

TEST_F(EventLog, WritesOneEntryUnderTheNamedSource) {
  log_.LogNTEvent("Disk full", 1, 1234, "Backup");
  EXPECT_EQ((Calls{"open Backup", "report 1 1234 'Disk full'", "close"}), calls_);
}

TEST_F(EventLog, NamesTheHostWhenNoSourceIsGiven) {
  log_.LogNTEvent("", 4, -1);
  // The test program has no product name, so its file name stands for it.
  EXPECT_EQ((Calls{"open eventlog_test", "report 4 -1 ''", "close"}), calls_);
  EXPECT_EQ("eventlog_test", hostApplicationName());
}

TEST_F(EventLog, HandsTheTypeOnAsItStands) {
  log_.LogNTEvent("a", static_cast<std::int32_t>(EventType::auditFailure), 1, "s");
  log_.LogNTEvent("b", 32767, 1, "s");
  log_.LogNTEvent("c", -1, 1, "s");
  EXPECT_EQ((Calls{"open s", "report 10 1 'a'", "close", "open s", "report 32767 1 'b'", "close", "open s",
                   "report 65535 1 'c'", "close"}),
            calls_);
}

TEST_F(EventLog, WritesNothingForATypeBeyond16Bits) {
  log_.LogNTEvent("a", 32768, 1, "s");
  log_.LogNTEvent("b", -32769, 1, "s");
  EXPECT_EQ((Calls{"open s", "close", "open s", "close"}), calls_);
}

TEST(SystemEventLog, TakesAnyTextWithoutALeak) {
  VeltranoWEV log;
  const std::string zeros("a\0b", 3);
  for (int round = 0; round < 300; ++round) {
    log.LogNTEvent("", 4, 1, "veltrano test");
    log.LogNTEvent(zeros, 4, 2, zeros);
    log.LogNTEvent(std::string(70000, '%'), 9, 3, "%s%n");
  }
}

}  // namespace

}  // namespace veltrano
