#include "kernels/row_ops.h"

#include "kernels/vector_rows.h"

static bool plain_is_forced = false;

void force_plain_rows(bool force) {
    plain_is_forced = force;
}

const row_ops* active_rows(void) {
    if (plain_is_forced) return &plain_rows;
    const row_ops* rows = avx512_rows();
    if (rows == NULL) rows = avx2_rows();
    if (rows == NULL) rows = neon_rows();
    return rows != NULL ? rows : &plain_rows;
}
