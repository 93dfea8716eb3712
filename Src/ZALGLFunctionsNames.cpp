// SPDX-License-Identifier: Apache-2.0
// Chapter: object names, made and deleted. What a name is bound to stands with the objects.
//
// Kept on purpose: [names-never-reused] GL may hand a deleted name out again; here the counters only go up.
// Kept on purpose: [negative-count-silent] GL says INVALID_VALUE for a negative count; here the call does nothing.
// Kept on purpose: [delete-keeps-bindings] GL unbinds what is deleted; here its name stays where it was bound.
#include "ZALGLContextObjects.h"

namespace
{

ZALGLContextObjects* currentObjects()
{
    ZALGLState* gl = GetCurrentGLState();
    return gl ? gl->contextObjects : nullptr;
}

template <class Store>
void deleteAll(Store& store, GLsizei n, const GLuint* names)
{
    for (GLsizei i = 0; i < n; ++i)
        store.Delete(names[i]);
}

} // namespace

// ---- Object names --------------------------------------------------------------------------------------------------

void glGenBuffers(GLsizei n, GLuint* buffers)
{
    if (auto* objects = currentObjects()) objects->buffers.Generate(n, buffers);
}

void glGenFramebuffers(GLsizei n, GLuint* framebuffers)
{
    if (auto* objects = currentObjects()) objects->framebuffers.Generate(n, framebuffers);
}

void glGenProgramsARB(GLsizei n, GLuint* programs)
{
    if (auto* objects = currentObjects()) objects->programs.Generate(n, programs);
}

void glGenTextures(GLsizei n, GLuint* textures)
{
    if (auto* objects = currentObjects()) objects->textures.Generate(n, textures);
}

void glDeleteBuffers(GLsizei n, const GLuint* buffers)
{
    if (auto* objects = currentObjects()) deleteAll(objects->buffers, n, buffers);
}

void glDeleteFramebuffers(GLsizei n, const GLuint* framebuffers)
{
    // Kept on purpose: [default-framebuffer-deletable] name 0 is an object like the others and is not protected.
    if (auto* objects = currentObjects()) deleteAll(objects->framebuffers, n, framebuffers);
}

void glDeleteTextures(GLsizei n, const GLuint* textures)
{
    if (auto* objects = currentObjects()) deleteAll(objects->textures, n, textures);
}

void glDeleteProgramsARB(GLsizei n, const GLuint* programs)
{
    auto* objects = currentObjects();
    if (!objects) return;
    for (GLsizei i = 0; i < n; ++i) {
        // No pipeline state of any framebuffer may outlive the program, known or not.
        for (auto* cell = objects->framebuffers.objects.begin(); cell; cell = objects->framebuffers.objects.next())
            cell->value->GetRenderPipelineCache().removeCachedValuesForProgram(programs[i]);
        objects->programs.Delete(programs[i]);
    }
}
