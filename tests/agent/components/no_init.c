// Lacks the entry point dalLCMinit.
#include "DalPortal.h"

void dalLCMterminate(void) {}
