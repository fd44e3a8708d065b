#include "blend/band_bundle.h"

#include <string.h>

#include "kernels/band_filters.h"
#include "kernels/band_kernels.h"

static void publish_rows(const band_publish* publish) {
    memcpy(publish->to, publish->from, publish->bytes);
}

// Builds one band of a level: its share of the next level and its own Laplacian.
static void build_band(const band_bundle* bundle) {
    const band_task reduce = bundle->reduce;
    const band_task expand = bundle->expand;
    const band_task laplace = bundle->laplace;
    ImageReduce_BandC3(&reduce);
    publish_rows(&bundle->publish);
    ImageExpand_BandC3(&expand);
    ImageLaplace_Byte3C(&laplace);
    if (bundle->level == bundle->levels - 1) {
        const band_task widen = bundle->widen;
        ImageWiden_Byte3C(&widen);
    }
}

void* band_bundle_src(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    build_band(bundle);
    pool_signal_done(bundle->pool);
    return NULL;
}

void* band_bundle_dst(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    build_band(bundle);
    const band_task mask_reduce = bundle->mask_reduce;
    ImageReduce_BandC1(&mask_reduce);
    publish_rows(&bundle->publish_mask);
    pool_signal_done(bundle->pool);
    return NULL;
}

void* band_bundle_collapse(void* arg) {
    const band_bundle* bundle = (const band_bundle*)arg;
    const band_task expand = bundle->expand;
    const band_task collapse = bundle->collapse;
    ImageExpand_BandC3(&expand);
    ImageCollapse_Short3C(&collapse);
    pool_signal_done(bundle->pool);
    return NULL;
}
