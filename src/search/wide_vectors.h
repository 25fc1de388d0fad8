#pragma once

/// For a function of plain loops, or of vectors: it is compiled for 256-bit vectors as well, and the loader takes what
/// suits the processor. clang 14 cannot combine the two attributes, and the loader would choose before ThreadSanitizer
/// is ready for it.
#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__)
#define WITH_WIDE_VECTORS __attribute__((flatten, target_clones("avx2", "default")))
#else
#define WITH_WIDE_VECTORS
#endif
