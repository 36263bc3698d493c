// The registered server: creation by program id, other apartments, and what registration leaves in the registry. Run in
// a Wine prefix of its own.

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <thread>

#include "host.h"
#include "server/com/class_table.h"

namespace veltrano::tests {

namespace {

class ComApartment {
 public:
  ComApartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
  ~ComApartment() { CoUninitialize(); }
};

/// Every key and value below a key: path and data.
using Snapshot = std::set<std::wstring>;

void addKey(Snapshot& snapshot, HKEY parent, const std::wstring& name, const std::wstring& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ | KEY_WOW64_64KEY, &key) != ERROR_SUCCESS) return;
  snapshot.insert(path);
  wchar_t text[1024], data[1024];
  DWORD length = 1024, size = sizeof data;
  LSTATUS status = ERROR_SUCCESS;
  for (DWORD i = 0; status == ERROR_SUCCESS || status == ERROR_MORE_DATA;
       ++i, length = 1024, size = sizeof data) {
    status = RegEnumValueW(key, i, text, &length, nullptr, nullptr, reinterpret_cast<BYTE*>(data), &size);
    if (status == ERROR_SUCCESS) snapshot.insert(path + L"@" + text + L" = " + std::wstring(data, size / 2));
  }
  for (DWORD i = 0; RegEnumKeyExW(key, i, text, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
       ++i, length = 1024)
    addKey(snapshot, key, text, path + L"\\" + text);
  RegCloseKey(key);
}

/// The classes of all users and of this one. The 32-bit view lies within the 64-bit one.
Snapshot registrySnapshot() {
  Snapshot snapshot;
  addKey(snapshot, HKEY_LOCAL_MACHINE, L"Software\\Classes", L":machine");
  addKey(snapshot, HKEY_CURRENT_USER, L"Software\\Classes", L":user");
  return snapshot;
}

/// What has come or gone since.
std::vector<std::wstring> changes(const Snapshot& before) {
  std::vector<std::wstring> found;
  std::ranges::set_symmetric_difference(before, registrySnapshot(), std::back_inserter(found));
  return found;
}

std::wstring textOf(REFGUID guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return text;
}

ComPointer<IDispatch> createByName(const std::wstring& programId) {
  CLSID clsid = {};
  ComPointer<IDispatch> object;
  if (SUCCEEDED(CLSIDFromProgID(programId.c_str(), &clsid))) {
    CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                     reinterpret_cast<void**>(object.out()));
  }
  return object;
}

/// The DLL unregistered while a test runs, and registered again for the next one.
class Registered : public testing::Test {
 protected:
  void SetUp() override { dll_.call("DllUnregisterServer"); }
  void TearDown() override { EXPECT_EQ(S_OK, dll_.call("DllRegisterServer")); }

  const ComApartment apartment_;
  const TemporaryFolder folder_;
  const Dll dll_;
};

TEST_F(Registered, LeavesNothingBehindAndMovesWithItsFolder) {
  // Not in the code page.
  const std::filesystem::path copy = folder_ / L"\u4e00.dll";
  std::filesystem::copy_file(dllFile, copy);
  const Dll there(copy);
  const Snapshot before = registrySnapshot();
  EXPECT_FALSE(createByName(L"VeltranoFrameWorkDLL.VeltranoPDF"));

  ASSERT_EQ(S_OK, dll_.call("DllRegisterServer"));
  ASSERT_EQ(S_OK, there.call("DllRegisterServer"));
  const auto holds = [registered = registrySnapshot()](const std::wstring& entry) {
    return std::ranges::any_of(registered,
                               [&](const std::wstring& any) { return any.find(entry) != any.npos; });
  };
  EXPECT_TRUE(holds(textOf(CLSID_VeltranoPDF) + L"\\InprocServer32@ = " + copy.wstring()));
  // Events are carried to other apartments as plain dispatch.
  EXPECT_TRUE(
      holds(textOf(DIID___VeltranoPDF) + L"\\ProxyStubClsid32@ = {00020420-0000-0000-C000-000000000046}"));
  for (const server::ClassEntry& entry : server::classTable())
    for (const wchar_t* version : {L"", L".1"})
      EXPECT_TRUE(createByName(std::wstring(L"VeltranoFrameWorkDLL.") + entry.name + version));
  CoFreeUnusedLibrariesEx(0, 0);

  ASSERT_EQ(S_OK, there.call("DllUnregisterServer"));
  EXPECT_THAT(changes(before), testing::IsEmpty());
}

TEST_F(Registered, ForOneUserTouchesThatUserAlone) {
  // Windows has this key for every user.
  HKEY classes = nullptr;
  RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr, 0, KEY_READ, nullptr, &classes,
                  nullptr);
  RegCloseKey(classes);
  const Snapshot before = registrySnapshot();
  ASSERT_EQ(S_OK, dll_.call("DllInstall", BOOL{TRUE}, L"User"));
  EXPECT_THAT(changes(before),
              testing::AllOf(testing::Not(testing::IsEmpty()), testing::Each(testing::StartsWith(L":user"))));
  ASSERT_EQ(S_OK, dll_.call("DllInstall", BOOL{FALSE}, L"user"));
  EXPECT_THAT(changes(before), testing::IsEmpty());
}

TEST_F(Registered, LeavesWhatTheOtherBitnessNeeds) {
  const Snapshot before = registrySnapshot();
  // What the DLL of the other bitness has registered for itself, as far as it matters here.
  const REGSAM otherView = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
  const std::wstring path = L"Software\\Classes\\CLSID\\" + textOf(CLSID_VeltranoPDF);
  HKEY key = nullptr;
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, (path + L"\\InprocServer32").c_str(), 0, nullptr, 0,
                  KEY_WRITE | otherView, nullptr, &key, nullptr);
  RegCloseKey(key);
  dll_.call("DllRegisterServer");
  ASSERT_EQ(S_OK, dll_.call("DllUnregisterServer"));
  CLSID found = {};
  EXPECT_EQ(S_OK, CLSIDFromProgID(L"VeltranoFrameWorkDLL.VeltranoPDF", &found));
  for (const std::wstring& gone : {path + L"\\InprocServer32", path})
    RegDeleteKeyExW(HKEY_LOCAL_MACHINE, gone.c_str(), otherView, 0);
  ASSERT_EQ(S_OK, dll_.call("DllUnregisterServer"));
  EXPECT_THAT(changes(before), testing::IsEmpty());
}

TEST_F(Registered, IsCalledFromAnotherApartment) {
  dll_.call("DllRegisterServer");
  const ComPointer<IDispatch> object = createByName(L"VeltranoFrameWorkDLL.VeltranoPDF");
  ASSERT_TRUE(object);
  IStream* stream = nullptr;
  ASSERT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID__VeltranoPDF, object.get(), &stream));
  std::wstring seen;
  std::thread other([&, home = GetCurrentThreadId()] {
    const ComApartment own;
    ComPointer<_VeltranoPDF> pdf;
    CoGetInterfaceAndReleaseStream(stream, IID__VeltranoPDF, reinterpret_cast<void**>(pdf.out()));
    if (pdf) {
      // Early bound through the type library's marshaller, then late bound.
      short left = 7, top = 8, same = -1;
      pdf->PDFSetMargins(&left, &top, &same, &same);
      Argument unit = Argument::of(VT_BSTR);
      pdf->get_PDFGetUnit(&unit->bstrVal);
      seen = unit.text() + L" " + getProperty(*pdf.get(), L"PDFGetRightMargin");
    }
    pdf = {};
    PostThreadMessageW(home, WM_QUIT, 0, 0);
  });
  for (MSG message = {}; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
  other.join();
  EXPECT_EQ(L"cm 7", seen);
}

}  // namespace

}  // namespace veltrano::tests
