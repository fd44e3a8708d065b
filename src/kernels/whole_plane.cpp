#include "kernels/whole_plane.h"

#include "kernels/columns.h"
#include "kernels/row_ops.h"
#include "log.h"
#include "memory.h"

// The scratch size as the log prints it.
static unsigned scratch_bytes(int32_t width, int32_t height, int32_t channels) {
    return (unsigned)width * (unsigned)height * (unsigned)channels;
}

static bool may_reduce(int64_t src_width, int64_t src_height, int64_t dst_width,
                       int64_t dst_height) {
    return 2 * dst_width <= src_width && 2 * dst_height <= src_height && dst_width != 1 &&
           dst_height != 1;
}

static void reduce_plane(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height, int32_t channels,
                         uint8_t* scratch) {
    if (dst_width < 1 || dst_height < 1) return;
    const row_ops* rows = active_rows();
    const size_t src_bytes = (size_t)src_width * (size_t)channels;
    const size_t row_bytes = (size_t)dst_width * (size_t)channels;
    for (size_t y = 0; y < (size_t)src_height; y++) {
        (channels == 3 ? rows->reduce_row_c3 : rows->reduce_row_c1)(
            src + y * src_bytes, src_width, scratch + y * row_bytes, dst_width);
    }
    const bool folds = (int64_t)dst_height * 2 == src_height;
    reduce_columns(scratch, row_bytes, dst, dst_height, ENDS_TOP | (folds ? ENDS_BOTTOM : 0));
}

int32_t ImageDown_ByteNC(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height) {
    // The scratch comes before the checks: without memory that is what is reported, whatever the
    // arguments are.
    uint8_t* scratch = (uint8_t*)alloc_zeroed_plane(dst_width, src_height, 1);
    int32_t status = -1;
    if (scratch == NULL) {
        LOG_LINE(LOG_ERROR, "function:%s , malloc error size:%x", "ImageDown_ByteNC",
                 scratch_bytes(dst_width, src_height, 1));
    } else if (src == NULL || dst == NULL) {
        LOG_LINE(LOG_ERROR, "function:%s input pointer is null", "ImageDown_ByteNC");
    } else if (!may_reduce(src_width, src_height, dst_width, dst_height)) {
        LOG_LINE(LOG_ERROR,
                 "function:%s , Input size parameters: src_width/src_height: %d/%d  "
                 "dst_width/dst_height: %d/%d",
                 "ImageDown_ByteNC", src_width, src_height, dst_width, dst_height);
    } else {
        reduce_plane(src, src_width, src_height, dst, dst_width, dst_height, 1, scratch);
        status = 0;
    }
    free(scratch);
    return status;
}

// Null planes and broken size rules of the three-channel routines.
static bool check_c3(const uint8_t* src, int32_t src_width, int32_t src_height, const uint8_t* dst,
                     int32_t dst_width, int32_t dst_height, bool size_rule) {
    if (src == NULL || dst == NULL) {
        LOG_LINE(LOG_ERROR, "Input pointer is NULL.");
        return false;
    }
    if (!size_rule) {
        LOG_LINE(LOG_ERROR,
                 "Input size parameters: src_width/src_height: %d/%d  dst_width/dst_height: %d/%d",
                 src_width, src_height, dst_width, dst_height);
    }
    return size_rule;
}

// The reducer reports missing memory at debug priority, the expander as an error.
static uint8_t* alloc_c3_scratch(int32_t dst_width, int32_t src_height, int priority) {
    uint8_t* scratch = (uint8_t*)alloc_zeroed_plane(dst_width, src_height, 3);
    if (scratch == NULL) {
        LOG_LINE(priority, "malloc error size:%x", scratch_bytes(dst_width, src_height, 3));
    }
    return scratch;
}

int32_t ImageDown_ByteC3(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                         int32_t dst_width, int32_t dst_height) {
    if (!check_c3(src, src_width, src_height, dst, dst_width, dst_height,
                  may_reduce(src_width, src_height, dst_width, dst_height))) {
        return -1;
    }
    uint8_t* scratch = alloc_c3_scratch(dst_width, src_height, LOG_DEBUG);
    if (scratch == NULL) return -1;
    reduce_plane(src, src_width, src_height, dst, dst_width, dst_height, 3, scratch);
    free(scratch);
    return 0;
}

int32_t ImageUp_ByteC3(const uint8_t* src, int32_t src_width, int32_t src_height, uint8_t* dst,
                       int32_t dst_width, int32_t dst_height) {
    const bool size_rule = 2 * (int64_t)src_width <= dst_width &&
                           2 * (int64_t)src_height <= dst_height && src_width != 1 &&
                           src_height != 1;
    if (!check_c3(src, src_width, src_height, dst, dst_width, dst_height, size_rule)) return -1;
    uint8_t* scratch = alloc_c3_scratch(dst_width, src_height, LOG_ERROR);
    if (scratch == NULL) return -1;
    if (src_width > 0 && src_height > 0) {
        const size_t row_bytes = 3 * (size_t)dst_width;
        for (size_t y = 0; y < (size_t)src_height; y++) {
            active_rows()->expand_row_c3(src + y * 3 * (size_t)src_width, src_width,
                                         scratch + y * row_bytes, dst_width);
        }
        expand_columns(scratch, row_bytes, src_height, dst, ENDS_TOP | ENDS_BOTTOM,
                       dst_height != 2 * (int64_t)src_height);
    }
    free(scratch);
    return 0;
}
