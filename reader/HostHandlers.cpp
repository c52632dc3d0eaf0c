#include "reader/HostHandlers.h"
