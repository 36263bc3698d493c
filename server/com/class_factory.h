#ifndef VELTRANO_SERVER_COM_CLASS_FACTORY_H
#define VELTRANO_SERVER_COM_CLASS_FACTORY_H

#include "server/com/class_table.h"

namespace veltrano::server {

/// The factory of a class, asked for `iid`.
HRESULT createClassFactory(const ClassEntry& entry, REFIID iid, void** object);

}  // namespace veltrano::server

#endif
