#include "veltrano/installed.h"  // moved; include that
