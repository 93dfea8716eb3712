// SPDX-License-Identifier: Apache-2.0
// Vertex arrays: generic attributes and client states.
#include "support/BareContext.h"

#include <gtest/gtest.h>

namespace
{

const void* offset(uintptr_t bytes)
{
    return reinterpret_cast<const void*>(bytes);
}

struct Arrays : ::testing::Test
{
    support::BareContext bare;
    ZALGLState& gl = bare.state();
};

struct StrictArrays : Arrays
{
    StrictArrays()
    {
        gl.strictValidation = 1;
        gl.arrayBufferBinding = 5;
    }
};

TEST_F(Arrays, VertexArrayIsGenericAttributeZero)
{
    glEnableClientState(GL_VERTEX_ARRAY);
    EXPECT_EQ(gl.enabledAttribArrays, 1u);
    glDisableClientState(GL_VERTEX_ARRAY);
    EXPECT_EQ(gl.enabledAttribArrays, 0u);
}

TEST_F(Arrays, Kept_client_arrays_ignored)
{
    for (GLenum array : {GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_TEXTURE_COORD_ARRAY}) {
        support::StateSnapshot before(gl);
        glEnableClientState(array);
        EXPECT_TRUE(before.unchanged()) << array;
        glDisableClientState(array);
        EXPECT_TRUE(before.unchanged()) << array;
    }
}

TEST_F(Arrays, OtherClientStatesAreInvalidEnums)
{
    for (GLenum array : {GL_INDEX_ARRAY, GL_EDGE_FLAG_ARRAY, GL_VERTEX_PROGRAM_ARB}) {
        glEnableClientState(array);
        EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM)) << array;
        glDisableClientState(array);
        EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM)) << array;
    }
    EXPECT_EQ(gl.enabledAttribArrays, 0u);
}

TEST_F(Arrays, EachGenericArrayHasItsBit)
{
    for (GLuint index = 0; index < 16; ++index) {
        glEnableVertexAttribArrayARB(index);
        EXPECT_EQ(gl.enabledAttribArrays, (2u << index) - 1);
    }
    glDisableVertexAttribArrayARB(15);
    glDisableVertexAttribArrayARB(0);
    EXPECT_EQ(gl.enabledAttribArrays, 0x7FFEu);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Arrays, TheSeventeenthGenericArrayDoesNotExist)
{
    gl.arrayBufferBinding = 5;
    support::StateSnapshot before(gl);
    glEnableVertexAttribArrayARB(16);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
    glDisableVertexAttribArrayARB(16);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
    glVertexAttribPointerARB(16, 3, GL_FLOAT, GL_FALSE, 12, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
    EXPECT_TRUE(before.unchanged());
}

TEST_F(Arrays, Kept_arrays_need_a_buffer)
{
    support::StateSnapshot before(gl);
    glVertexAttribPointerARB(0, 3, GL_FLOAT, GL_FALSE, 12, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_OPERATION));
    glVertexPointer(3, GL_FLOAT, 12, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_OPERATION));
    EXPECT_TRUE(before.unchanged());
}

TEST_F(Arrays, AnIndexOutOfRangeIsReportedBeforeAMissingBuffer)
{
    glVertexAttribPointerARB(16, 3, GL_FLOAT, GL_FALSE, 12, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
}

TEST_F(Arrays, AttribPointerRecordsTheBoundBufferAndTheOffset)
{
    gl.arrayBufferBinding = 5;
    glVertexAttribPointerARB(0, 3, GL_FLOAT, GL_FALSE, 12, nullptr);
    EXPECT_EQ(gl.vertexAttribs[0].buffer, 5u);
    EXPECT_EQ(gl.vertexAttribs[0].offset, 0);

    gl.arrayBufferBinding = 6;
    glVertexAttribPointerARB(9, 2, GL_SHORT, GL_TRUE, 20, offset(0x123456789));
    const GLVertexAttribDescription& nine = gl.vertexAttribs[9];
    EXPECT_EQ(nine.buffer, 6u);
    EXPECT_EQ(nine.size, 2);
    EXPECT_EQ(nine.type, GLenum(GL_SHORT));
    EXPECT_TRUE(nine.normalized);
    EXPECT_EQ(nine.stride, 20);
    EXPECT_EQ(nine.offset, 0x123456789);
    EXPECT_EQ(gl.vertexAttribs[0].buffer, 5u); // a later binding does not change it
    EXPECT_EQ(gl.enabledAttribArrays, 0u);     // and nothing is enabled by it
}

TEST_F(Arrays, Kept_vertex_pointer_normalized)
{
    gl.arrayBufferBinding = 5;
    glVertexPointer(3, GL_SHORT, 6, offset(8));
    EXPECT_EQ(gl.vertexAttribs[0].buffer, 5u);
    EXPECT_EQ(gl.vertexAttribs[0].size, 3);
    EXPECT_EQ(gl.vertexAttribs[0].type, GLenum(GL_SHORT));
    EXPECT_TRUE(gl.vertexAttribs[0].normalized);
    EXPECT_EQ(gl.vertexAttribs[0].stride, 6);
    EXPECT_EQ(gl.vertexAttribs[0].offset, 8);
}

TEST_F(Arrays, AnUnknownFormatIsNoErrorWithoutStrictValidation)
{
    gl.arrayBufferBinding = 5;
    glVertexAttribPointerARB(0, 3, GL_DOUBLE, GL_FALSE, 0, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(gl.vertexAttribs[0].type, GLenum(GL_DOUBLE));
}

TEST_F(StrictArrays, Kept_attrib_refused_but_stored)
{
    glVertexAttribPointerARB(0, 3, GL_DOUBLE, GL_FALSE, 0, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_OPERATION));
    EXPECT_EQ(gl.vertexAttribs[0].type, GLenum(GL_DOUBLE));
    glVertexPointer(2, GL_DOUBLE, 0, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_OPERATION));
    EXPECT_EQ(gl.vertexAttribs[0].size, 2);
}

TEST_F(StrictArrays, AKnownFormatIsNoError)
{
    glVertexAttribPointerARB(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glVertexPointer(2, GL_FLOAT, 0, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

} // namespace
