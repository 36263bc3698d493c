// The five functions that the DLL exports.

#include <cwctype>
#include <exception>
#include <string_view>

#include "database/shared_engine.h"
#include "server/com/class_factory.h"
#include "server/com/module.h"
#include "server/com/registration.h"

namespace server = veltrano::server;

namespace {

// No C++ exception may reach the system.
template <class Body>
HRESULT guarded(Body&& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception&) {
    return E_FAIL;
  }
}

// "user" in any case: what regsvr32 /i:user hands over.
bool isUserScope(PCWSTR commandLine) {
  if (commandLine == nullptr) {
    return false;
  }
  constexpr std::wstring_view wanted = L"user";
  const std::wstring_view given(commandLine);
  if (given.size() != wanted.size()) {
    return false;
  }
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (std::towlower(given[i]) != wanted[i]) {
      return false;
    }
  }
  return true;
}

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
  if (object == nullptr) {
    return E_POINTER;
  }
  *object = nullptr;
  const server::ClassEntry* entry = server::findClass(clsid);
  return entry != nullptr ? server::createClassFactory(*entry, iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  if (server::moduleLocks() != 0) {
    return S_FALSE;
  }
  // The engine may hold objects of another library, which must be let go while calls are still allowed: not
  // while the system unloads this one. No database object is left that could use it.
  veltrano::releaseSharedDatabaseEngine();
  return S_OK;
}

STDAPI DllRegisterServer() {
  return guarded([] { return server::registerServer(server::Scope::machineOrUser); });
}

STDAPI DllUnregisterServer() {
  return guarded([] { return server::unregisterServer(server::Scope::machineOrUser); });
}

STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
  return guarded([&] {
    const server::Scope scope = isUserScope(commandLine) ? server::Scope::user : server::Scope::machineOrUser;
    return install != FALSE ? server::registerServer(scope) : server::unregisterServer(scope);
  });
}
