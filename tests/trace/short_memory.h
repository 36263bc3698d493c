#ifndef VELTRANO_TESTS_TRACE_SHORT_MEMORY_H
#define VELTRANO_TESTS_TRACE_SHORT_MEMORY_H

namespace veltrano::tests {

/// While it is set, the heap gives nothing.
extern bool memoryIsShort;

}  // namespace veltrano::tests

#endif
