// SPDX-License-Identifier: Apache-2.0
// Every state matrix with its inverse, transpose and inverse transpose, as programs of both kinds read them.
#include "assembly/Machine.h"

namespace assembly {
namespace {

constexpr double Bound = 1e-4; // inverses are made in single precision

constexpr const char* Matrices[] = {"modelview", "projection", "mvp", "texture[0]", "texture[1]", "texture[2]", "texture[3]"};
constexpr const char* Changes[] = {"", ".inverse", ".transpose", ".invtrans"};

class StateMatrix : public Machine, public testing::WithParamInterface<const char*>
{
protected:
    static std::string row(const std::string& change, int i) { return std::string("state.matrix.") + GetParam() + change + ".row[" + std::to_string(i) + "]"; }

    /// The four rows of two changes at a time, in eight results.
    static std::string rows(const std::string& result, const char* const* changes)
    {
        std::string text;
        for (int i = 0; i < 8; ++i) text += "MOV " + result + "[" + std::to_string(i) + "], " + row(changes[i / 4], i % 4) + ";\n";
        return text + "END\n";
    }

    void expectRows(const std::string& text, const Inputs& in, const std::string& result, const char* const* changes)
    {
        auto got = draw();
        ASSERT_TRUE(got.has_value());
        Outcome wanted = interpret(text, in);
        for (size_t i = 0; i < 8; ++i) {
            std::string name = row(changes[i / 4], static_cast<int>(i % 4));
            Register expected = wanted.results.at(result + "[" + std::to_string(i) + "]");
            // The rows of the modelview's inverse are those of the modelview itself; the documentation names it.
            if (name.rfind("state.matrix.modelview.inverse.", 0) == 0)
                for (size_t c = 0; c < 4; ++c) expected.v[c] = in.matrices.at("modelview")[i % 4][c];
            expectClose(expected, (*got)[i], Bound, name);
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Names, StateMatrix, testing::ValuesIn(Matrices), [](const auto& one) {
    std::string name = one.param;
    std::erase_if(name, [](char c) { return c == '[' || c == ']'; });
    return name;
});

TEST_P(StateMatrix, InFragmentPrograms)
{
    for (const char* const* changes : {Changes, Changes + 2}) {
        std::string text = "!!ARBfp1.0\nOPTION ARB_draw_buffers;\n" + rows("result.color", changes);
        ASSERT_EQ(load(PassVertex, text), "");
        std::mt19937 random(17);
        for (int round = 0; round < 3; ++round) {
            change(random);
            expectRows(text, fragmentInputs(), "result.color", changes);
        }
    }
}

TEST_P(StateMatrix, InVertexPrograms)
{
    std::string show = "!!ARBfp1.0\nOPTION ARB_draw_buffers;\n";
    for (int i = 0; i < 8; ++i) show += "MOV result.color[" + std::to_string(i) + "], fragment.texcoord[" + std::to_string(i) + "];\n";
    for (const char* const* changes : {Changes, Changes + 2}) {
        std::string text = "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\n" + rows("result.texcoord", changes);
        ASSERT_EQ(load(text, show + "END\n"), "");
        std::mt19937 random(19);
        for (int round = 0; round < 3; ++round) {
            change(random);
            expectRows(text, inputs(), "result.texcoord", changes);
        }
    }
}

} // namespace
} // namespace assembly
