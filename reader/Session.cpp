#include "raylume/load/ReaderInterface.h"
