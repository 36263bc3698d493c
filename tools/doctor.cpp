#include <algorithm>
#include <system_error>

#include "base/files/whole.h"
#include "base/os/host.h"
#include "base/os/trace_output.h"
#include "tools/program.h"
#include "veltrano/text.h"
#include "veltrano/version.h"

namespace veltrano::tools {

namespace {

Finding examineMetrics() {
  const auto folder = metricsFolder();
  const auto files = listFiles(folder).value_or(std::vector<std::filesystem::path>());
  std::string missing;
  for (const char* font :
       {"Courier", "Courier-Bold", "Courier-BoldOblique", "Courier-Oblique", "Helvetica", "Helvetica-Bold",
        "Helvetica-BoldOblique", "Helvetica-Oblique", "Symbol", "Times-Bold", "Times-BoldItalic",
        "Times-Italic", "Times-Roman", "TimesItalic", "TimesRoman", "ZapfDingbats"}) {
    if (std::ranges::find(files, std::filesystem::path(font) += ".afm") == files.end()) {
      missing += std::string(missing.empty() ? "" : ", ") + font;
    }
  }
  return {
      "Font metrics", pathToUtf8(folder) + (missing.empty() ? "" : ": missing are " + missing),
      missing.empty() ? "" : "Put the .afm files of the package there; text of these fonts has no width."};
}

Finding examineCodePage() {
  const bool oneByte = utf8ToAnsi("\xC3\xA9").size() == 1;  // e with an acute accent
  return {"Code page", codePage(),
          oneByte ? "" : "Texts of PDF and KML files need a code page of one byte a character."};
}

Finding examineTrace() {
  const auto setting = traceSetting();
  if (setting.empty() || setting == "off") {
    return {"Trace", "off"};
  }
  std::error_code error;
  const auto folder = std::filesystem::absolute(setting, error).parent_path();
  const bool works =
      setting == "stderr" || setting == "debug" || std::filesystem::is_directory(folder, error);
  return {"Trace", "on, to " + pathToUtf8(setting),
          works ? "" : "Name a file in a folder that exists: VELTRANO_TRACE, or Trace in the registry."};
}

}  // namespace

bool diagnose() {
  std::vector<Finding> findings = {
      {"Version", std::string(versionText) + ", " + std::to_string(8 * sizeof(void*)) + " bits"},
      {"Program", pathToUtf8(hostExecutable())},
      examineMetrics(),
      examineCodePage(),
      examineTrace()};
  std::ranges::move(examineSystem(), std::back_inserter(findings));
  std::string text;
  bool healthy = true;
  for (const auto& [subject, state, advice] : findings) {
    text.append(advice.empty() ? "ok     " : "WRONG  ").append(subject).append(": ").append(state);
    text.append(advice.empty() ? "" : "\n       ").append(advice).append("\n");
    healthy = healthy && advice.empty();
  }
  Output().write(text);
  return healthy;
}

}  // namespace veltrano::tools
