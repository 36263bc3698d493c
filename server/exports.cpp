// The five functions that the DLL exports.

#include "base/text/lower_case.h"
#include "server/com/class_factory.h"
#include "server/com/module.h"
#include "server/com/registration.h"

namespace server = veltrano::server;

namespace {

// What regsvr32 /i:user hands over.
bool isUserScope(PCWSTR commandLine) {
  return commandLine != nullptr && veltrano::sameAsciiName<wchar_t>(commandLine, L"user");
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
  return server::moduleLocks() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return server::guarded([] { return server::registerServer(server::Scope::machineOrUser); });
}

STDAPI DllUnregisterServer() {
  return server::guarded([] { return server::unregisterServer(server::Scope::machineOrUser); });
}

STDAPI DllInstall(BOOL install, PCWSTR commandLine) {
  return server::guarded([&] {
    const server::Scope scope = isUserScope(commandLine) ? server::Scope::user : server::Scope::machineOrUser;
    return install != FALSE ? server::registerServer(scope) : server::unregisterServer(scope);
  });
}
