/* SPDX-License-Identifier: Apache-2.0
 * A host in C: clears a texture and reads it back. */
#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <stdio.h>

int main(void)
{
    ZALMetalContext* context = NULL;
    unsigned char pixel[4] = {0, 0, 0, 0};
    GLuint texture, framebuffer;
    if (ZALMetalContextInitFromMTLCommandQueue(&context, NULL, NULL) != ZALMetalResultSuccess) return 1;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, NULL);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, texture, 0);
    glClearColor(1, 0.4f, 0.2f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    ZALMetalContextDestroy(context);
    printf("%d %d %d %d\n", pixel[0], pixel[1], pixel[2], pixel[3]);
    return 0;
}
