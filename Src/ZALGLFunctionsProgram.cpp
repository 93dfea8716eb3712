// SPDX-License-Identifier: Apache-2.0
// Chapters: binding, local parameters, program strings.
#include "ProgramFiles.h"
#include "ShaderString.h"
#include "ZALGLContextObjects.h"
#include "ZALMetalData.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <cstdio>
#include <cstring>
#include <string>

// ---- Binding -------------------------------------------------------------------------------------------------------------

void glBindProgramARB(GLenum target, GLuint program)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    bool vertex = target == GL_VERTEX_PROGRAM_ARB;
    if (!vertex && target != GL_FRAGMENT_PROGRAM_ARB) return SetCurrentError(gl, GL_INVALID_VALUE);
    if (program != 0 && !gl->contextObjects->programs.Find(program)) return SetCurrentError(gl, GL_INVALID_VALUE);

    uint32_t& bound = vertex ? gl->pipelineDescription.boundProgramVertex : gl->pipelineDescription.boundProgramFragment;
    if (bound == program) return;
    bound = program;
    GetCurrentMetalState()->renderPassEnd();
}

// ---- Local parameters ----------------------------------------------------------------------------------------------------

namespace {

template <class Number>
void setLocal(GLenum target, GLuint index, const Number* params)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    if (index >= ZALGLProgramObject::Locals) return SetCurrentError(gl, GL_INVALID_VALUE);
    if (target != GL_VERTEX_PROGRAM_ARB && target != GL_FRAGMENT_PROGRAM_ARB) return SetCurrentError(gl, GL_INVALID_VALUE);
    ZALGLProgramObject* program = getBoundProgram(gl, target);
    if (!program) return SetCurrentError(gl, GL_INVALID_OPERATION);

    for (int i = 0; i < 4; ++i) program->locals[index][i] = static_cast<float>(params[i]);
}

} // namespace

void glProgramLocalParameter4fvARB(GLenum target, GLuint index, const GLfloat* params) { setLocal(target, index, params); }
void glProgramLocalParameter4dvARB(GLenum target, GLuint index, const GLdouble* params) { setLocal(target, index, params); }

// ---- Program strings -----------------------------------------------------------------------------------------------------

namespace {

struct Declaration
{
    const char* word;
    uint32_t value;
};

constexpr Declaration TextureWords[] = {
    {"ZAL_TEX_1D)", GL_TEXTURE_1D},
    {"ZAL_TEX_2D)", GL_TEXTURE_3D}, // Kept on purpose: [metal-source-2d] a 2D declaration stores the 3D target.
    {"ZAL_TEX_RECT)", GL_TEXTURE_RECTANGLE_ARB},
    {"ZAL_TEX_CUBE)", GL_TEXTURE_CUBE_MAP},
    {"ZAL_TEX_3D)", GL_TEXTURE_3D},
};

constexpr Declaration AttributeWords[] = {
    {"ZAL_VSH_VERTEX)", 0}, {"ZAL_VSH_NORMAL)", 2}, {"ZAL_VSH_COLOR)", 3}, {"ZAL_VSH_TEX0)", 8},  {"ZAL_VSH_TEX1)", 9},  {"ZAL_VSH_TEX2)", 10},
    {"ZAL_VSH_TEX3)", 11},  {"ZAL_VSH_TEX4)", 12},  {"ZAL_VSH_TEX5)", 13}, {"ZAL_VSH_TEX6)", 14}, {"ZAL_VSH_TEX7)", 15},
};

const char* behind(const char* text, const char* word)
{
    const char* found = std::strstr(text, word);
    return found ? found + std::strlen(word) : nullptr;
}

/// What a host declares in its own source; false for a declaration that is not understood.
bool readDeclarations(const char* text, ZALGLProgramObject& program)
{
    program.expandsPoints = std::strstr(text, "ZAL_EXPAND_POINTS_TO_HEXAGONS()") != nullptr;
    for (const char* at = behind(text, "ZAL_USE_TEXTURE("); at; at = behind(at, "ZAL_USE_TEXTURE(")) {
        int unit = -1;
        char word[32] = {};
        bool known = false;
        if (std::sscanf(at, "%d,%31s", &unit, word) != 2 || unit < 0 || unit > 31) return false;
        for (const Declaration& d : TextureWords) {
            if (std::strcmp(word, d.word) != 0) continue;
            program.bindings.textureUnitMask |= 1u << unit;
            program.bindings.textureTargets[unit] = d.value;
            known = true;
        }
        if (!known) return false;
    }
    for (const char* at = behind(text, "ZAL_USE_VERTEX_ATTRIB("); at; at = behind(at, "ZAL_USE_VERTEX_ATTRIB(")) {
        bool known = false;
        for (const Declaration& d : AttributeWords) {
            if (std::strncmp(at, d.word, std::strlen(d.word)) != 0) continue;
            program.bindings.attributeMask |= 1u << d.value;
            known = true;
        }
        if (!known) return false;
    }
    return true;
}

/// Compiles Metal source; the state's error report says how it went.
MTL::Library* compile(ZALGLState& gl, const ZALM::String& source)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    MTL::CompileOptions* options = MTL::CompileOptions::alloc()->init();
    NS::Error* error = nullptr;
    MTL::Library* library =
        GetCurrentMetalData()->device->newLibrary(NS::String::string(source.Buffer(), NS::UTF8StringEncoding), options, &error);
    options->release();
    if (library) {
        gl.programErrorPosition = -1;
        gl.programErrorString[0] = 0;
    } else {
        const char* message = error ? error->localizedDescription()->utf8String() : "";
        std::snprintf(gl.programErrorString, sizeof gl.programErrorString, "%s\n\n--------\n\n%s", message, source.Buffer());
    }
    pool->release();
    return library;
}

} // namespace

void glProgramStringARB(GLenum target, GLenum format, GLsizei len, const void* string)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    if (target != GL_VERTEX_PROGRAM_ARB && target != GL_FRAGMENT_PROGRAM_ARB) return SetCurrentError(gl, GL_INVALID_VALUE);
    ZALGLProgramObject* program = getBoundProgram(gl, target);
    if (!program) return SetCurrentError(gl, GL_INVALID_OPERATION);
    bool assembly = format == GL_PROGRAM_FORMAT_ASCII_ARB;
    if (!assembly && format != GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL) return SetCurrentError(gl, GL_INVALID_VALUE);

    const auto* characters = static_cast<const char*>(string);
    auto length = static_cast<unsigned>(len > 0 && string ? strnlen(characters, static_cast<size_t>(len)) : 0);
    ZALM::String text(characters, length);
    program->SetType(target);
    program->bindings.textureUnitMask = program->bindings.attributeMask = program->bindings.colorMask = 0;
    program->expandsPoints = false;
    if (assembly) {
        ZALMetal::ShaderString source;
        ZALMetal::TranslationReport report;
        source.Append(characters, length);
        if (source.GLSLTranslation(text, program->bindings, &report) != 0) {
            ZALMetal::Log(ZALMetalLogLevelError, "ZAL Metal, a program cannot be translated, line %d: %s", report.line, report.statement.Buffer());
            return SetCurrentError(gl, GL_INVALID_OPERATION);
        }
    } else if (!readDeclarations(text.Buffer(), *program)) {
        return SetCurrentError(gl, GL_INVALID_VALUE);
    }

    ZALMetal::DumpProgram(target == GL_VERTEX_PROGRAM_ARB, {characters, length}, text);
    ZALMetal::ReplaceProgramSource({characters, length}, text);
    if (text.MemorySize() == 0) return SetCurrentError(gl, GL_OUT_OF_MEMORY);
    MTL::Library* library = compile(*gl, text);
    // Kept on purpose: [reload-keeps-pipeline] pipelines made with the old text stay; only deleting the program drops them.
    program->SetMTLLibrary(library);
    if (!library) SetCurrentError(gl, GL_INVALID_OPERATION);
}
