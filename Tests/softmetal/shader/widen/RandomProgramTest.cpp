// SPDX-License-Identifier: Apache-2.0
// Programs with arbitrary control flow from a seed. Variables and fuel are in memory, so any block may follow any other; the
// clean-up turns them into values.
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

#include <random>

namespace widentest {
namespace {

class RandomProgram
{
public:
    RandomProgram(uint32_t seed, Stage stage) : random_(seed), stage_(stage) {}

    std::string text()
    {
        begin();
        uint32_t blocks = 2 + pick(9);
        for (uint32_t block = 0; block < blocks; ++block) emitBlock(block, blocks);
        end();
        return program(text_, "@table = private constant [8 x i32] [i32 9, i32 8, i32 7, i32 60, i32 50, i32 4, i32 -3, i32 2]\n");
    }

private:
    static constexpr uint32_t Variables = 6;

    uint32_t pick(uint32_t end) { return static_cast<uint32_t>(random_() % end); }
    std::string fresh() { return "%t" + std::to_string(counter_++); }
    std::string variable() { return "%v" + std::to_string(pick(Variables)); }
    void line(const std::string& words) { text_ += "  " + words + "\n"; }

    std::string value(const std::string& words)
    {
        std::string name = fresh();
        line(name + " = " + words);
        return name;
    }

    std::string read() { return pick(5) == 0 ? std::to_string(pick(20)) : value("load i32, ptr " + variable()); }
    void write(const std::string& what) { line("store i32 " + what + ", ptr " + variable()); }
    std::string real(const std::string& integer) { return value("sitofp i32 " + value("and i32 " + integer + ", 255") + " to float"); }

    void begin()
    {
        for (uint32_t v = 0; v < Variables; ++v) line("%v" + std::to_string(v) + " = alloca i32");
        line("%fuel = alloca i32");
        line("%array = alloca [8 x i32]");
        line("call void @llvm.memset.p0.i64(ptr %array, i8 0, i64 32, i1 false)");
        bool vertex = stage_ == Stage::Vertex;
        std::string lane = vertex ? value("call i32 @softmetal_vertex_id()") : value("fptoui float " + value("call float @softmetal_position(i32 0)") + " to i32");
        std::string same = value(vertex ? "call i32 @softmetal_base_vertex()" : "call i32 @softmetal_primitive_id()");
        std::string bound = value("load i32, ptr " + value("getelementptr i32, ptr " + value("call ptr @softmetal_buffer(i32 0)") + ", i32 3"));
        const std::string starts[Variables] = {lane, same, bound, value("mul i32 " + lane + ", 77"), "3", same};
        for (uint32_t v = 0; v < Variables; ++v) line("store i32 " + starts[v] + ", ptr %v" + std::to_string(v));
        line("store i32 " + std::to_string(5 + pick(60)) + ", ptr %fuel");
        line("br label %b0");
    }

    void emitBlock(uint32_t block, uint32_t blocks)
    {
        std::string name = "b" + std::to_string(block);
        text_ += name + ":\n";
        std::string left = value("sub i32 " + value("load i32, ptr %fuel") + ", 1");
        line("store i32 " + left + ", ptr %fuel");
        line("br i1 " + value("icmp slt i32 " + left + ", 0") + ", label %end, label %" + name + "body");
        text_ += name + "body:\n";
        for (uint32_t n = pick(5); n > 0; --n) emitOperation();
        emitBranch(blocks);
    }

    void emitOperation()
    {
        static constexpr const char* Plain[] = {"add", "sub", "mul", "xor", "and", "or"};
        switch (pick(10)) {
        case 0: return write(value("udiv i32 " + read() + ", " + value("or i32 " + read() + ", 1")));
        case 1: return write(value("shl i32 " + read() + ", " + value("and i32 " + read() + ", 7")));
        case 2: return line("store i32 " + read() + ", ptr " + element("%array"));
        case 3: return write(value("load i32, ptr " + element("%array")));
        case 4: return write(value("load i32, ptr " + element("@table")));
        case 5: return write(value("fptosi float " + value("fmul float " + real(read()) + ", 0.375") + " to i32"));
        case 6: return emitSample();
        case 7: return emitSelect();
        default: return write(value(std::string(Plain[pick(6)]) + " i32 " + read() + ", " + read()));
        }
    }

    std::string element(const char* array) { return value(std::string("getelementptr i32, ptr ") + array + ", i32 " + value("and i32 " + read() + ", 7")); }

    void emitSelect()
    {
        std::string condition = value("icmp slt i32 " + read() + ", " + read());
        write(value("select i1 " + condition + ", i32 " + read() + ", i32 " + read()));
    }

    void emitSample()
    {
        if (stage_ == Stage::Fragment && pick(6) == 0) return line("call void @softmetal_discard()");
        std::string s = real(read()), t = real(read());
        std::string texture = value("call ptr @softmetal_texture(i32 0)"), sampler = value("call ptr @softmetal_sampler(i32 0)");
        std::string result = value("call <4 x float> @softmetal_sample(ptr " + texture + ", ptr " + sampler + ", i32 2, float " + s + ", float " + t +
                                   ", float 0.0, i32 0, float " + real(read()) +
                                   ", float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, i32 0, i32 0, i32 0, float 0.0)");
        write(value("fptosi float " + value("extractelement <4 x float> " + result + ", i32 " + std::to_string(pick(4))) + " to i32"));
    }

    std::string target(uint32_t blocks) { return pick(6) == 0 ? "%end" : "%b" + std::to_string(pick(blocks)); }

    void emitBranch(uint32_t blocks)
    {
        switch (pick(5)) {
        case 0: return line("br label " + target(blocks));
        case 1: {
            std::string words = "switch i32 " + value("and i32 " + read() + ", 3") + ", label " + target(blocks) + " [";
            for (uint32_t n = 0; n < 3; ++n) words += " i32 " + std::to_string(n) + ", label " + target(blocks);
            return line(words + " ]");
        }
        default:
            line("br i1 " + value("icmp ult i32 " + value("and i32 " + read() + ", 15") + ", " + std::to_string(pick(16))) + ", label " + target(blocks) + ", label " + target(blocks));
        }
    }

    void end()
    {
        text_ += "end:\n";
        for (uint32_t v = 0; v < Variables; ++v) {
            std::string number = std::to_string(v), bits = value("bitcast i32 " + value("load i32, ptr %v" + number) + " to float");
            if (stage_ == Stage::Vertex) line("call void @softmetal_store_output(i32 " + number + ", float " + bits + ")");
            else line("call void @softmetal_store_color(i32 " + std::to_string(v / 4) + ", i32 " + std::to_string(v % 4) + ", float " + bits + ")");
        }
        line("ret void");
    }

    std::mt19937 random_;
    Stage stage_;
    std::string text_;
    uint32_t counter_ = 0;
};

class RandomPrograms : public testing::TestWithParam<uint32_t>
{
};

constexpr uint32_t ProgramsPerCase = 25;

TEST_P(RandomPrograms, GiveTheBitsOfTheScalarRun)
{
    for (uint32_t n = 0; n < ProgramsPerCase && !HasFatalFailure(); ++n) {
        uint32_t seed = GetParam() * ProgramsPerCase + n;
        SCOPED_TRACE("seed " + std::to_string(seed));
        Stage stage = seed % 2 == 0 ? Stage::Vertex : Stage::Fragment;
        expectSameAsScalar(RandomProgram(seed, stage).text() + "declare void @llvm.memset.p0.i64(ptr, i8, i64, i1)\n", stage, 6, seed % 5 == 0 ? 0x7bf0 : 0xffff);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomPrograms, testing::Range(0u, 16u));

} // namespace
} // namespace widentest
