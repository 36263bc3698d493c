// Any text and key: what is changed is read back, and a second change gives the same bytes. The key ends at
// the first zero byte of the input.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "settings/veltrano_ini.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t cut = input.find('\0');
  const std::string key = input.substr(0, cut);
  const std::string text = cut == std::string::npos ? std::string() : input.substr(cut + 1);
  veltrano::VeltranoINI ini;
  ini.GetValue(text, key, "none");
  const std::string changed = ini.ChangeValue(text, key, "value");
  // A key with a line end in it is on no line, and is added each time.
  if (key.find("\r\n") == std::string::npos) {
    if (ini.GetValue(changed, key, "none") != "value" || ini.ChangeValue(changed, key, "value") != changed) {
      std::abort();
    }
  }
  return 0;
}
