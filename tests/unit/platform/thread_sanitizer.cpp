// What the thread sanitizer cannot know about named locks: its memory of who holds a mutex is
// copied into a child of fork as it is, and it takes a mutex whose file was cut away for held.
#if defined(OAM_SANITIZED)
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "mutex:MutexAcrossFork\n"
           "deadlock:CutShortWhileItIsHeldIsLostAndNotFatal\n";
}
#endif
