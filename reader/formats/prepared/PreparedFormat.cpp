#include "reader/DocumentFormat.h"
