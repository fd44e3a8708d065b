#include "blend/row_conversion.h"

#include "kernels/row_ops.h"

void narrow_plane_c3(const int16_t* src, uint32_t width, int32_t height, uint8_t* dst) {
    if (height < 1) return;
    active_row_ops()->narrow(src, dst, 3 * (size_t)width * (size_t)height);
}
