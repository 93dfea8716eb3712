// SPDX-License-Identifier: Apache-2.0
// What programs get as constants: the 28 state matrices and the locals.
#include "drawing/Drawing.h"

#include <array>
#include <cmath>
#include <cstring>

namespace {

using namespace drawing;

using Matrix = std::array<double, 16>; // by column

Matrix times(const Matrix& a, const Matrix& b)
{
    Matrix m{};
    for (size_t c = 0; c < 4; ++c)
        for (size_t r = 0; r < 4; ++r)
            for (size_t k = 0; k < 4; ++k) m[4 * c + r] += a[4 * k + r] * b[4 * c + k];
    return m;
}

Matrix transposed(const Matrix& a)
{
    Matrix m;
    for (size_t c = 0; c < 4; ++c)
        for (size_t r = 0; r < 4; ++r) m[4 * c + r] = a[4 * r + c];
    return m;
}

bool isIdentity(const Matrix& m)
{
    for (size_t i = 0; i < 16; ++i)
        if (std::abs(m[i] - (i % 5 == 0 ? 1 : 0)) > 1e-5) return false;
    return true;
}

class MatrixBlock : public Routes
{
protected:
    void SetUp() override
    {
        Routes::SetUp();
        for (size_t i = 0; i < 6; ++i)
            for (size_t k = 0; k < 16; ++k) stacks[i][k] = static_cast<float>((k % 5 == 0 ? 2.0 : 0.0) + 0.0625 * static_cast<double>((i * 7 + k * 3) % 11));
        auto loadInto = [&](GLenum mode, const Matrix& m) {
            glMatrixMode(mode);
            glLoadMatrixd(m.data());
        };
        loadInto(GL_MODELVIEW, stacks[0]);
        loadInto(GL_PROJECTION, stacks[1]);
        for (GLenum unit = 0; unit < 4; ++unit) {
            glActiveTextureARB(GL_TEXTURE0 + unit);
            loadInto(GL_TEXTURE, stacks[2 + unit]);
        }
        clearLog();
    }

    /// The blocks that the last draw bound, by call and index.
    std::string bytesOf(const Entries& entries, const char* call, int index)
    {
        std::string bytes;
        for (const auto& entry : entries)
            if (entry.call == call && entry.number("index") == index) bytes = entry.text("bytes");
        return bytes;
    }

    Matrix matrixAt(const std::string& block, size_t number)
    {
        float floats[16];
        std::memcpy(floats, block.data() + number * sizeof floats, sizeof floats);
        Matrix m;
        std::copy(floats, floats + 16, m.begin());
        return m;
    }

    static void expectNear(const Matrix& wanted, const Matrix& got, const std::string& what)
    {
        for (size_t i = 0; i < 16; ++i) EXPECT_NEAR(got[i], wanted[i], 1e-5 * (1 + std::abs(wanted[i]))) << what << ", element " << i;
    }

    Matrix stacks[6];
    /// Depth from 0 to 1, and on one kind of device y turned.
    Matrix correction() const { return {1, 0, 0, 0, 0, isIntel() ? -1.0 : 1.0, 0, 0, 0, 0, 0.5, 0, 0, 0, 0.5, 1}; }
};
INSTANTIATE_TEST_SUITE_P(Devices, MatrixBlock, testing::Values(false, true), routeName);

TEST_P(MatrixBlock, HoldsTheMatricesTheirInversesAndTransposes)
{
    draw();
    Entries all = log();
    std::string block = bytesOf(all, "setVertexBytes", 16);
    ASSERT_EQ(block.size(), 1792u);
    EXPECT_EQ(bytesOf(all, "setFragmentBytes", 16), block);
    Matrix projection = times(correction(), stacks[1]);
    const Matrix plain[7] = {stacks[0], projection, times(projection, stacks[0]), stacks[2], stacks[3], times(correction(), stacks[4]), stacks[5]};
    for (size_t i = 0; i < 7; ++i) {
        std::string what = "matrix " + std::to_string(i);
        expectNear(plain[i], matrixAt(block, i), what);
        EXPECT_TRUE(isIdentity(times(matrixAt(block, 7 + i), plain[i]))) << what;
        expectNear(transposed(plain[i]), matrixAt(block, 14 + i), what);
        expectNear(transposed(matrixAt(block, 7 + i)), matrixAt(block, 21 + i), what);
    }
}

/// The texture matrix of unit 2, and only that one, is multiplied by the correction.
TEST_P(MatrixBlock, Kept_texture_matrix_2)
{
    draw();
    std::string block = bytesOf(log(), "setVertexBytes", 16);
    for (size_t unit : {size_t{0}, size_t{1}, size_t{3}}) expectNear(stacks[2 + unit], matrixAt(block, 3 + unit), "unit " + std::to_string(unit));
    expectNear(times(correction(), stacks[4]), matrixAt(block, 5), "unit 2");
}

/// One vendor's devices turn y in the matrix, all others in the viewport.
TEST_P(MatrixBlock, Kept_flip_by_vendor)
{
    draw();
    Entries all = log();
    EXPECT_EQ(matrixAt(bytesOf(all, "setVertexBytes", 16), 1)[5] < 0, isIntel());
    for (const auto& entry : all)
        EXPECT_TRUE(entry.call != "setViewport" || (entry.number("height") < 0) == !isIntel());
}

TEST_P(MatrixBlock, ASingularMatrixTrapsNothing)
{
    const Matrix zeros{};
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(zeros.data());
    EXPECT_EQ(drawn(), NoError);
    EXPECT_FALSE(drewNothing());
}

TEST_P(MatrixBlock, LocalsOfEachProgramGoToTheirStage)
{
    const float v[4] = {1, 2, 3, 4}, f[4] = {5, 6, 7, 8};
    glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, 255, v);
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, f);
    draw();
    Entries all = log();
    std::string vertexBlock = bytesOf(all, "setVertexBytes", 17), fragmentBlock = bytesOf(all, "setFragmentBytes", 17);
    ASSERT_EQ(vertexBlock.size(), 4096u);
    ASSERT_EQ(fragmentBlock.size(), 4096u);
    EXPECT_EQ(std::memcmp(vertexBlock.data() + 4080, v, 16), 0);
    EXPECT_EQ(std::memcmp(fragmentBlock.data(), f, 16), 0);
}

TEST_P(MatrixBlock, AChangeOfAStackIsSeenByTheNextDraw)
{
    draw();
    std::string before = bytesOf(log(), "setVertexBytes", 16);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    draw();
    std::string after = bytesOf(log(), "setVertexBytes", 16);
    EXPECT_NE(after, before);
    EXPECT_TRUE(isIdentity(matrixAt(after, 0)));
}

} // namespace
