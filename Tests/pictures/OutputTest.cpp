// SPDX-License-Identifier: Apache-2.0
// Eight draw buffers, local parameters, every vertex format.
#include "pictures/Stage.h"

#include <cmath>
#include <cstring>

namespace {

using namespace pictures;

/// A framebuffer object with attachments of floats or bytes, and their contents.
class Targets
{
public:
    Targets(GLint format, GLuint count) : names_(count)
    {
        GLuint framebuffer = 0;
        std::vector<GLenum> buffers(count);
        glGenFramebuffers(1, &framebuffer);
        glGenTextures(static_cast<GLsizei>(count), names_.data());
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        for (GLuint i = 0; i < count; ++i) {
            buffers[i] = GL_COLOR_ATTACHMENT0 + i;
            glBindTexture(GL_TEXTURE_RECTANGLE_ARB, names_[i]);
            glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, format, Side, Side, 0, GL_RGBA, GL_FLOAT, nullptr);
            glFramebufferTexture2D(GL_FRAMEBUFFER, buffers[i], GL_TEXTURE_RECTANGLE_ARB, names_[i], 0);
        }
        glDrawBuffers(static_cast<GLsizei>(count), buffers.data());
        glClear(GL_COLOR_BUFFER_BIT);
        EXPECT_EQ(glGetError(), drawing::NoError);
    }

    /// The pixel in the middle.
    std::array<float, 4> pixel(size_t i)
    {
        std::vector<float> texels(Side * Side * 4);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, names_[i]);
        glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_FLOAT, texels.data());
        const float* middle = &texels[4 * (Side / 2 * Side + Side / 2)];
        return {middle[0], middle[1], middle[2], middle[3]};
    }

private:
    std::vector<GLuint> names_;
};

template <class T>
std::vector<uint8_t> bytesOf(const T& value)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
    return std::vector<uint8_t>(bytes, bytes + sizeof value);
}

TEST(DrawBuffers, EightGetTheirOwnColours)
{
    onBoth([](Stage& stage) {
        Targets targets(GL_RGBA32F_ARB, 8);
        std::string text = "!!ARBfp1.0\nOPTION ARB_draw_buffers;\n";
        for (int i = 0; i < 8; ++i) text += "MUL result.color[" + std::to_string(i) + "], program.local[0], " + std::to_string(i + 1) + ".0;\n";
        stage.programs(Stage::Vertex, text + "END\n");
        stage.quad({1, 0.5f, 0.25f, 2});
        std::vector<uint8_t> all;
        for (size_t i = 0; i < 8; ++i) {
            auto got = targets.pixel(i);
            float n = static_cast<float>(i + 1);
            EXPECT_EQ(got, (std::array<float, 4>{n, n / 2, n / 4, 2 * n})) << i;
            auto bytes = bytesOf(got);
            all.insert(all.end(), bytes.begin(), bytes.end());
        }
        return all;
    });
}

TEST(Locals, AllTwoHundredFiftySixReachBothStages)
{
    onBoth([](Stage& stage) {
        Targets targets(GL_RGBA32F_ARB, 1);
        for (GLuint i = 0; i < 256; ++i) {
            float n = static_cast<float>(i);
            const float v[4] = {n, 0, 0, 0}, f[4] = {0, n * n, 0, 1};
            glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, i, v);
            glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, i, f);
        }
        std::vector<uint8_t> all;
        for (int i : {0, 1, 127, 128, 254, 255}) {
            std::string local = "program.local[" + std::to_string(i) + "]";
            std::string vertex = Stage::Vertex;
            vertex.replace(vertex.find("MOV result.color, vertex.attrib[3]"), 34, "MOV result.color, " + local);
            GLuint fresh[2];
            glGenProgramsARB(2, fresh); // pipelines are found by name
            float n = static_cast<float>(i);
            const float v[4] = {n, 0, 0, 0}, f[4] = {0, n * n, 0, 1};
            glBindProgramARB(GL_VERTEX_PROGRAM_ARB, fresh[0]);
            glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, fresh[1]);
            stage.programs(vertex, "!!ARBfp1.0\nADD result.color, fragment.color, " + local + ";\nEND\n");
            glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, static_cast<GLuint>(i), v);
            glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, static_cast<GLuint>(i), f);
            stage.shape(GL_TRIANGLE_STRIP, {-1, -1, 1, -1, -1, 1, 1, 1});
            auto got = targets.pixel(0);
            EXPECT_EQ(got, (std::array<float, 4>{n, n * n, 0, 1})) << i;
            auto bytes = bytesOf(got);
            all.insert(all.end(), bytes.begin(), bytes.end());
        }
        return all;
    });
}

// ---- vertex formats ----------------------------------------------------------------------------------------------------------------

struct Format
{
    GLenum type;
    bool normalized;
    int bytes; // of one component
};

constexpr Format Formats[] = {{GL_BYTE, true, 1},   {GL_UNSIGNED_BYTE, true, 1},   {GL_SHORT, true, 2},   {GL_UNSIGNED_SHORT, true, 2}, {GL_BYTE, false, 1},         {GL_UNSIGNED_BYTE, false, 1},
                              {GL_SHORT, false, 2}, {GL_UNSIGNED_SHORT, false, 2}, {GL_INT, false, 4},    {GL_UNSIGNED_INT, false, 4},  {GL_FLOAT, false, 4},        {GL_HALF_FLOAT, false, 2}};

constexpr int Values[4] = {100, 3, 77, 120};

void put(std::vector<uint8_t>& bytes, const Format& format, int value)
{
    if (format.type == GL_FLOAT) {
        float real = static_cast<float>(value);
        const auto* raw = reinterpret_cast<const uint8_t*>(&real);
        bytes.insert(bytes.end(), raw, raw + 4);
    } else if (format.type == GL_HALF_FLOAT) {
        int exponent = static_cast<int>(std::floor(std::log2(value)));
        int half = (exponent + 15) << 10 | static_cast<int>((value / std::exp2(exponent) - 1) * 1024); // exact for small whole numbers
        bytes.insert(bytes.end(), {static_cast<uint8_t>(half & 255), static_cast<uint8_t>(half >> 8)});
    } else {
        for (int i = 0; i < format.bytes; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
}

double meaning(const Format& format, int value)
{
    if (!format.normalized) return value;
    bool isSigned = format.type == GL_BYTE || format.type == GL_SHORT;
    return value / (std::exp2(8 * format.bytes - (isSigned ? 1 : 0)) - 1);
}

TEST(VertexFormats, EveryFormatAndSizeIsRead)
{
    onBoth([](Stage& stage) {
        Targets targets(GL_RGBA32F_ARB, 1);
        stage.programs(Stage::Vertex, "!!ARBfp1.0\nMOV result.color, fragment.color;\nEND\n");
        GLuint buffer = 0;
        glGenBuffers(1, &buffer);
        std::vector<uint8_t> all;
        for (const Format& format : Formats)
            for (int size = 1; size <= 4; ++size) {
                constexpr int Stride = 16, Vertices = 4;
                std::vector<uint8_t> bytes;
                for (int vertex = 0; vertex < Vertices; ++vertex) {
                    for (int i = 0; i < size; ++i) put(bytes, format, Values[i]);
                    bytes.resize(static_cast<size_t>(Stride * (vertex + 1)));
                }
                glBindBuffer(GL_ARRAY_BUFFER, buffer);
                glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes.size()), bytes.data(), GL_STATIC_DRAW);
                glVertexAttribPointerARB(3, size, format.type, format.normalized, Stride, nullptr);
                glEnableVertexAttribArrayARB(3);
                stage.shape(GL_TRIANGLE_STRIP, {-1, -1, 1, -1, -1, 1, 1, 1});
                auto got = targets.pixel(0);
                for (int i = 0; i < 4; ++i) {
                    double wanted = i < size ? meaning(format, Values[i]) : i == 3 ? 1 : 0;
                    EXPECT_NEAR(got[static_cast<size_t>(i)], wanted, 1e-5 * std::max(1.0, wanted)) << "type " << format.type << ", size " << size << ", component " << i;
                }
                auto raw = bytesOf(got);
                all.insert(all.end(), raw.begin(), raw.end());
            }
        return all;
    });
}

} // namespace
