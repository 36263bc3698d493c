#include "veltrano/value.h"  // moved; include that
