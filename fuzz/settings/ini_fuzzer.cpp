// Changes any key of any text: the value is read back, and a second change gives the same text. The key ends
// at the first zero unit of the input.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "veltrano/ini.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::u16string input(size / sizeof(char16_t), u'\0');
  if (!input.empty()) {
    std::memcpy(input.data(), data, input.size() * sizeof(char16_t));
  }
  const std::size_t cut = input.find(u'\0');
  const std::u16string key = input.substr(0, cut);
  const std::u16string text = cut == std::string::npos ? std::u16string() : input.substr(cut + 1);
  veltrano::VeltranoINI ini;
  ini.GetValue(text, key, u"none");
  const std::u16string changed = ini.ChangeValue(text, key, u"value");
  // A key that contains a line end matches no line and is added each time.
  if (key.find(u"\r\n") == std::string::npos) {
    if (ini.GetValue(changed, key, u"none") != u"value" ||
        ini.ChangeValue(changed, key, u"value") != changed) {
      std::abort();
    }
  }
  return 0;
}
