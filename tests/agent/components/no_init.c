// Lacks the entry point dalLCMinit.
__attribute__((visibility("default"))) void dalLCMterminate(void);

void dalLCMterminate(void) {}
