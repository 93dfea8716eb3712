// SPDX-License-Identifier: Apache-2.0
// State setters, queries and matrices: any argument.
#include "fuzz/api/Arguments.h"

#include <iterator>

namespace fuzz::api
{

namespace
{

constexpr Call Calls[] = {
    {"glActiveTextureARB", plain<glActiveTextureARB>},
    {"glBlendColor", plain<glBlendColor>},
    {"glBlendEquation", plain<glBlendEquation>},
    {"glBlendEquationiARB", plain<glBlendEquationiARB>},
    {"glBlendFunc", plain<glBlendFunc>},
    {"glBlendFunciARB", plain<glBlendFunciARB>},
    {"glClearColor", plain<glClearColor>},
    {"glClearDepth", plain<glClearDepth>},
    {"glClearStencil", plain<glClearStencil>},
    {"glColorMask", plain<glColorMask>},
    {"glCullFace", plain<glCullFace>},
    {"glDepthFunc", plain<glDepthFunc>},
    {"glDepthMask", plain<glDepthMask>},
    {"glDisable", plain<glDisable>},
    {"glEnable", plain<glEnable>},
    {"glFinish", plain<glFinish>},
    {"glFlush", plain<glFlush>},
    {"glFrustum", plain<glFrustum>},
    {"glGetDoublev", plain<glGetDoublev, 16>},
    {"glGetError", plain<glGetError>},
    {"glGetFloatv", plain<glGetFloatv, 1>},
    {"glGetIntegerv", plain<glGetIntegerv, 1>},
    {"glGetString", plain<glGetString>},
    {"glLoadIdentity", plain<glLoadIdentity>},
    {"glLoadMatrixd", plain<glLoadMatrixd, 16>},
    {"glLoadMatrixf", plain<glLoadMatrixf, 16>},
    {"glMatrixMode", plain<glMatrixMode>},
    {"glMultMatrixd", plain<glMultMatrixd, 16>},
    {"glMultMatrixf", plain<glMultMatrixf, 16>},
    {"glOrtho", plain<glOrtho>},
    {"glPixelStorei", plain<glPixelStorei>},
    {"glPolygonMode", plain<glPolygonMode>},
    {"glPolygonOffset", plain<glPolygonOffset>},
    {"glPopMatrix", plain<glPopMatrix>},
    {"glPushMatrix", plain<glPushMatrix>},
    {"glStencilFunc", plain<glStencilFunc>},
    {"glStencilMask", plain<glStencilMask>},
    {"glStencilOp", plain<glStencilOp>},
    {"glViewport", plain<glViewport>},
};

} // namespace

const Chapter StateChapter{Calls, std::size(Calls)};

} // namespace fuzz::api
