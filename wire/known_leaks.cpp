// What the leak sanitizer finds in Debian's gRPC: its resolver keeps the names of servers that it
// was asked for. The sanitizer's library finds the function by its name, so it is seen from
// outside.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:ares_strdup\n"; }
