#pragma once
// VARNOTH_CLONES before a function gives it an AVX2 copy beside the plain
// one, chosen when the program loads. Neither copy fuses multiply and add,
// so every processor gives the same numbers. Clones are left out where the
// compiler or the address sanitizer does not take them.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
#define VARNOTH_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VARNOTH_CLONES
#endif
