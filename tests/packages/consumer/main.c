#include <imageblend.h>
#include <stdio.h>

int main(void) {
    uint8_t bytes[12] = {0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0};
    const blend_image mask = {4, 3, bytes};
    int32_t width = 0, height = 0;
    if (vorn_get_icon_size(&mask, &width, &height) != 0) return 1;
    printf("%d.%d.%d %dx%d\n", IMAGEBLEND_VERSION_MAJOR, IMAGEBLEND_VERSION_MINOR,
           IMAGEBLEND_VERSION_PATCH, width, height);
    return 0;
}
