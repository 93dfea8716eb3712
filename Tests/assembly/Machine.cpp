// SPDX-License-Identifier: Apache-2.0
#include "assembly/Machine.h"

#include <algorithm>
#include <cmath>

namespace assembly {
namespace {

constexpr int TextureSide = 4;

/// The colour of a texel of any texture; depth is the slice or the face.
std::array<uint8_t, 4> texel(int unit, int x, int y, int z)
{
    auto byte = [](int value) { return static_cast<uint8_t>(value & 255); };
    return {byte(40 + 50 * x + unit), byte(20 + 55 * y), byte(90 * z + 13 * x), byte(255 - 30 * x - 9 * y)};
}

Register fromTexel(const std::array<uint8_t, 4>& bytes)
{
    Register r;
    for (size_t i = 0; i < 4; ++i) r.v[i] = bytes[i] / 255.0;
    return r;
}

int nearest(double coordinate, int side) { return std::clamp(static_cast<int>(std::floor(static_cast<float>(coordinate))), 0, side - 1); }

/// Face and place of a direction on a cube; faces in the order +x, -x, +y, -y, +z, -z.
int faceOf(const Register& at)
{
    double ax = std::abs(at[0]), ay = std::abs(at[1]), az = std::abs(at[2]);
    if (ax >= ay && ax >= az) return at[0] > 0 ? 0 : 1;
    if (ay >= az) return at[1] > 0 ? 2 : 3;
    return at[2] > 0 ? 4 : 5;
}

Matrix randomMatrix(std::mt19937& random)
{
    Matrix m{};
    for (size_t r = 0; r < 4; ++r)
        for (size_t c = 0; c < 4; ++c) m[r][c] = static_cast<float>(random() % 1000) / 2000 - 0.25f + (r == c ? 1 : 0);
    return m;
}

void loadMatrix(const Matrix& m)
{
    float columns[16];
    for (size_t r = 0; r < 4; ++r)
        for (size_t c = 0; c < 4; ++c) columns[4 * c + r] = static_cast<float>(m[r][c]);
    glLoadMatrixf(columns);
}

Matrix product(const Matrix& a, const Matrix& b)
{
    Matrix m{};
    for (size_t r = 0; r < 4; ++r)
        for (size_t c = 0; c < 4; ++c)
            for (size_t k = 0; k < 4; ++k) m[r][c] += a[r][k] * b[k][c];
    return m;
}

} // namespace

const char* const Machine::PassVertex = "!!ARBvp1.0\n"
                                        "MOV result.position, vertex.attrib[0];\nMOV result.color, vertex.attrib[3];\n"
                                        "MOV result.texcoord[0], vertex.attrib[8];\nMOV result.texcoord[1], vertex.attrib[9];\n"
                                        "MOV result.texcoord[2], vertex.attrib[10];\nMOV result.texcoord[3], vertex.attrib[11];\n"
                                        "MOV result.texcoord[4], vertex.attrib[12];\nMOV result.texcoord[5], vertex.attrib[13];\n"
                                        "MOV result.texcoord[6], vertex.attrib[14];\nMOV result.texcoord[7], vertex.attrib[15];\nEND\n";

void Machine::SetUp()
{
    ContextTest::SetUp();
    if (HasFatalFailure()) return;
    SoftMetal::setCommandLog(false);
    makeTargets();
    makeTextures();
    glViewport(0, 0, Side, Side);
    glGenProgramsARB(2, programs_);
    const uint16_t index = 0;
    GLuint indices = 0;
    glGenBuffers(1, &indices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof index, &index, GL_STATIC_DRAW);
    glGenBuffers(1, &buffer_);
    glBindBuffer(GL_ARRAY_BUFFER, buffer_);
    for (GLuint i = 0; i < 16; ++i) {
        glVertexAttribPointerARB(i, 4, GL_FLOAT, GL_FALSE, sizeof attributes_, reinterpret_cast<const void*>(uintptr_t{16} * i));
        glEnableVertexAttribArrayARB(i);
    }
    inputs_.sample = [this](int unit, const std::string& target, const Register& at) { return sample(unit, target, at); };
    std::mt19937 random(1);
    change(random);
}

void Machine::makeTargets()
{
    glGenFramebuffers(1, &framebuffer_);
    glGenTextures(8, targets_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    GLenum buffers[8];
    for (GLuint i = 0; i < 8; ++i) {
        buffers[i] = GL_COLOR_ATTACHMENT0 + i;
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, targets_[i]);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA32F_ARB, Side, Side, 0, GL_RGBA, GL_FLOAT, nullptr);
        glFramebufferTexture2D(GL_FRAMEBUFFER, buffers[i], GL_TEXTURE_RECTANGLE_ARB, targets_[i], 0);
    }
    glDrawBuffers(8, buffers);
    ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

/// Units 0 to 2, each with a texture for every target; nearest, so that sampling is looking up.
void Machine::makeTextures()
{
    using Texel = std::array<uint8_t, 4>;
    for (int unit : {0, 1, 2, 10}) {
        glActiveTextureARB(GL_TEXTURE0 + static_cast<GLenum>(unit));
        std::vector<Texel> texels;
        for (int z = 0; z < 2; ++z)
            for (int y = 0; y < TextureSide; ++y)
                for (int x = 0; x < TextureSide; ++x) texels.push_back(texel(unit, x, y, z));
        for (GLenum target : {GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_CUBE_MAP}) {
            GLuint name = 0;
            glGenTextures(1, &name);
            glBindTexture(target, name);
            for (GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) glTexParameteri(target, parameter, GL_NEAREST);
            for (GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R}) glTexParameteri(target, parameter, GL_CLAMP_TO_EDGE);
            if (target == GL_TEXTURE_3D) glTexImage3D(target, 0, GL_RGBA8, TextureSide, TextureSide, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
            else if (target != GL_TEXTURE_CUBE_MAP) glTexImage2D(target, 0, GL_RGBA8, TextureSide, TextureSide, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
            for (GLenum face = 0; target == GL_TEXTURE_CUBE_MAP && face < 6; ++face) {
                Texel one = texel(unit, 0, 0, static_cast<int>(face)); // a colour for each face
                glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, one.data());
            }
        }
    }
    ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

Register Machine::sample(int unit, const std::string& target, const Register& at) const
{
    if (target == "CUBE") return fromTexel(texel(unit, 0, 0, faceOf(at)));
    double scale = target == "RECT" ? 1 : TextureSide;
    int z = target == "3D" ? nearest(at[2] * 2, 2) : 0;
    return fromTexel(texel(unit, nearest(at[0] * scale, TextureSide), nearest(at[1] * scale, TextureSide), z));
}

// ---- inputs -------------------------------------------------------------------------------------------------------------

void Machine::setAttribute(GLuint index, const Register& value)
{
    for (size_t i = 0; i < 4; ++i) attributes_[index][i] = static_cast<float>(value[i]);
    inputs_.registers["vertex.attrib[" + std::to_string(index) + "]"] = value;
}

void Machine::change(std::mt19937& random)
{
    auto between = [&](double low, double high) { return static_cast<double>(static_cast<float>(low + (high - low) * (random() % 4096) / 4095)); };
    auto vector = [&](double low, double high) {
        Register r;
        for (double& v : r.v) v = between(low, high);
        return r;
    };
    for (GLuint i = 0; i < 16; ++i) {
        Register value = i >= 8 ? vector(0.02, 0.98) : vector(-1, 1);
        if (i == 0) value.v = {between(-0.4, 0.4), between(-0.4, 0.4), between(0.1, 0.6), 1};
        setAttribute(i, value);
    }
    glBufferData(GL_ARRAY_BUFFER, sizeof attributes_, attributes_.data(), GL_STATIC_DRAW);

    // What programs see of the projection goes to depths from 0 to 1; of the texture matrices, that of unit 2 does so too.
    const Matrix correction = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 0.5, 0.5}, {0, 0, 0, 1}}};
    const Matrix modelview = randomMatrix(random), projection = randomMatrix(random), corrected = product(correction, projection);
    inputs_.matrices = {{"modelview", modelview}, {"projection", corrected}, {"mvp", product(corrected, modelview)}};
    glMatrixMode(GL_PROJECTION);
    loadMatrix(projection);
    glMatrixMode(GL_MODELVIEW);
    loadMatrix(modelview);
    for (GLenum unit = 0; unit < 4; ++unit) {
        Matrix m = randomMatrix(random);
        inputs_.matrices["texture[" + std::to_string(unit) + "]"] = unit == 2 ? product(correction, m) : m;
        glActiveTextureARB(GL_TEXTURE0 + unit);
        glMatrixMode(GL_TEXTURE);
        loadMatrix(m);
    }
    for (GLuint i = 0; i < 16; ++i) inputs_.registers["program.local[" + std::to_string(i) + "]"] = i < 8 ? vector(-2, 2) : vector(0.1, 2);
}

Inputs Machine::fragmentInputs()
{
    Inputs result = inputs_;
    result.registers["fragment.color"] = inputs_.registers["vertex.attrib[3]"];
    for (int i = 0; i < 8; ++i) result.registers["fragment.texcoord[" + std::to_string(i) + "]"] = inputs_.registers["vertex.attrib[" + std::to_string(8 + i) + "]"];
    const Register& at = inputs_.registers["vertex.attrib[0]"];
    auto cell = [](double clip) { return std::floor((clip + 1) / 2 * Side) + 0.5; };
    result.registers["fragment.position"].v = {cell(at[0]), cell(at[1]), at[2], 1};
    return result;
}

// ---- running ------------------------------------------------------------------------------------------------------------

std::string Machine::load(const std::string& vertex, const std::string& fragment)
{
    glDeleteProgramsARB(2, programs_); // pipelines of the texts before go with them
    glGenProgramsARB(2, programs_);
    constexpr GLenum Targets[2] = {GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB};
    const std::string* texts[2] = {&vertex, &fragment};
    for (int i = 0; i < 2; ++i) {
        glBindProgramARB(Targets[i], programs_[i]);
        glProgramStringARB(Targets[i], GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(texts[i]->size()), texts[i]->data());
        if (glGetError() != GL_NO_ERROR) return std::string("refused: ") + reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
    }
    return "";
}

std::optional<std::array<Register, 8>> Machine::draw()
{
    for (GLuint i = 0; i < 16; ++i) {
        const Register& local = inputs_.registers["program.local[" + std::to_string(i) + "]"];
        const double values[4] = {local[0], local[1], local[2], local[3]};
        for (GLenum target : {GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB}) glProgramLocalParameter4dvARB(target, i, values);
    }
    constexpr float Nothing = -12345;
    glClearColor(Nothing, Nothing, Nothing, Nothing);
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawElements(GL_POINTS, 1, GL_UNSIGNED_SHORT, nullptr);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    std::optional<std::array<Register, 8>> result;
    for (size_t i = 0; i < 8; ++i) {
        std::array<float, Side * Side * 4> pixels{};
        glActiveTextureARB(GL_TEXTURE0 + 31);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, targets_[i]);
        glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_FLOAT, pixels.data());
        for (int p = 0; p < Side * Side; ++p) {
            const float* rgba = &pixels[static_cast<size_t>(p) * 4];
            if (rgba[0] == Nothing && rgba[3] == Nothing) continue;
            if (!result) result.emplace();
            column = p % Side;
            row = p / Side;
            for (size_t c = 0; c < 4; ++c) (*result)[i].v[c] = rgba[c];
        }
    }
    return result;
}

void Machine::expectClose(const Register& wanted, const Register& got, double bound, const std::string& what)
{
    for (size_t i = 0; i < 4; ++i) {
        if (!(wanted.written >> i & 1)) continue;
        if (std::isnan(wanted[i]) && std::isnan(got[i])) continue;
        EXPECT_LE(std::abs(wanted[i] - got[i]), bound * std::max(1.0, std::abs(wanted[i]))) << what << ", component " << i << ": wanted " << wanted[i] << ", got " << got[i];
    }
}

} // namespace assembly
