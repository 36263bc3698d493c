#include <windows.h>

#include <vector>

#include "base/files/whole.h"
#include "base/os/floating_point_windows.h"
#include "base/os/host.h"
#include "base/os/module_windows.h"
#include "base/text/code_page.h"
#include "veltrano/installed.h"

namespace veltrano {

namespace {

// The product name in the language that the resource lists first. Empty when there is none.
std::wstring productName(const std::filesystem::path& executable) {
  DWORD unused = 0;
  const DWORD size = GetFileVersionInfoSizeW(executable.c_str(), &unused);
  std::vector<std::byte> block(size);
  if (size == 0 || GetFileVersionInfoW(executable.c_str(), 0, size, block.data()) == 0) {
    return {};
  }
  struct Translation {
    WORD language;
    WORD codePage;
  };
  void* found = nullptr;
  UINT length = 0;
  if (VerQueryValueW(block.data(), L"\\VarFileInfo\\Translation", &found, &length) == 0 ||
      length < sizeof(Translation)) {
    return {};
  }
  const auto translation = *static_cast<const Translation*>(found);
  wchar_t query[64];
  wsprintfW(query, L"\\StringFileInfo\\%04x%04x\\ProductName", translation.language, translation.codePage);
  if (VerQueryValueW(block.data(), query, &found, &length) == 0 || length < 2) {
    return {};
  }
  std::wstring name(static_cast<const wchar_t*>(found), length);
  name.erase(std::min(name.find(L'\0'), name.size()));
  return name;
}

}  // namespace

std::filesystem::path libraryFolder() {
  return modulePath(ownModule(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT)).parent_path();
}

// Beside the library, always: that is how it is installed and how it is carried without installation.
std::filesystem::path metricsFolder() {
  return libraryFolder();
}

bool setMetricsFolder(const char*) {
  return true;
}

std::filesystem::path hostExecutable() {
  return modulePath(nullptr);
}

std::string hostApplicationName() {
  const auto executable = hostExecutable();
  const std::wstring product = productName(executable);
  return pathToAnsi(product.empty() ? executable.stem() : std::filesystem::path(product));
}

void yieldToHost() {
  const HostArithmetic host;
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      // Not ours to swallow: the host's own loop must see it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace veltrano
