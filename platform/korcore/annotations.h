// Lock annotations, checked by clang's -Wthread-safety and empty elsewhere.
#pragma once

#if defined(__clang__)
#define KOR_ANNOTATE(x) __attribute__((x))
#else
#define KOR_ANNOTATE(x)
#endif

#define CAPABILITY(name) KOR_ANNOTATE(capability(name))
#define SCOPED_CAPABILITY KOR_ANNOTATE(scoped_lockable)
#define GUARDED_BY(lock) KOR_ANNOTATE(guarded_by(lock))
#define REQUIRES(...) KOR_ANNOTATE(requires_capability(__VA_ARGS__))
#define ACQUIRE(...) KOR_ANNOTATE(acquire_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) KOR_ANNOTATE(try_acquire_capability(__VA_ARGS__))
#define RELEASE(...) KOR_ANNOTATE(release_capability(__VA_ARGS__))
#define EXCLUDES(...) KOR_ANNOTATE(locks_excluded(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS KOR_ANNOTATE(no_thread_safety_analysis)
