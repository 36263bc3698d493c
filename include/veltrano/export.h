#ifndef VELTRANO_EXPORT_H
#define VELTRANO_EXPORT_H

// VELTRANO_API marks what a shared library shows to programs; everything else in it is hidden.

#if defined(__GNUC__) && !defined(_WIN32)
#define VELTRANO_API __attribute__((visibility("default")))
#else
#define VELTRANO_API
#endif

#endif
