// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Marks an inner loop over samples that is worth having once more for processors with wider vectors; the
// right one is chosen when the program starts. Multiplications and additions are never fused (the build says
// so), so every variant gives the same bits. Where the toolchain can't do this there is the plain one alone.
#if defined(PLUMETTA_CPU_VARIANTS)
#define PLUMETTA_WIDE_VECTORS [[gnu::target_clones("avx512f", "avx2", "default")]]
#else
#define PLUMETTA_WIDE_VECTORS
#endif
