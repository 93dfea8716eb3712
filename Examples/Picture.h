/* SPDX-License-Identifier: Apache-2.0
 * What every example ends with: the bound framebuffer's pixels in a file that any viewer opens (PPM). */
#pragma once

#include <ZALMetal/ZALMetalGL.h>

#include <stdio.h>
#include <stdlib.h>

/* Returns 0, or 1 when the file cannot be written. GL's rows run upwards, the file's downwards. */
static inline int writeFramebuffer(const char* path, int width, int height)
{
    unsigned char* pixels = (unsigned char*)malloc((size_t)width * (size_t)height * 3);
    FILE* file = pixels ? fopen(path, "wb") : NULL;
    int row, failed = 1;
    if (file) {
        glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, pixels);
        fprintf(file, "P6\n%d %d\n255\n", width, height);
        for (row = height - 1; row >= 0; --row) fwrite(pixels + (size_t)row * (size_t)width * 3, 3, (size_t)width, file);
        failed = fclose(file) != 0;
    }
    free(pixels);
    if (failed) fprintf(stderr, "%s cannot be written\n", path);
    return failed;
}
