#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <objbase.h>
#include <shellapi.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#include "base/files/whole.h"
#include "database/dao/engine_windows.h"
#include "tools/program.h"
#include "veltrano/version.h"

namespace veltrano::tools {

namespace {

constexpr int ownBits = 8 * sizeof(void*);
constexpr const char* howToRegister = "Register it: regsvr32 FOLDER\\VeltranoFrameWorkDLL.dll";

/// The default value of a key below the classes of this user, or else of all users, in the view of a word size.
std::wstring classValue(const std::wstring& key, int bits) {
  for (HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    HKEY opened = nullptr;
    const REGSAM access = KEY_QUERY_VALUE | (bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY);
    if (RegOpenKeyExW(hive, (L"Software\\Classes\\" + key).c_str(), 0, access, &opened) == ERROR_SUCCESS) {
      std::array<wchar_t, 1024> value{};
      DWORD size = sizeof value;
      const auto read = RegGetValueW(opened, nullptr, nullptr, RRF_RT_REG_SZ, nullptr, value.data(), &size);
      RegCloseKey(opened);
      if (read == ERROR_SUCCESS) return value.data();
    }
  }
  return {};
}

/// "unknown" if there is no such file or it is not a program.
std::string versionOf(const std::wstring& file) {
  DWORD unused = 0;
  std::vector<char> block(GetFileVersionInfoSizeW(file.c_str(), &unused));
  void* found = nullptr;
  UINT length = 0;
  if (block.empty() ||
      GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) == 0 ||
      VerQueryValueW(block.data(), L"\\", &found, &length) == 0) {
    return "unknown";
  }
  const auto* info = static_cast<const VS_FIXEDFILEINFO*>(found);
  return std::to_string(HIWORD(info->dwFileVersionMS)) + "." + std::to_string(LOWORD(info->dwFileVersionMS)) +
         "." + std::to_string(HIWORD(info->dwFileVersionLS));
}

/// Whether this process can make an object of each class. What it cannot make is added to `state`.
bool makesObjects(std::string& state) {
  const std::size_t before = state.size();
  for (const char* name : {"VeltranoPDF", "VeltranoKML", "VeltranoXML", "VeltranoINI", "VeltranoJPG",
                           "VeltranoPNG", "VeltranoMDB", "VeltranoWEV"}) {
    CLSID clsid;
    void* object = nullptr;
    const auto id = pathFromUtf8(std::string("VeltranoFrameWorkDLL.") + name);
    HRESULT result = CLSIDFromProgID(id.c_str(), &clsid);
    result = result == S_OK ? CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object)
                            : result;
    if (object != nullptr) {
      static_cast<IUnknown*>(object)->Release();
      continue;
    }
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), ", %s cannot be made (0x%08lX)", name, result);
    state += text.data();
  }
  return state.size() == before;
}

Finding examineDll(int bits) {
  Finding finding{"DLL for " + std::to_string(bits) + "-bit hosts", "not registered"};
  const std::wstring clsid = classValue(L"VeltranoFrameWorkDLL.VeltranoPDF\\CLSID", bits);
  const std::wstring file =
      clsid.empty() ? clsid : classValue(L"CLSID\\" + clsid + L"\\InprocServer32", bits);
  if (file.empty()) {
    return finding;
  }
  const std::string version = versionOf(file);
  finding.state = pathToUtf8(file) + ", version " + version;
  if (version == "unknown" || (bits == ownBits && !makesObjects(finding.state))) {
    finding.advice = howToRegister;
  } else if (version != versionText) {
    finding.advice = std::string("It should have the version of this program. ") + howToRegister;
  } else if (!std::filesystem::exists(std::filesystem::path(file).replace_filename("Helvetica.afm"))) {
    finding.state += ", without font metrics";
    finding.advice = "Put the .afm files of the package beside it.";
  } else {
    finding.state += bits == ownBits ? ", loads" : ", to be loaded by veltrano.exe of that word size only";
  }
  return finding;
}

}  // namespace

std::vector<std::string> prepare(int /*count*/, char** /*arguments*/) {
  _setmode(_fileno(stdout), _O_BINARY);
  static const UINT before = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  std::atexit([] { SetConsoleOutputCP(before); });
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(pathToUtf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

bool errorsGoToTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

std::vector<Finding> examineSystem() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  SYSTEM_INFO system;
  GetNativeSystemInfo(&system);
  std::vector<Finding> findings = {examineDll(32)};
  if (system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64) {
    findings.push_back(examineDll(64));
  }
  // One is enough for the hosts of its word size.
  if (findings.front().state == "not registered" && findings.back().state == "not registered") {
    findings.front().advice = howToRegister;
  }
  findings.push_back({"Database engine", makeDaoEngine() ? "DAO of this machine" : "the embedded one"});
  CoUninitialize();
  return findings;
}

}  // namespace veltrano::tools
