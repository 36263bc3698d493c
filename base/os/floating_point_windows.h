#ifndef VELTRANO_BASE_OS_FLOATING_POINT_WINDOWS_H
#define VELTRANO_BASE_OS_FLOATING_POINT_WINDOWS_H

// Two sides share a thread's floating-point settings: the host, and the library that it calls. Some hosts let a
// division by zero or an overflow raise a processor exception, or round differently; the library calculates with
// exceptions masked, rounding to nearest.

namespace veltrano {

/// What both floating-point units of the processor are set to.
struct FloatingPointSettings {
  unsigned vector;       ///< MXCSR
  unsigned short stack;  ///< the x87 control word

  static FloatingPointSettings current();
  void apply() const;
  /// Whatever exceptions have been noted meanwhile.
  bool operator==(const FloatingPointSettings& other) const;
};

/// For the time of a member: the library's settings. The host's come back at the end.
class LibraryArithmetic {
 public:
  LibraryArithmetic();
  LibraryArithmetic(const LibraryArithmetic&) = delete;
  LibraryArithmetic& operator=(const LibraryArithmetic&) = delete;
  ~LibraryArithmetic();

 private:
  friend class HostArithmetic;
  FloatingPointSettings host_;
  bool differs_;  ///< most hosts calculate as the library does: then there is nothing to change
  LibraryArithmetic* outer_ = nullptr;
};

/// For the time that a member runs code of the host (event handlers, window procedures, objects that are asked for
/// their value): the settings that the host called with. What the host changes meanwhile stays its own. No-op outside
/// members.
class HostArithmetic {
 public:
  HostArithmetic();
  HostArithmetic(const HostArithmetic&) = delete;
  HostArithmetic& operator=(const HostArithmetic&) = delete;
  ~HostArithmetic();

 private:
  LibraryArithmetic* member_;
};

}  // namespace veltrano

#endif
