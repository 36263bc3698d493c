// Damages a good database (damaged_file.h), plain or encrypted as the first byte says, and reads and changes
// it as a host would.

#include "damaged_file.h"
#include "hostile.h"
#include "simulated_disk.h"

using namespace veltrano::access;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<GoodFile> files = GoodFile::makeAll();
  if (size != 0) {
    const GoodFile& good = files[*data % files.size()];
    SimulatedDisk disk;
    disk.put("bad.mdb", good.damaged({data + 1, size - 1}));
    useHostileFile("bad.mdb", disk, good.password());
  }
  return 0;
}
