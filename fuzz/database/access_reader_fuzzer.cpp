// Damages a good database (damaged_file.h), plain or encrypted as the first byte says, and only reads it: all
// that there is, and by a search in each column. The rest of the input is taken as stored text, too.

#include "damaged_file.h"
#include "database/access/storage/text_codec.h"
#include "hostile.h"
#include "simulated_disk.h"

using namespace veltrano::access;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<GoodFile> files = GoodFile::makeAll();
  std::string text;
  storedTextToUtf8(Bytes(data, size), text);
  if (size != 0) {
    const GoodFile& good = files[*data % files.size()];
    SimulatedDisk disk;
    disk.put("bad.mdb", good.damaged({data + 1, size - 1}));
    readHostileFile("bad.mdb", disk, good.password());
  }
  return 0;
}
