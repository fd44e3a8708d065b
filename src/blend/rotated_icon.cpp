#include "blend/rotated_icon.h"

#include <stdlib.h>

blend_image* g_rotated_icon = NULL;

void free_rotated_icon(void) {
    if (g_rotated_icon == NULL) return;
    free(g_rotated_icon->data);
    free(g_rotated_icon);
    g_rotated_icon = NULL;
}
