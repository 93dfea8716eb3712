// SPDX-License-Identifier: Apache-2.0
// Source text that means harm: it reaches no file of the machine, and it ends in messages, never in the end of the
// process.
#include "softmetal/device/DeviceFixture.h"

#include <array>
#include <fstream>
#include <functional>

#include <sys/resource.h>
#include <unistd.h>

namespace device_test
{
namespace
{

class HostileSource : public Device
{
protected:
    /// A file that exists, with a macro in it that nothing else defines.
    void SetUp() override
    {
        Device::SetUp();
        char name[] = "/tmp/softmetal-hostile-XXXXXX";
        int file = mkstemp(name);
        ASSERT_NE(file, -1);
        close(file);
        path = name;
        std::ofstream(path) << "#define SECRET 1\n";
    }

    void TearDown() override
    {
        unlink(path.c_str());
        Device::TearDown();
    }

    /// The compiler's messages; empty when it took the source without one.
    std::string messagesOf(const std::string& source)
    {
        NS::Error* error = nullptr;
        refused = owned(device->newLibrary(text(source), nullptr, &error)) == nullptr;
        return error ? error->localizedDescription()->utf8String() : "";
    }

    void expectRefused(const std::string& source, const char* words)
    {
        std::string messages = messagesOf(source);
        EXPECT_TRUE(refused) << source;
        EXPECT_NE(messages.find(words), std::string::npos) << source << "\n" << messages;
        EXPECT_EQ(messages.find("SECRET 1"), std::string::npos);
    }

    std::string path;
    bool refused = false;
};

/// The text that follows is compiled when the condition holds; it must not.
std::string unless(const std::string& condition)
{
    return "#if " + condition + "\n#error reached\n#endif\nconstant int used = 1;\n";
}

// ---- files ---------------------------------------------------------------------------------------------------------

TEST_F(HostileSource, IncludesTheStandardHeadersOnly)
{
    EXPECT_EQ(messagesOf("#include <metal_stdlib>\n#include <simd/simd.h>\n"), "");
    EXPECT_FALSE(refused);
    for (const char* name :
         {"<vector>", "<cstdio>", "\"stdio.h\"", "<../../etc/passwd>", "\"/etc/passwd\"", "<metal_stdlib.h>"})
        expectRefused("#include " + std::string(name) + "\n", "file not found");
}

TEST_F(HostileSource, IncludesNoFileOfTheMachine)
{
    for (const char* directive : {"#include", "#include_next", "#import"})
        for (const std::string& name : {'"' + path + '"', '<' + path + '>', "\"../../../../../.." + path + '"'})
            expectRefused(std::string(directive) + " " + name + "\n#ifdef SECRET\n#error reached\n#endif\n",
                          "file not found");
}

TEST_F(HostileSource, IncludesNoFileThroughAMacroOrAnotherName)
{
    expectRefused("#define NAME \"" + path + "\"\n#include NAME\n", "file not found");
    expectRefused("#line 1 \"" + path + "\"\n#include \"" + path + "\"\n", "file not found");
    expectRefused("#line 1 \"/tmp/x.metal\"\n#include \"" + path.substr(5) + "\"\n", "file not found");
}

TEST_F(HostileSource, IncludesNotItselfWithoutEnd)
{
    messagesOf("#include __FILE__\n");
    EXPECT_TRUE(refused);
    messagesOf("#include \"program_source\"\n");
    EXPECT_TRUE(refused);
}

TEST_F(HostileSource, SeesNoFileOfTheMachine)
{
    for (const std::string& name :
         {'"' + path + '"', '<' + path + '>', std::string("<vector>"), std::string("\"/etc/passwd\"")})
    {
        EXPECT_EQ(messagesOf(unless("__has_include(" + name + ")")), "") << name;
        EXPECT_EQ(messagesOf(unless("__has_include_next(" + name + ")")).find("reached"), std::string::npos) << name;
        EXPECT_EQ(messagesOf(unless("__has_embed(" + name + ")")).find("reached"), std::string::npos) << name;
    }
    EXPECT_NE(messagesOf(unless("__has_include(<metal_stdlib>)")).find("reached"), std::string::npos);
}

TEST_F(HostileSource, EmbedsNoFile)
{
    for (const std::string& name : {'"' + path + '"', '<' + path + '>', std::string("\"/dev/zero\"")}) {
        messagesOf("constant char bytes[] = {\n#embed " + name + "\n};\n");
        EXPECT_TRUE(refused) << name;
    }
}

TEST_F(HostileSource, ReachesNoFileThroughPragmas)
{
    expectRefused("#pragma GCC dependency \"" + path + "\"\n", "file not found");
    for (const char* words :
         {"clang module import Foundation", "clang module load Foundation", "clang module build x", "GCC system_header",
          "push_macro(\"x\")", "comment(lib, \"m\")", "include_alias(<metal_stdlib>, </etc/passwd>)", "hdrstop",
          "clang diagnostic ignored \"-Weverything\"", "GCC poison float4", "weak x", "redefine_extname sin cos",
          "clang __debug dump float4"})
        messagesOf(std::string("#pragma ") + words +
                   "\n#include <metal_stdlib>\nconstant int used = 1;\n"); // whatever it says, the process runs on
    EXPECT_EQ(messagesOf("#pragma clang diagnostic warning \"-Wall\"\nconstant int used = 1;\n"), "");
}

TEST_F(HostileSource, TakesNoOptionsFromItsText)
{
    for (const std::string& line : {"#pragma clang include \"" + path + "\"", "#pragma include \"" + path + "\"",
                                    "#line 1 \"-include " + path + "\"", "// -include " + path})
        EXPECT_EQ(messagesOf(line + "\n" + unless("defined(SECRET)")).find("reached"), std::string::npos) << line;
}

// ---- the compiler's life -------------------------------------------------------------------------------------------

TEST_F(HostileSource, DoesNotStopTheCompilerByPragma)
{
    for (const char* words : {"crash", "parser_crash", "assert", "llvm_fatal_error", "llvm_unreachable",
                              "llvm_report_fatal", "overflow_stack", "handle_crash", "captured", "llvm_fatal_error"})
        messagesOf(std::string("#pragma clang __debug ") + words + "\nconstant int used = 1;\n");
    EXPECT_EQ(messagesOf("constant int used = 1;\n"), "");
}

std::string repeated(size_t times, const std::string& words)
{
    std::string result;
    for (size_t i = 0; i < times; ++i)
        result += words;
    return result;
}

TEST_F(HostileSource, MayBeNestedDeeply)
{
    for (size_t depth : {2000u, 50000u}) {
        messagesOf("constant int a = " + repeated(depth, "(") + "1" + repeated(depth, ")") + ";\n");
        EXPECT_TRUE(refused);
        messagesOf("void f() " + repeated(depth, "{") + repeated(depth, "}") + "\n");
        EXPECT_TRUE(refused);
        messagesOf(repeated(depth, "namespace a {") + repeated(depth, "}") + "\n");
        messagesOf("constant int b = " + repeated(depth, "-+!~") + "1;\n");
        messagesOf("void g() { " + repeated(depth, "if (1) ") + "; }\n");
        messagesOf("int h(int x) { return " + repeated(depth, "x + ") + "1; }\n");
        messagesOf("int i(int x) { return " + repeated(depth, "x ? 1 : ") + "1; }\n");
        messagesOf(repeated(depth, "template <") + "\n");
        messagesOf("int " + repeated(depth, "*") + "j;\n");
        messagesOf("using k = int" + repeated(depth, "[1]") + ";\n");
        messagesOf(repeated(depth, "#if 1\n"));
    }
    EXPECT_EQ(messagesOf("constant int used = 1;\n"), "");
}

struct GrowthRow
{
    const char* what;
    std::string source;
    const char* words; // of the error
};

/// A macro for each level, whose text is the next one twice.
std::string doubled(const std::string& between, const std::string& last)
{
    std::string text;
    for (int i = 0; i < 40; ++i) {
        const std::string next = "A" + std::to_string(i + 1);
        text += "#define A" + std::to_string(i) + " " + next + between + next + "\n";
    }
    return text + "#define A40 " + last + "\n";
}

std::vector<GrowthRow> growths()
{
    constexpr const char* Macros = "macros are expanded to more than 1000000 tokens";
    constexpr const char* Nested = "statements are nested more than 1024 levels deep";
    const std::string many = repeated(3000, "x ");
    return {
        {"arguments in arguments", "#define F(x) x x\nint a = " + repeated(40, "F(") + "1" + repeated(40, ")") + ";\n",
         Macros},
        {"names put together",
         "#define NAME(a, b) a##b\n#define AB(x) x x x x\nint a = " + repeated(30, "NAME(A, B)(") + "1" +
             repeated(30, ")") + ";\n",
         Macros},
        {"a long argument in many places", "#define F(x) " + many + "\nint a = F(" + repeated(9000, "1 ") + ");\n",
         Macros},
        {"a short argument that grows, in many places",
         "#define G(x) x x x x x x x x\n#define F(x) " + many + "\nint a = F(G(G(G(G(G(1))))));\n", Macros},
        {"macros of nothing", doubled(" ", "") + "A0 int a;\n", Macros},
        {"macros in macros", doubled(" + ", "1") + "int a = A0;\n", "a statement is longer than 8192 tokens"},
        {"else if", "int f(int x) { " + repeated(50000, "if (x == 1) return 2; else ") + "return 1; }\n", Nested},
        {"else if with braces", "int f(int x) { " + repeated(50000, "if (x == 1) { ++x; } else ") + "{} return x; }\n",
         Nested},
        {"loops without end", "void f() { " + repeated(50000, "for (;;) ") + "; }\n", Nested},
        {"conditions with commas", "void f(int x) { " + repeated(50000, "if ((x, x)) ") + "; }\n", Nested},
        {"blocks of chains",
         "void f(int x) { " + repeated(900, repeated(20, "if (x) x; else ") + "{") + repeated(900, "}") + " }\n",
         Nested},
    };
}

TEST_F(HostileSource, EndsWhereItGrowsPastMeasure)
{
    for (const GrowthRow& row : growths()) {
        SCOPED_TRACE(row.what);
        std::string messages = messagesOf(row.source);
        EXPECT_TRUE(refused);
        EXPECT_NE(messages.find(row.words), std::string::npos) << messages;
    }
    EXPECT_EQ(messagesOf("constant int used = 1;\n"), "");
}

TEST_F(HostileSource, MayBeLongWithinMeasure)
{
    EXPECT_EQ(messagesOf("int f(int x) { " + repeated(1000, "if (x == 1) return 2; else ") + "return 1; }\n"), "");
    EXPECT_EQ(messagesOf("int f(int x) { " + repeated(5000, "if (x == 1) x = 2; else x = 3; ") + "return x; }\n"), "");
    EXPECT_EQ(
        messagesOf("int f(int x) { " + repeated(3000, "for (int i = 0; i < x; ++i) { x += i; } ") + "return x; }\n"),
        "");
    EXPECT_EQ(messagesOf("#define TWICE(x) x, x\nconstant int t[] = {TWICE(TWICE(TWICE(1))), " +
                         repeated(9000, "TWICE(2), ") + "3};\n"),
              "");
}

/// Leaves the process: 0 when it holds with so many bytes of address space beyond what there is.
[[noreturn]] void leaveWithin(rlim_t bytes, const std::function<bool()>& holds)
{
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + bytes;
    rlimit both{};
    both.rlim_cur = both.rlim_max = limit;
    const bool limited = setrlimit(RLIMIT_AS, &both) == 0;
    _exit(limited && holds() ? 0 : 1);
}

TEST_F(HostileSource, MacrosTakeNoMoreMemoryThanThereIs)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe"; // a process of its own from the start
    auto holds = [&] {
        for (const GrowthRow& row : growths())
            if (messagesOf(row.source).find(row.words) == std::string::npos) return false;
        return true;
    };
    EXPECT_EXIT(leaveWithin(rlim_t{3} << 30, holds), testing::ExitedWithCode(0), "");
}

TEST_F(HostileSource, MayRecurseInTemplatesAndConstants)
{
    messagesOf("template <int N> struct S { static constant int v = S<N + 1>::v; };\nconstant int a = S<0>::v;\n");
    EXPECT_TRUE(refused);
    messagesOf("constexpr int f(int n) { return f(n + 1); }\nconstexpr int a = f(0);\n");
    EXPECT_TRUE(refused);
    messagesOf("constexpr int g() { int n = 0; for (;;) ++n; return n; }\nconstexpr int b = g();\n");
    EXPECT_TRUE(refused);
    messagesOf("#define A B B B B B B B B\n#define B C C C C C C C C\n#define C D D D D D D D D\n#define D E E E E E E "
               "E E\n#define E int;\nA\n");
}

TEST_F(HostileSource, MayNameSizesThatNoMachineHas)
{
    for (const char* words :
         {"constant char a[1ull << 40] = {};", "constant int b[0x7FFFFFFF] = {1};",
          "struct S { char c[1ull << 61]; }; S s;", "fragment float4 f() { float t[1 << 28]; t[0] = 1; return t[1]; }",
          "fragment float4 g(constant float (&t)[1ull << 60] [[buffer(0)]]) { return t[5]; }"})
        messagesOf(std::string("#include <metal_stdlib>\nusing namespace metal;\n") + words + "\n");
    EXPECT_EQ(messagesOf("constant int used = 1;\n"), "");
}

TEST_F(HostileSource, HoldsNoAssemblerAndNoForeignCode)
{
    for (const char* words :
         {"__asm__(\".incbin \\\"/etc/passwd\\\"\");", "fragment float4 f() { __asm__(\"hlt\"); return 0; }",
          "extern \"C\" int system(const char*);\nfragment float4 f() { return float(system(\"ls\")); }",
          "thread_local int t;\nfragment float4 f() { return float(t++); }"})
    {
        messagesOf(std::string("#include <metal_stdlib>\nusing namespace metal;\n") + words + "\n");
        EXPECT_TRUE(refused) << words;
    }
}

// ---- what it is when it runs ---------------------------------------------------------------------------------------

/// Each is a body of a fragment function that gets its pixel's place p and a number n from a buffer.
constexpr std::array Bodies = {
    "if (p.x > 3) return p;", // and nothing otherwise
    "__builtin_unreachable();",
    "for (;;);",
    "int* q = (int*)0x1234; *q = 3; return p;",
    "int* q = 0; *q = int(p.x); return p;",
    "return *(constant float4*)0x10;",
    "constant int* q = &n; return float4(q[1000000000]) + float4(q[-1000000000]);",
    "thread float a[4] = {1, 2, 3, 4}; return float4(a[n * 1000000], a[n - 1000000], a[n], 1);",
    "thread float a[4] = {}; thread float* q = a; for (int i = 0; i < 4000; ++i) q[i * 997] = p.x; return "
    "float4(a[0]);",
    "return float4(n / (n - 7), n % (n - 7), 0, 1);",                   // by zero
    "return float4((-2147483647 - 1) / (n - 8), 1 << (n + 60), 0, 1);", // beyond the largest number
    "return float4(int(p.x * 1e30), uint(-p.x), 0, 1);",
    "switch (n) { case 7: __builtin_unreachable(); default: return p; }",
    "const_cast<int&>(static_cast<const int&>(n * 2)) = 5; return p;",
};

TEST_F(HostileSource, StaysInItsMemoryWhenItRuns)
{
    size_t ran = 0;
    for (const char* body : Bodies) {
        NS::Error* error = nullptr;
        auto* program = owned(
            device->newLibrary(text(std::string("#include <metal_stdlib>\nusing namespace metal;\nfragment float4 "
                                                "f(float4 p [[position]], constant int& n [[buffer(2)]]) { ") +
                                    body + " }\n"),
                               nullptr, &error));
        if (!program) continue;
        auto* d = pipelineDescriptor();
        d->setFragmentFunction(owned(program->newFunction(text("f"))));
        auto* state = owned(device->newRenderPipelineState(d, &error));
        if (!state) continue;
        auto* e = encoder(texture());
        e->setRenderPipelineState(state);
        bindFullTarget(e);
        const int n = 7;
        e->setFragmentBytes(&n, sizeof n, 2);
        drawFullTarget(e);
        finish(e);
        EXPECT_GE(commands->status(), MTL::CommandBufferStatusCompleted) << body; // done, or stopped
        ++ran;
    }
    EXPECT_GE(ran, Bodies.size() / 2);
    SoftMetal::takeMessages(); // of what it reached for
}

TEST_F(HostileSource, MayBeAnyBytes)
{
    std::string bytes;
    for (int i = 1; i < 256; ++i)
        bytes += static_cast<char>(i);
    for (const std::string& source :
         {bytes, std::string("\xEF\xBB\xBF"), std::string("\xFF\xFE\x00i", 4), std::string("\"") + bytes,
          "R\"(" + bytes, std::string("\\"), std::string("/*"), std::string("#")})
        messagesOf(source);
    EXPECT_EQ(messagesOf("constant int used = 1;\n"), "");
}

} // namespace
} // namespace device_test
