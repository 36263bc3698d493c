#include "veltrano/wev.h"

#include <gtest/gtest.h>

#include <tuple>

#include "eventlog/event_sink.h"

namespace veltrano {

namespace {

/// Writes down what a sink is told.
class RecordingSink final : public EventSink {
 public:
  explicit RecordingSink(std::string& calls) : calls_(calls) {}
  void open(const std::string& source) override { calls_ += "open " + source; }
  void report(std::uint16_t type, std::int32_t id, const std::string& message) override {
    calls_ += ", report " + std::to_string(type) + " " + std::to_string(id) + " '" + message + "'";
  }
  void close() override { calls_ += ", close"; }

 private:
  std::string& calls_;
};

// The type goes on as it stands if it fits 16 bits. The test program has no product name, so its file name stands
// for the source.
TEST(EventLog, WritesOneEntryACall) {
  const std::tuple<const char*, std::int32_t, std::int32_t, const char*, const char*> rows[] = {
      {"Disk full", 1, 1234, "Backup", "open Backup, report 1 1234 'Disk full', close"},
      {"", 4, -1, "", "open eventlog_test, report 4 -1 '', close"},
      {"a", static_cast<std::int32_t>(EventType::auditFailure), 1, "s", "open s, report 10 1 'a', close"},
      {"c", -1, 1, "s", "open s, report 65535 1 'c', close"},
      {"d", 32768, 1, "s", "open s, close"},
      {"e", -32769, 1, "s", "open s, close"}};
  for (const auto& [text, type, id, source, expected] : rows) {
    std::string calls;
    VeltranoWEV(std::make_unique<RecordingSink>(calls)).LogNTEvent(text, type, id, source);
    EXPECT_EQ(calls, expected);
  }
}

TEST(SystemEventLog, TakesAnyTextWithoutALeak) {
  const std::string zeros("a\0b", 3);
  for (int round = 0; round < 300; ++round) {
    VeltranoWEV().LogNTEvent(zeros, 4, 2, zeros);
    VeltranoWEV().LogNTEvent(std::string(70000, '%'), 9, 3, "%s%n");
  }
}

}  // namespace

}  // namespace veltrano
