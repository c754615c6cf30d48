#pragma once

/// Before a function definition: compile it also for processors with wider vectors, chosen when
/// the program is loaded. Sanitizers cannot instrument that choice.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(QUOREL_SANITIZED)
#define QUOREL_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define QUOREL_VECTOR_CLONES
#endif
