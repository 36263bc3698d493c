#include "server/com/registration.h"

#include <shlwapi.h>

#include <array>
#include <string>
#include <vector>

#include "base/os/owned.h"
#include "server/com/class_table.h"
#include "server/com/module.h"

namespace veltrano::server {

namespace {

constexpr bool is64Bit = sizeof(void*) == 8;
constexpr REGSAM ownView = is64Bit ? KEY_WOW64_64KEY : KEY_WOW64_32KEY;
constexpr REGSAM otherView = is64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
constexpr const wchar_t* ownPlatform = is64Bit ? L"win64" : L"win32";

constexpr const wchar_t* libraryVersion = L"1.0";
// The system's marshallers: of interfaces that a type library describes, and of plain dispatch interfaces.
constexpr const wchar_t* typeLibraryMarshaller = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* dispatchMarshaller = L"{00020420-0000-0000-C000-000000000046}";

/// The two places where classes are registered: for all users and for this one.
struct Root {
  HKEY hive;
  std::wstring classes = L"Software\\Classes\\";
};

void closeKey(HKEY key) {
  RegCloseKey(key);
}
using Key = Owned<HKEY, closeKey>;

/// Holds none if there is no such key, or the user may not have it.
Key openKey(HKEY parent, const std::wstring& path, REGSAM access) {
  HKEY key = nullptr;
  return Key(RegOpenKeyExW(parent, path.c_str(), 0, access, &key) == ERROR_SUCCESS ? key : nullptr);
}

std::wstring guidText(REFGUID guid) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::wstring programId(const ClassEntry& entry) {
  return std::wstring(L"VeltranoFrameWorkDLL.") + entry.name;
}

std::wstring parentFolder(const std::wstring& path) {
  return path.substr(0, path.find_last_of(L"\\/"));
}

struct Entry {
  std::wstring key;
  const wchar_t* name;  ///< null for the key's own value
  std::wstring data;
};

void addClass(std::vector<Entry>& entries, const ClassEntry& entry, const std::wstring& path) {
  const std::wstring clsid = guidText(*entry.clsid);
  const std::wstring id = programId(entry);
  const std::wstring versionedId = id + L".1";
  entries.push_back({id, nullptr, entry.description});
  entries.push_back({id + L"\\CLSID", nullptr, clsid});
  entries.push_back({id + L"\\CurVer", nullptr, versionedId});
  entries.push_back({versionedId, nullptr, entry.description});
  entries.push_back({versionedId + L"\\CLSID", nullptr, clsid});

  const std::wstring key = L"CLSID\\" + clsid;
  entries.push_back({key, nullptr, entry.description});
  entries.push_back({key + L"\\InprocServer32", nullptr, path});
  entries.push_back({key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"});
  entries.push_back({key + L"\\ProgID", nullptr, versionedId});
  entries.push_back({key + L"\\VersionIndependentProgID", nullptr, id});
  entries.push_back({key + L"\\TypeLib", nullptr, guidText(LIBID_VeltranoFrameWorkDLL)});
  entries.push_back({key + L"\\Version", nullptr, libraryVersion});
  entries.push_back({key + L"\\Programmable", nullptr, {}});
}

void addInterface(std::vector<Entry>& entries, REFIID iid, const std::wstring& name,
                  const wchar_t* marshaller) {
  const std::wstring key = L"Interface\\" + guidText(iid);
  entries.push_back({key, nullptr, name});
  entries.push_back({key + L"\\ProxyStubClsid32", nullptr, marshaller});
  entries.push_back({key + L"\\TypeLib", nullptr, guidText(LIBID_VeltranoFrameWorkDLL)});
  entries.push_back({key + L"\\TypeLib", L"Version", libraryVersion});
}

std::wstring libraryKey() {
  return L"TypeLib\\" + guidText(LIBID_VeltranoFrameWorkDLL) + L"\\" + libraryVersion;
}

/// Every value that registration writes, below the root of the classes.
std::vector<Entry> registryEntries() {
  const std::wstring path = modulePath();
  std::vector<Entry> entries;
  for (const ClassEntry& entry : classTable()) {
    addClass(entries, entry, path);
    addInterface(entries, *entry.dispatchInterface, std::wstring(L"_") + entry.name, typeLibraryMarshaller);
    if (entry.eventInterface != nullptr) {
      addInterface(entries, *entry.eventInterface, std::wstring(L"__") + entry.name, dispatchMarshaller);
    }
  }
  entries.push_back({libraryKey(), nullptr, L"Veltrano FrameWork"});
  entries.push_back({libraryKey() + L"\\0\\" + ownPlatform, nullptr, path});
  entries.push_back({libraryKey() + L"\\FLAGS", nullptr, L"0"});
  entries.push_back({libraryKey() + L"\\HELPDIR", nullptr, parentFolder(path)});
  return entries;
}

LSTATUS writeEntry(const Root& root, const Entry& entry) {
  HKEY created = nullptr;
  const LSTATUS status = RegCreateKeyExW(root.hive, (root.classes + entry.key).c_str(), 0, nullptr, 0,
                                         KEY_SET_VALUE | ownView, nullptr, &created, nullptr);
  if (status != ERROR_SUCCESS) {
    return status;
  }
  const Key key(created);
  const std::size_t size = (entry.data.size() + 1) * sizeof(wchar_t);
  return RegSetValueExW(key.get(), entry.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(entry.data.c_str()),
                        static_cast<DWORD>(size));
}

LSTATUS writeEntries(const Root& root) {
  for (const Entry& entry : registryEntries()) {
    const LSTATUS status = writeEntry(root, entry);
    if (status != ERROR_SUCCESS) {
      return status;
    }
  }
  return ERROR_SUCCESS;
}

/// A key that is not there counts as deleted.
LSTATUS deleteTree(const Root& root, const std::wstring& key, REGSAM view = ownView) {
  const std::wstring parent = root.classes + parentFolder(key);
  const std::wstring name = key.substr(key.find_last_of(L'\\') + 1);
  const Key opened =
      openKey(root.hive, key == name ? root.classes.substr(0, root.classes.size() - 1) : parent,
              DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE | view);
  if (!opened || !openKey(opened.get(), name, KEY_QUERY_VALUE | view)) {
    return ERROR_SUCCESS;
  }
  return RegDeleteTreeW(opened.get(), name.c_str());
}

/// Deletes a key that holds no key any more.
void deleteIfEmpty(const Root& root, const std::wstring& key, REGSAM view = ownView) {
  DWORD keys = 1;
  {
    const Key opened = openKey(root.hive, root.classes + key, KEY_QUERY_VALUE | view);
    if (!opened || RegQueryInfoKeyW(opened.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr,
                                    nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) {
      return;
    }
  }
  if (keys == 0) {
    RegDeleteKeyExW(root.hive, (root.classes + key).c_str(), view, 0);
  }
}

bool otherBitnessIsRegistered(const Root& root) {
  const std::wstring key = L"CLSID\\" + guidText(*classTable().front().clsid) + L"\\InprocServer32";
  return static_cast<bool>(openKey(root.hive, root.classes + key, KEY_QUERY_VALUE | otherView));
}

/// What both bitnesses use: program ids, interfaces (in each view) and the rest of the library's key.
void deleteShared(const Root& root) {
  for (const ClassEntry& entry : classTable()) {
    deleteTree(root, programId(entry));
    deleteTree(root, programId(entry) + L".1");
    for (const IID* iid : {entry.dispatchInterface, entry.eventInterface}) {
      for (const REGSAM view : {ownView, otherView}) {
        if (iid != nullptr) {
          deleteTree(root, L"Interface\\" + guidText(*iid), view);
        }
      }
    }
  }
  deleteTree(root, L"TypeLib\\" + guidText(LIBID_VeltranoFrameWorkDLL));
}

/// Removes the entries below one root; failures there (no rights) leave them.
LSTATUS deleteEntries(const Root& root) {
  LSTATUS status = ERROR_SUCCESS;
  for (const ClassEntry& entry : classTable()) {
    const LSTATUS deleted = deleteTree(root, L"CLSID\\" + guidText(*entry.clsid));
    if (deleted != ERROR_SUCCESS) {
      status = deleted;
    }
  }
  deleteTree(root, libraryKey() + L"\\0\\" + ownPlatform);
  // Looked up when the own classes are gone: where both views are one, they are what would be found.
  if (!otherBitnessIsRegistered(root)) {
    deleteShared(root);
  }
  if (root.hive == HKEY_CURRENT_USER) {
    // A user's own classes need not have had these keys before.
    for (const wchar_t* key : {L"CLSID", L"Interface", L"TypeLib"}) {
      for (const REGSAM view : {ownView, otherView}) {
        deleteIfEmpty(root, key, view);
      }
    }
  }
  return status;
}

HRESULT resultOf(LSTATUS status) {
  if (status == ERROR_SUCCESS) {
    return S_OK;
  }
  return status == ERROR_ACCESS_DENIED ? E_ACCESSDENIED : SELFREG_E_CLASS;
}

}  // namespace

HRESULT registerServer(Scope scope) {
  if (scope == Scope::machineOrUser) {
    const LSTATUS status = writeEntries({HKEY_LOCAL_MACHINE});
    if (status != ERROR_ACCESS_DENIED) {
      return resultOf(status);
    }
  }
  return resultOf(writeEntries({HKEY_CURRENT_USER}));
}

HRESULT unregisterServer(Scope scope) {
  const LSTATUS user = deleteEntries({HKEY_CURRENT_USER});
  if (scope == Scope::user) {
    return resultOf(user);
  }
  return resultOf(deleteEntries({HKEY_LOCAL_MACHINE}));
}

}  // namespace veltrano::server
