// SPDX-License-Identifier: Apache-2.0
// What the language has from C++: structures, templates, references and pointers, arrays, control flow, namespaces.
#include "Language.h"

namespace language_test {

using Structure = Language;

TEST_F(Structure, MembersFunctionsAndOperators)
{
    expectValues(
        {
            {"Light(v.xyz, 2).lit(float3(0, 0, 1))", {6}},
            {"Light(v.xyz, 2).direction", {1.5f, -2.25f, 3}},
            {"total(Pair<float>{v.x, v.y})", {-0.75f}},
            {"total(Pair<int2>{i.xy, j.xy})", {9, 2}},
            {"(Complex{1, 2} * Complex{3, 4}).re", {-5}},
            {"Nested{{1, {2, 3}}, 4}.inner.pair[1]", {3}},
            {"Defaults().b", {7}},
            {"int(Kind::Second)", {5}},
            {"kind(Kind::Second)", {2}},
            {"helpers::twice(x)", {1.5f}},
            {"twice(x)", {1.5f}},
        },
        R"(
struct Light
{
    float3 direction;
    float power;
    Light(float3 d, float p) : direction(d), power(p) {}
    float lit(float3 n) const { return dot(direction, n) * power; }
};
template <typename T> struct Pair { T a, b; };
template <typename T> T total(Pair<T> p) { return p.a + p.b; }
struct Complex { float re, im; };
Complex operator*(Complex a, Complex b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
struct Inner { float a; float pair[2]; };
struct Nested { Inner inner; float b; };
struct Defaults { int a = 3, b = 7; };
enum class Kind : uint { First = 4, Second };
int kind(Kind k) { switch (k) { case Kind::First: return 1; case Kind::Second: return 2; } return 0; }
namespace helpers { inline float twice(float a) { return a * 2; } }
using namespace helpers;
)");
}

TEST_F(Structure, TemplatesWithNumbersAndOverloads)
{
    expectValues(
        {
            {"power<3>(v.x)", {3.375f}},
            {"largest(v.x, v.z)", {3}},
            {"largest(i.x, j.x)", {7}},
            {"sum3(Array<4>{{1, 2, 3, 4}})", {10}},
            {"sum(1, 2.5f, x)", {4.25f}},
            {"which(1)", {1}},
            {"which(1.0f)", {2}},
            {"which(float2(1))", {3}},
            {"choose(v)", {3}},
        },
        R"(
template <int N> float power(float a) { float r = 1; for (int i = 0; i < N; ++i) r *= a; return r; }
template <typename T> T largest(T a, T b) { return a < b ? b : a; }
template <int N> struct Array { float items[N]; };
template <int N> float sum3(Array<N> a) { float r = 0; for (int i = 0; i < N; ++i) r += a.items[i]; return r; }
float sum() { return 0; }
template <typename T, typename... R> float sum(T a, R... rest) { return float(a) + sum(rest...); }
int which(int) { return 1; }
int which(float) { return 2; }
int which(float2) { return 3; }
auto choose(float4 a) { return a.z; }
)");
}

TEST_F(Structure, ReferencesAndPointersInAllAddressSpaces)
{
    expectValues(
        {
            {"changed(x)", {1.75f}},
            {"through(x)", {5}},
            {"exchanged(v.xy)", {-2.25f, 1.5f}},
            {"shared(n)", {-2.25f}},
            {"second(&n.v)", {0.25f}},
            {"third(table)", {30}},
            {"table[i.w - 4]", {20}},
            {"walk(table, 4)", {100}},
            {"member(n.w)", {4}},
            {"*(&v.y + 1 - 1)", {-2.25f}},
            {"points[i.w - 4].y", {4}},
        },
        R"(
constant float table[4] = {10, 20, 30, 40};
constant float2 points[] = {float2(1, 2), float2(3, 4)};
void change(thread float& a) { a += 1; }
float changed(float a) { change(a); return a; }
void put(thread float* p, float a) { *p = a; }
float through(float a) { put(&a, 5); return a; }
void exchange(thread float2& a) { float t = a.x; a.x = a.y; a.y = t; }
float2 exchanged(float2 a) { exchange(a); return a; }
float shared(constant Numbers& n) { return n.v.y; }
float second(constant float4* p) { return p[1].x; }
float third(constant float* p) { return p[2]; }
float walk(constant float* p, int count) { float r = 0; while (count-- > 0) r += *p++; return r; }
float member(float4 a) { thread float* p = &a.y; return *p; }
)");
}

TEST_F(Structure, ArraysOfTheThread)
{
    expectValues(
        {
            {"sorted(v)", {-2.25f, 0.5f, 1.5f, 3}},
            {"histogram(i)", {2, 2}},
            {"grid(i.w)", {23}},
            {"listed()", {6}},
            {"filled(i.w - 4)", {2.5f}},
            {"prefix(v, i.w - 3)", {2.25f}},
        },
        R"(
float4 sorted(float4 a)
{
    float items[4] = {a.x, a.y, a.z, a.w};
    for (int k = 0; k < 4; ++k)
        for (int m = k + 1; m < 4; ++m)
            if (items[m] < items[k]) { float t = items[k]; items[k] = items[m]; items[m] = t; }
    return float4(items[0], items[1], items[2], items[3]);
}
int2 histogram(int4 a) { int bins[2] = {0, 0}; for (int k = 0; k < 4; ++k) ++bins[a[k] > 5 ? 0 : 1]; return int2(bins[0], bins[1]); }
float grid(int at) { float cells[3][4]; for (int y = 0; y < 3; ++y) for (int c = 0; c < 4; ++c) cells[y][c] = 10 * y + c; return cells[at - 3][3]; }
float listed() { array<float, 3> a = {1, 2, 3}; float r = 0; for (uint k = 0; k < a.size(); ++k) r += a[k]; return r; }
float filled(int at) { float4 a[2]; a[0] = float4(1.5); a[1] = float4(2.5); return a[at].y; }
float prefix(float4 a, int count) { float r = 0; for (int k = 0; k < count + 1; ++k) r += a[k]; return r; }
)");
}

TEST_F(Structure, ControlFlow)
{
    expectValues(
        {
            {"collatz(i.x)", {16}},
            {"skipping(10)", {25}},
            {"leaving(i.z)", {14}},
            {"switched(0)", {1}},
            {"switched(1)", {5}},
            {"switched(7)", {9}},
            {"early(v.y)", {-1}},
            {"early(v.x)", {3}},
            {"(i.x > 3 && j.x > 1) ? 1 : 2", {1}},
            {"shortened(i.x)", {0}},
            {"nested(3)", {9}},
            {"ranged()", {10}},
        },
        R"(
int collatz(int a) { int steps = 0; while (a != 1) { a = (a & 1) ? 3 * a + 1 : a / 2; ++steps; } return steps; }
int skipping(int n) { int r = 0; for (int k = 0; k < n; ++k) { if (k % 2 == 0) continue; r += k; } return r; }
int leaving(int n) { int k = 0, r = 0; do { r += k; if (r > n) break; ++k; } while (true); return k; }
int switched(int a) { int r = 0; switch (a) { case 0: r = 1; break; case 1: r = 2; case 2: r += 3; break; default: r = 9; } return r; }
float early(float a) { if (a < 0) return -1; a *= 2; return a; }
bool touch(thread int& a) { ++a; return true; }
int shortened(int a) { int calls = 0; bool r = a < 0 && touch(calls); return calls + int(r); }
int nested(int n) { int r = 0; for (int a = 0; a < n; ++a) for (int b = 0; b < n; ++b) { if (b == n) break; ++r; } return r; }
int ranged() { int r = 0; int items[] = {1, 2, 3, 4}; for (int k : items) r += k; return r; }
)");
}

TEST_F(Structure, ConstantsOfTheProgram)
{
    expectValues(
        {
            {"Gamma", {2.2f}},
            {"Offsets[1]", {0.5f, -0.5f}},
            {"Identity[1]", {0, 1}},
            {"Settings.b", {4}},
            {"Count * 2", {6}},
            {"LIMIT(x)", {1.5f}},
            {"computed", {9}},
        },
        R"(
constant float Gamma = 2.2;
constant float2 Offsets[2] = {{-0.5, 0.5}, {0.5, -0.5}};
constant float2x2 Identity = float2x2(1.0);
struct Two { float a, b; };
constant Two Settings = {3, 4};
constexpr constant int Count = 3;
#define LIMIT(a) ((a) * 2)
constant float computed = 3 * 3;
)");
}

TEST_F(Structure, NumbersInTemplatesAreOfSinglePrecisionToo)
{
    expectValues(
        {
            {"exactly(x)", {0}},
            {"Scale<float>{0.1}.of(1.0)", {0.1f}},
            {"sized(x)", {4}},
            {"chosen(0.1)", {1}},
            {"sum(x)", {0.75f + 0.1f}},
        },
        R"(
template <typename T> T exactly(T a) { return a * 0 + (0.1 - 0.1f); } // in double precision something would be left
template <typename T> struct Scale { T by; T of(T a) const { return powr(0.5 * a + 0.5, 2.0) * by; } };
template <typename T> int sized(T a) { return sizeof(a * 0.5 + 0.25); }
float which(float) { return 1; }
float which(half) { return 2; }
template <typename T> float chosen(T) { return which(T(0) + 0.1); }
template <typename T> T sum(T a) { auto add = [](auto b) { return b + 0.1; }; return add(a); }
)");
}

TEST_F(Structure, TypesAreAskedAndChosen)
{
    expectValues(
        {
            {"twice(x)", {1.5f}},
            {"twice(7)", {70}},
            {"first(i)", {7}},
            {"is_same<make_scalar<half3>::type, half>::value && !is_same<int, uint>::value", {1}},
            {"conditional_t<true, int, float>(x + 0.5)", {1}},
            {"is_vector_v<float2> && !is_vector_v<float>", {1}},
        },
        R"(
#include <metal_type_traits>
template <typename T, typename = typename enable_if<is_floating_point<T>::value>::type> METAL_FUNC T twice(T a) { return a * 2; }
template <typename T, enable_if_t<is_integral_v<T>, int> = 0> METAL_FUNC T twice(T a) { return a * 10; }
template <typename T> make_scalar_t<T> first(T a) { return a.x; }
)");
}

TEST_F(Structure, HeadersSharedWithAHostAreUnderstood)
{
    expectValues({{"int(Second) + int(sizeof(Index))", {9}}, {"platform()", {1}}}, R"(
#include <TargetConditionals.h>
#ifdef __METAL_VERSION__
#define NS_ENUM(type, name) enum name : type name; enum name : type
typedef int NSInteger;
#endif
typedef NS_ENUM(NSInteger, Index) { First = 4, Second = 5 };
int platform() { return TARGET_OS_OSX && !TARGET_OS_IPHONE; }
)");
}

TEST_F(Structure, StagesMayBeNamedAsAttributes)
{
    const std::string source = std::string(Numbers) + R"(
[[vertex]] Corner in(uint id [[vertex_id]]) { return corner(id); }
[[fragment]] float4 out(Corner corner [[stage_in]]) { return float4(corner.position.x); }
)";
    EXPECT_EQ(draw(pipelineOf(compiled(source), "in", "out"), 2)[1][0], 1.5f);
}

TEST_F(Structure, KernelsBesideOtherFunctionsAreNamedAndNotMade)
{
    auto* library = compiled(std::string(Numbers) + R"(
kernel void add(device float* a [[buffer(0)]], uint n [[thread_position_in_grid]])
{
    threadgroup float shared[4];
    shared[n & 3] = a[n];
    threadgroup_barrier(mem_flags::mem_threadgroup);
    a[n] = shared[0];
}
fragment float4 out() { return float4(1); }
)");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->newFunction(device_test::text("add")), nullptr);
    EXPECT_EQ(draw(pipelineOf(library, "corner", "out"), 1)[0][0], 1);
}

TEST_F(Structure, DeviceBuffersAreReadAndWritten)
{
    const std::string source = std::string(Numbers) + R"(
struct Item { packed_float3 place; uint tag; };
fragment float4 copied(Corner corner [[stage_in]], const device Item* items [[buffer(4)]], device float* out [[buffer(5)]])
{
    uint at = uint(corner.position.x);
    const device Item& item = items[at];
    out[at] = item.place[0] * 10;
    return float4(item.place, float(item.tag));
}
)";
    struct Item
    {
        float place[3];
        uint32_t tag;
    };
    std::vector<Item> items = {{{1, 2, 3}, 4}, {{5, 6, 7}, 8}};
    auto* out = bufferOf(std::vector<float>{0, 0});
    auto values = draw(pipelineOf(compiled(source), "corner", "copied"), 2, 1, [&](auto* e) {
        e->setFragmentBuffer(bufferOf(items), 0, 4);
        e->setFragmentBuffer(out, 0, 5);
    });
    EXPECT_EQ(values[0], (Value{1, 2, 3, 4}));
    EXPECT_EQ(values[1], (Value{5, 6, 7, 8}));
    EXPECT_EQ(static_cast<float*>(out->contents())[0], 10);
    EXPECT_EQ(static_cast<float*>(out->contents())[1], 50);
}

} // namespace language_test
