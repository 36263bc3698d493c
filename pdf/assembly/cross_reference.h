#ifndef VELTRANO_PDF_ASSEMBLY_CROSS_REFERENCE_H
#define VELTRANO_PDF_ASSEMBLY_CROSS_REFERENCE_H

// The positions of the objects, and the table and trailer at the end of a file that name them.

#include <cstdint>
#include <vector>

#include "pdf/assembly/output_text.h"

namespace veltrano {

class CrossReference {
 public:
  /// Counts `length` characters of output. The header counts first, then each object in file order.
  void count(std::uint64_t length);
  void clear();

  /// Writes the table of `size` entries, the trailer and the end-of-file line.
  void write(OutputText& output, int size, int catalogObject) const;

 private:
  std::uint64_t counted_ = 0;
  std::vector<std::uint64_t> positions_;
};

}  // namespace veltrano

#endif
