#include "base/trace.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "base/files/whole.h"
#include "tests/temporary_folder.h"

namespace veltrano {
namespace {

/// Before anything asks: the environment is read once.
std::filesystem::path switchTraceOn() {
  static const tests::TemporaryFolder folder;
  const auto file = folder / "trace.txt";
#ifdef _WIN32
  _wputenv_s(L"VELTRANO_TRACE", file.c_str());
#else
  ::setenv("VELTRANO_TRACE", file.c_str(), 1);
#endif
  return file;
}

const std::filesystem::path traceFile = switchTraceOn();

TEST(Trace, NamesMemberReasonAndFile) {
  ASSERT_TRUE(traceEnabled());
  const tests::TemporaryFolder folder;
  std::filesystem::remove(traceFile);
  traceSkipped("SetIniValue", "no key");
  traceFailure("PDFEndDoc", Status(Failure::full, "the disk is full"), u"\u00E9.pdf");
  EXPECT_EQ(readWholeFile(traceFile), "SetIniValue: no key\nPDFEndDoc: the disk is full (\xC3\xA9.pdf)\n");
  std::filesystem::remove(traceFile);
  const Status status = replaceFile(folder / "none/a", "text");
  EXPECT_EQ(status.failure(), Failure::missing);
  EXPECT_EQ(readWholeFile(traceFile),
            "replaceFile: " + status.reason() + " (" + pathToUtf8(folder / "none/a") + ")\n");
}

}  // namespace
}  // namespace veltrano
