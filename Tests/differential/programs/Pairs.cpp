// SPDX-License-Identifier: Apache-2.0
#include "differential/programs/Pairs.h"

namespace differential
{

Pair pairOf(uint32_t number)
{
    std::mt19937 random(number);
    auto between = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(random() % 4097) / 4096;
    };
    Pair pair;
    pair.vertex = randomProgram(Kind::Vertex, random);
    pair.fragment = randomProgram(Kind::Fragment, random);
    for (Inputs& point : pair.points) {
        for (size_t i = 0; i < point.attributes.size(); ++i)
            for (float& value : point.attributes[i])
                value = i < 2 ? between(-2, 2) : i == 2 ? between(0.05f, 3) : between(-0.1f, 2);
        for (auto& local : point.locals)
            for (float& value : local)
                value = between(-2, 2);
        point.locals = pair.points[0].locals;
    }
    return pair;
}

std::string written(Kind kind, const Writing& w)
{
    bool vertex = kind == Kind::Vertex;
    std::string text = w.header + "\n" + (vertex ? "" : "OPTION ARB_draw_buffers;\n") + w.declarations;
    if (vertex) text += "MOV result.position, vertex.attrib[0];\n";
    for (int i = 0; i < 4 && vertex; ++i)
        text += "MOV result.texcoord[" + std::to_string(i) + "], vertex.attrib[" + std::to_string(8 + i) + "];\n";
    text += w.body;
    for (int i = 0; i < 4; ++i)
        text += "MOV result." + (vertex ? "texcoord[" + std::to_string(4 + i) : "color[" + std::to_string(i)) + "], " +
                w.name + std::to_string(i) + ";\n";
    for (int i = 4; i < 8 && !vertex; ++i)
        text += "MOV result.color[" + std::to_string(i) + "], fragment.texcoord[" + std::to_string(i) + "];\n";
    return text + "END\n";
}

namespace
{

std::string plainText(const RandomProgram& program, const char* header)
{
    std::string body;
    for (const Statement& s : program.body)
        body += textOf(program, s);
    return written(program.kind, {header, declarationsOf(program), body});
}

} // namespace

std::string vertexTextOf(const RandomProgram& program)
{
    return plainText(program, "!!ARBvp1.0");
}
std::string fragmentTextOf(const RandomProgram& program)
{
    return plainText(program, "!!ARBfp1.0");
}

} // namespace differential
