#pragma once
// Gathering and scattering of bits (PEXT, PDEP), where the processor does it in one quick
// instruction. The first two generations of Zen have the instructions, but take many cycles.

namespace quon {

#if defined(__GNUC__) && defined(__BMI2__) && !defined(__znver1__) && !defined(__znver2__)
#define QUON_GATHERS_BITS 1

// The bits of the value under the mask, moved together from bit 0 on.
inline unsigned long long gather_bits(unsigned long long value, unsigned long long mask) {
    return __builtin_ia32_pext_di(value, mask);
}
// The other way: the value's lowest bits spread over the mask's.
inline unsigned long long scatter_bits(unsigned long long value, unsigned long long mask) {
    return __builtin_ia32_pdep_di(value, mask);
}

#else
#define QUON_GATHERS_BITS 0
#endif

}  // namespace quon
