#pragma once

// Says at the data which lock guards it, and at a function which lock its caller holds. The
// compiler checks it where it knows the locks of the standard library (`scripts/check locks`).
#ifdef _LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS
#define TAVOREN_GUARDED_BY(lock) __attribute__((guarded_by(lock)))
#define TAVOREN_REQUIRES(lock) __attribute__((requires_capability(lock)))
#define TAVOREN_ACQUIRED_BEFORE(lock) __attribute__((acquired_before(lock)))
#else
#define TAVOREN_GUARDED_BY(lock)
#define TAVOREN_REQUIRES(lock)
#define TAVOREN_ACQUIRED_BEFORE(lock)
#endif
