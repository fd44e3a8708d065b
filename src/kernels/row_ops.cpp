#include "kernels/row_ops.h"

#include "kernels/vector_rows.h"

const row_ops* active_row_ops(void) {
    const row_ops* rows = avx512_rows();
    if (rows == NULL) rows = avx2_rows();
    if (rows == NULL) rows = neon_rows();
    return rows != NULL ? rows : &plain_rows;
}
