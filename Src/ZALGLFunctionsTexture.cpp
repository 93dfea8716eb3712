// SPDX-License-Identifier: Apache-2.0
// Chapters: binding, parameters, queries.
#include "ZALGLFunctionsTexture.h"

#include "ZALGLContextObjects.h"

#include <algorithm>

// ---- Binding -------------------------------------------------------------------------------------------------------------

void glActiveTextureARB(GLenum texture)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    if ((texture & ~31u) != GL_TEXTURE0) return SetCurrentError(gl, GL_INVALID_VALUE);
    gl->activeTextureUnit = texture - GL_TEXTURE0;
}

void glBindTexture(GLenum target, GLuint name)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    uint32_t slot = convertBindTextureTargetToBindingSlotIndex(target);
    if (slot > 4) return SetCurrentError(gl, GL_INVALID_ENUM);
    uint32_t& bound = gl->textureBindings[gl->activeTextureUnit][slot];
    if (bound == name) return;
    ZALGLTextureObject* texture = gl->contextObjects->textures.Find(name);
    // Kept on purpose: [bind-texture-0] name 0 cannot be bound over another name: it has no object.
    if (!texture) return SetCurrentError(gl, GL_INVALID_OPERATION);

    bound = name;
    if (texture->type == target) return;
    texture->SetType(target);
    // Kept on purpose: [placeholder-level] a first bind specifies level 0: other levels and faces may follow without one of the host's own.
    ZALTexImage(target, 0, GL_RGBA8, 1, 1, 1, GL_RGBA, GL_FLOAT, nullptr);
}

// ---- Parameters ------------------------------------------------------------------------------------------------------------

namespace {

/// The field behind an integer parameter, null for any other name.
uint32_t* parameterField(ZALGLTextureObject& texture, GLenum pname)
{
    switch (pname) {
    case GL_TEXTURE_MAG_FILTER: return &texture.magFilter;
    case GL_TEXTURE_MIN_FILTER: return &texture.minFilter;
    case GL_TEXTURE_WRAP_S: return &texture.wrapS;
    case GL_TEXTURE_WRAP_T: return &texture.wrapT;
    case GL_TEXTURE_WRAP_R: return &texture.wrapR;
    case GL_TEXTURE_BASE_LEVEL: return &texture.baseLevel;
    default: return nullptr;
    }
}

bool isIgnored(GLenum pname) { return pname == GL_DEPTH_TEXTURE_MODE || pname == GL_TEXTURE_COMPARE_MODE || pname == GL_TEXTURE_COMPARE_FUNC; }

// Kept on purpose: [border-colour-class] Metal has three border colours; any other becomes opaque black.
MTL::SamplerBorderColor borderClass(const float* c)
{
    auto is = [&](float rgb, float alpha) { return c[0] == rgb && c[1] == rgb && c[2] == rgb && c[3] == alpha; };
    if (is(0, 0)) return MTL::SamplerBorderColorTransparentBlack;
    return is(1, 1) ? MTL::SamplerBorderColorOpaqueWhite : MTL::SamplerBorderColorOpaqueBlack;
}

} // namespace

void glTexParameteri(GLenum target, GLenum pname, GLint param)
{
    ZALGLState* gl = GetCurrentGLState();
    ZALGLTextureObject* texture = gl ? getBoundTexture(gl, target) : nullptr;
    if (!texture) return;

    uint32_t* field = parameterField(*texture, pname);
    if (field) *field = static_cast<uint32_t>(param);
    // Kept on purpose: [texture-parameter-error] an unknown name is GL_INVALID_VALUE, where GL says INVALID_ENUM.
    else if (!isIgnored(pname)) SetCurrentError(gl, GL_INVALID_VALUE);
}

void glTexParameterf(GLenum target, GLenum pname, GLfloat param)
{
    ZALGLState* gl = GetCurrentGLState();
    ZALGLTextureObject* texture = gl ? getBoundTexture(gl, target) : nullptr;
    if (!texture) return;

    // Kept on purpose: [texture-parameter-types] each parameter has one call: anisotropy this one, the border the vector, all others the integer.
    if (pname != GL_TEXTURE_MAX_ANISOTROPY_EXT) return SetCurrentError(gl, GL_INVALID_VALUE);
    texture->maxAnisotropy = param;
}

void glTexParameterfv(GLenum target, GLenum pname, const GLfloat* params)
{
    ZALGLState* gl = GetCurrentGLState();
    ZALGLTextureObject* texture = gl ? getBoundTexture(gl, target) : nullptr;
    if (!texture) return;

    if (pname != GL_TEXTURE_BORDER_COLOR) return SetCurrentError(gl, GL_INVALID_VALUE);
    std::copy(params, params + 4, texture->borderColor);
    texture->borderColorClass = borderClass(params);
}

// ---- Queries ---------------------------------------------------------------------------------------------------------------

void glGetTexParameteriv(GLenum target, GLenum pname, GLint* params)
{
    ZALGLState* gl = GetCurrentGLState();
    ZALGLTextureObject* texture = gl ? getBoundTexture(gl, target) : nullptr;
    if (!texture) return;

    uint32_t* field = parameterField(*texture, pname);
    if (!field) return SetCurrentError(gl, GL_INVALID_VALUE);
    *params = static_cast<GLint>(*field);
}

void glGetTexParameterfv(GLenum target, GLenum pname, GLfloat* params)
{
    ZALGLState* gl = GetCurrentGLState();
    ZALGLTextureObject* texture = gl ? getBoundTexture(gl, target) : nullptr;
    if (!texture) return;

    if (pname == GL_TEXTURE_MAX_ANISOTROPY_EXT) *params = texture->maxAnisotropy;
    else if (pname == GL_TEXTURE_BORDER_COLOR) std::copy(texture->borderColor, texture->borderColor + 4, params);
    else SetCurrentError(gl, GL_INVALID_VALUE);
}

void glGetTexLevelParameteriv(GLenum target, GLint level, GLenum pname, GLint* params)
{
    ZALGLState* gl = GetCurrentGLState();
    GLenum bindTarget = 0;
    int32_t face = 0;
    ZALGLTextureObject* texture = gl ? getBoundTextureFace(gl, target, bindTarget, face) : nullptr;
    if (!texture) return;

    // Kept on purpose: [level-modulo-32] levels are bits of one word: level 32 is taken for level 0, and -1 for 31.
    bool defined = (texture->definedLevelsMask >> (static_cast<uint32_t>(level) & 31) & 1) != 0;
    auto size = [&](uint32_t base) { return defined ? std::max(1, static_cast<int32_t>(base) >> (level & 31)) : 0; };
    switch (pname) {
    case GL_TEXTURE_WIDTH: *params = size(texture->width); break;
    case GL_TEXTURE_HEIGHT: *params = size(texture->height); break;
    case GL_TEXTURE_DEPTH: *params = size(texture->depth); break;
    case GL_TEXTURE_INTERNAL_FORMAT: *params = defined ? static_cast<GLint>(texture->internalFormat) : 0; break;
    default: SetCurrentError(gl, GL_INVALID_VALUE); break;
    }
}
