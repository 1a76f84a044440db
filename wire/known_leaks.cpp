// What the leak sanitizer finds in Debian's gRPC: some names that its resolver copies. The
// sanitizer's library finds the function by its name, so it is seen from outside.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:ares_strdup\n"; }
