// SPDX-License-Identifier: Apache-2.0
// The entry points that exist only so that a host links. They return at once: no state is read, no error raised.
// Chapters: fixed-function arrays and attributes, attribute stacks, rasterisation, display lists, compressed textures,
// shader objects.
//
// Kept on purpose: [no-scissor-test] glScissor is one of them, and GL_SCISSOR_TEST is an unknown capability.
// Kept on purpose: [immediate-vertices-ignored] so are glVertex2f, glVertex2i and glVertex3fv, even after glBegin.
#include "ZALGL.h"

// ---- Fixed-function arrays and attributes ---------------------------------------------------------------------------

void glClientActiveTextureARB(GLenum) {}
void glColorPointer(GLint, GLenum, GLsizei, const void*) {}
void glNormalPointer(GLenum, GLsizei, const void*) {}
void glSecondaryColorPointer(GLint, GLenum, GLsizei, const void*) {}
void glTexCoordPointer(GLint, GLenum, GLsizei, const void*) {}
void glMultiTexCoord4fvARB(GLenum, const GLfloat*) {}
void glTexCoord4fv(const GLfloat*) {}
void glVertex2f(GLfloat, GLfloat) {}
void glVertex2i(GLint, GLint) {}
void glVertex3fv(const GLfloat*) {}

// ---- Attribute stacks -----------------------------------------------------------------------------------------------

void glPopAttrib(void) {}
void glPopClientAttrib(void) {}
void glPushAttrib(GLbitfield) {}
void glPushClientAttrib(GLbitfield) {}

// ---- Rasterisation --------------------------------------------------------------------------------------------------

void glAlphaFunc(GLenum, GLclampf) {}
void glBitmap(GLsizei, GLsizei, GLfloat, GLfloat, GLfloat, GLfloat, const GLubyte*) {}
void glLineStipple(GLint, GLushort) {}
void glLineWidth(GLfloat) {}
void glPointSize(GLfloat) {}
void glPolygonStipple(const GLubyte*) {}
void glRasterPos4fv(const GLfloat*) {}
void glScissor(GLint, GLint, GLsizei, GLsizei) {}

// ---- Display lists --------------------------------------------------------------------------------------------------

void glCallLists(GLsizei, GLenum, const void*) {}
void glDeleteLists(GLuint, GLsizei) {}
void glListBase(GLuint) {}

// ---- Compressed textures --------------------------------------------------------------------------------------------

void glCompressedTexImage1DARB(GLenum, GLint, GLenum, GLsizei, GLint, GLsizei, const void*) {}
void glCompressedTexImage2DARB(GLenum, GLint, GLenum, GLsizei, GLsizei, GLint, GLsizei, const void*) {}
void glCompressedTexSubImage1DARB(GLenum, GLint, GLint, GLsizei, GLenum, GLsizei, const void*) {}
void glCompressedTexSubImage2DARB(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLsizei, const void*) {}
void glCompressedTexSubImage3DARB(GLenum, GLint, GLint, GLint, GLint, GLsizei, GLsizei, GLsizei, GLenum, GLsizei,
                                  const void*)
{}
void glGetCompressedTexImageARB(GLenum, GLint, void*) {}

// ---- Shader objects -------------------------------------------------------------------------------------------------

void glAttachObjectARB(GLhandleARB, GLhandleARB) {}
void glCompileShaderARB(GLhandleARB) {}
void glDeleteObjectARB(GLhandleARB) {}
void glDetachObjectARB(GLhandleARB, GLhandleARB) {}
void glLinkProgramARB(GLhandleARB) {}
void glProgramParameteriEXT(GLuint, GLenum, GLint) {}
void glShaderSourceARB(GLhandleARB, GLsizei, const GLcharARB**, const GLint*) {}
void glUseProgramObjectARB(GLhandleARB) {}
void glValidateProgramARB(GLhandleARB) {}
void glUniform1fvARB(GLint, GLsizei, const GLfloat*) {}
void glUniform1iARB(GLint, GLint) {}
void glUniform3fvARB(GLint, GLsizei, const GLfloat*) {}
void glUniform4fvARB(GLint, GLsizei, const GLfloat*) {}
void glUniformMatrix4fvARB(GLint, GLsizei, GLboolean, const GLfloat*) {}
