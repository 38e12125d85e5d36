#include "link/waits.h"

Waits gWaits;
