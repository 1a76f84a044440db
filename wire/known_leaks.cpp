// What the leak sanitizer finds in Debian's gRPC: its resolver keeps the names of servers that it was
// asked for.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:ares_strdup\n"; }
