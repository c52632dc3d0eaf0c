#include "raylume/load/ReaderMaths.h"
