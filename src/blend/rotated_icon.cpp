// SPDX-License-Identifier: Apache-2.0
#include "blend/rotated_icon.h"

#include "memory.h"

blend_image* g_rotated_icon = NULL;

blend_image* alloc_rotated_icon(int32_t width, int32_t height) {
    blend_image* icon = (blend_image*)malloc(sizeof(blend_image));
    if (icon == NULL) return NULL;
    *icon = {width, height, (uint8_t*)alloc_plane(width, height, 4)};
    if (icon->data != NULL) return icon;
    free(icon);
    return NULL;
}

static void free_icon(blend_image* icon) {
    if (icon == NULL) return;
    free(icon->data);
    free(icon);
}

void leave_rotated_icon(blend_image* icon) {
    __atomic_store_n(&g_rotated_icon, icon, __ATOMIC_RELEASE);
}

void free_rotated_icon(void) {
    free_icon(__atomic_exchange_n(&g_rotated_icon, (blend_image*)NULL, __ATOMIC_ACQ_REL));
}
