// SPDX-License-Identifier: Apache-2.0
// Matrices, and the functions that exist for every width: written out per type, since templates would not accept a
// scalar where a vector is wanted.
#include "shader/stdlib/StandardHeader.h"

#include <array>
#include <string_view>

namespace softmetal::shader {
namespace {

constexpr std::string_view Letters = "xyzw";

std::string typeName(const std::string& scalar, int n) { return n == 1 ? scalar : scalar + std::to_string(n); }

/// A function of `arity` equal arguments, from its scalar form "f(a, b)"; half is computed as float.
std::string componentwise(const std::string& name, const std::string& scalar, int n, int arity, const std::string& expression)
{
    static constexpr std::array Names = {"a", "b", "c"};
    std::string type = typeName(scalar, n), arguments, text;
    for (int i = 0; i < arity; ++i) arguments += std::string(i ? ", " : "") + type + " " + Names[static_cast<size_t>(i)];
    text = "inline " + type + " " + name + "(" + arguments + ") { return " + type + "(";
    for (int i = 0; i < n; ++i) {
        std::string one = expression;
        for (int k = 0; k < arity; ++k) {
            std::string mark = std::string("$") + static_cast<char>('1' + k);
            std::string value = Names[static_cast<size_t>(k)];
            if (n > 1) value += std::string(".") + Letters[static_cast<size_t>(i)];
            if (scalar == "half") value = "(float)" + value;
            for (size_t at = one.find(mark); at != std::string::npos; at = one.find(mark)) one.replace(at, 2, value);
        }
        text += (i ? ", " : "") + (scalar == "half" ? "(half)(" + one + ")" : one);
    }
    return text + "); }\n";
}

struct FloatFunction
{
    const char* name;
    int arity;
    const char* expression; // of $1, $2, $3, single precision
};

constexpr std::array FloatFunctions = {
    FloatFunction{"abs", 1, "__builtin_fabsf($1)"},
    FloatFunction{"fabs", 1, "__builtin_fabsf($1)"},
    FloatFunction{"floor", 1, "__builtin_floorf($1)"},
    FloatFunction{"ceil", 1, "__builtin_ceilf($1)"},
    FloatFunction{"trunc", 1, "__builtin_truncf($1)"},
    FloatFunction{"rint", 1, "__builtin_rintf($1)"},
    FloatFunction{"round", 1, "__builtin_copysignf(__builtin_floorf(__builtin_fabsf($1) + 0.5f), $1)"},
    FloatFunction{"sqrt", 1, "__builtin_sqrtf($1)"},
    FloatFunction{"rsqrt", 1, "(1.0f / __builtin_sqrtf($1))"},
    FloatFunction{"fract", 1, "softmetal_math::fract($1)"},
    FloatFunction{"sign", 1, "softmetal_math::sign($1)"},
    FloatFunction{"saturate", 1, "softmetal_math::min(softmetal_math::max($1, 0.0f), 1.0f)"},
    FloatFunction{"exp", 1, "softmetal_math::exp($1)"},
    FloatFunction{"exp2", 1, "softmetal_math::exp2($1)"},
    FloatFunction{"exp10", 1, "softmetal_math::exp10($1)"},
    FloatFunction{"log", 1, "softmetal_math::log($1)"},
    FloatFunction{"log2", 1, "softmetal_math::log2($1)"},
    FloatFunction{"log10", 1, "softmetal_math::log10($1)"},
    FloatFunction{"sin", 1, "softmetal_math::sin($1)"},
    FloatFunction{"cos", 1, "softmetal_math::cos($1)"},
    FloatFunction{"tan", 1, "softmetal_math::tan($1)"},
    FloatFunction{"asin", 1, "softmetal_math::asin($1)"},
    FloatFunction{"acos", 1, "softmetal_math::acos($1)"},
    FloatFunction{"atan", 1, "softmetal_math::atan($1)"},
    FloatFunction{"sinh", 1, "softmetal_math::sinh($1)"},
    FloatFunction{"cosh", 1, "softmetal_math::cosh($1)"},
    FloatFunction{"tanh", 1, "softmetal_math::tanh($1)"},
    FloatFunction{"asinh", 1, "softmetal_math::asinh($1)"},
    FloatFunction{"acosh", 1, "softmetal_math::acosh($1)"},
    FloatFunction{"atanh", 1, "softmetal_math::atanh($1)"},
    FloatFunction{"dfdx", 1, "softmetal_dfdx($1)"},
    FloatFunction{"dfdy", 1, "softmetal_dfdy($1)"},
    FloatFunction{"fwidth", 1, "(__builtin_fabsf(softmetal_dfdx($1)) + __builtin_fabsf(softmetal_dfdy($1)))"},
    FloatFunction{"atan2", 2, "softmetal_math::atan2($1, $2)"},
    FloatFunction{"pow", 2, "softmetal_math::pow($1, $2)"},
    FloatFunction{"powr", 2, "softmetal_math::powr($1, $2)"},
    FloatFunction{"fmod", 2, "softmetal_math::fmod($1, $2)"},
    FloatFunction{"min", 2, "softmetal_math::min($1, $2)"},
    FloatFunction{"max", 2, "softmetal_math::max($1, $2)"},
    FloatFunction{"fmin", 2, "softmetal_math::min($1, $2)"},
    FloatFunction{"fmax", 2, "softmetal_math::max($1, $2)"},
    FloatFunction{"fdim", 2, "softmetal_math::max($1 - $2, 0.0f)"},
    FloatFunction{"copysign", 2, "__builtin_copysignf($1, $2)"},
    FloatFunction{"step", 2, "($2 < $1 ? 0.0f : 1.0f)"},
    FloatFunction{"fma", 3, "__builtin_fmaf($1, $2, $3)"},
    FloatFunction{"clamp", 3, "softmetal_math::min(softmetal_math::max($1, $2), $3)"},
    FloatFunction{"mix", 3, "($1 + ($2 - $1) * $3)"},
    FloatFunction{"median3", 3, "softmetal_math::max(softmetal_math::min($1, $2), softmetal_math::min(softmetal_math::max($1, $2), $3))"},
};

/// Vector forms that take scalars for their last arguments.
std::string mixedForms(const std::string& scalar, int n)
{
    std::string v = typeName(scalar, n), s = scalar;
    return "inline " + v + " smoothstep(" + v + " low, " + v + " high, " + v + " x) { " + v + " t = saturate((x - low) / (high - low)); return t * t * (" +
           s + "(3) - " + s + "(2) * t); }\n";
}

std::string floatFunctions()
{
    std::string text;
    for (std::string scalar : {"float", "half"}) {
        for (int n = 1; n <= 4; ++n) {
            for (const FloatFunction& f : FloatFunctions) text += componentwise(f.name, scalar, n, f.arity, f.expression);
            text += mixedForms(scalar, n);
            std::string v = typeName(scalar, n), flags = typeName("bool", n), i = typeName("int", n);
            std::string parts, nan, inf, scaled;
            for (int k = 0; k < n; ++k) {
                std::string c = n > 1 ? std::string(".") + Letters[static_cast<size_t>(k)] : "", separator = k ? ", " : "";
                nan += separator + "a" + c + " != a" + c;
                inf += separator + "__builtin_fabsf((float)a" + c + ") == __builtin_inff()";
                scaled += separator + "(" + scalar + ")softmetal_math::ldexp((float)a" + c + ", b" + c + ")";
            }
            text += "inline " + flags + " isnan(" + v + " a) { return " + flags + "(" + nan + "); }\n";
            text += "inline " + flags + " isinf(" + v + " a) { return " + flags + "(" + inf + "); }\n";
            text += "inline " + v + " ldexp(" + v + " a, " + i + " b) { return " + v + "(" + scaled + "); }\n";
            text += "inline " + v + " sincos(" + v + " a, thread " + v + "& c) { c = cos(a); return sin(a); }\n";
            text += "inline " + v + " modf(" + v + " a, thread " + v + "& whole) { whole = trunc(a); return a - whole; }\n";
        }
    }
    return text;
}

std::string sum(int n, const std::string& term)
{
    std::string text;
    for (int i = 0; i < n; ++i) {
        std::string one = term;
        for (size_t at = one.find('$'); at != std::string::npos; at = one.find('$')) one.replace(at, 1, std::string(1, Letters[static_cast<size_t>(i)]));
        text += (i ? " + " : "") + one;
    }
    return text;
}

std::string geometricFunctions()
{
    std::string text;
    for (std::string s : {"float", "half"}) {
        for (int n = 2; n <= 4; ++n) {
            std::string v = typeName(s, n);
            text += "inline " + s + " dot(" + v + " a, " + v + " b) { return " + sum(n, "a.$ * b.$") + "; }\n";
            text += "inline " + s + " length_squared(" + v + " a) { return dot(a, a); }\n";
            text += "inline " + s + " length(" + v + " a) { return sqrt(dot(a, a)); }\n";
            text += "inline " + s + " distance(" + v + " a, " + v + " b) { return length(a - b); }\n";
            text += "inline " + s + " distance_squared(" + v + " a, " + v + " b) { return length_squared(a - b); }\n";
            text += "inline " + v + " normalize(" + v + " a) { return a * rsqrt(dot(a, a)); }\n";
            text += "inline " + v + " faceforward(" + v + " n, " + v + " i, " + v + " r) { return dot(r, i) < " + s + "(0) ? n : -n; }\n";
            text += "inline " + v + " reflect(" + v + " i, " + v + " n) { return i - n * (" + s + "(2) * dot(n, i)); }\n";
            text += "inline " + v + " refract(" + v + " i, " + v + " n, " + s + " eta) { " + s + " d = dot(n, i), k = " + s + "(1) - eta * eta * (" +
                    s + "(1) - d * d); return k < " + s + "(0) ? " + v + "(" + s + "(0)) : i * eta - n * (eta * d + sqrt(k)); }\n";
        }
        std::string v = typeName(s, 3);
        text += "inline " + v + " cross(" + v + " a, " + v + " b) { return " + v +
                "(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x); }\n";
    }
    return text;
}

std::string integerFunctions()
{
    std::string text;
    for (std::string s : {"int", "uint", "short", "ushort", "char", "uchar"}) {
        bool isSigned = s[0] != 'u';
        for (int n = 1; n <= 4; ++n) {
            text += componentwise("min", s, n, 2, "($2 < $1 ? $2 : $1)");
            text += componentwise("max", s, n, 2, "($1 < $2 ? $2 : $1)");
            text += componentwise("clamp", s, n, 3, "($1 < $2 ? $2 : ($3 < $1 ? $3 : $1))");
            text += componentwise("abs", s, n, 1, isSigned ? "(" + s + ")($1 < 0 ? -$1 : $1)" : "$1");
            if (s != "int" && s != "uint") continue;
            text += componentwise("popcount", s, n, 1, "(" + s + ")__builtin_popcount((uint)$1)");
            text += componentwise("clz", s, n, 1, "(" + s + ")((uint)$1 == 0u ? 32 : __builtin_clz((uint)$1))");
            text += componentwise("ctz", s, n, 1, "(" + s + ")((uint)$1 == 0u ? 32 : __builtin_ctz((uint)$1))");
            text += componentwise("reverse_bits", s, n, 1, "(" + s + ")__builtin_bitreverse32((uint)$1)");
            text += componentwise("mulhi", s, n, 2, s == "int" ? "(int)(((long)$1 * (long)$2) >> 32)" : "(uint)(((ulong)$1 * (ulong)$2) >> 32)");
            text += componentwise("rotate", s, n, 2, "(" + s + ")(((uint)$1 << ((uint)$2 & 31u)) | ((uint)$1 >> ((32u - (uint)$2) & 31u)))");
        }
    }
    return text;
}

std::string relationalFunctions()
{
    std::string text = "inline bool any(bool a) { return a; }\ninline bool all(bool a) { return a; }\n";
    for (int n = 2; n <= 4; ++n) {
        std::string b = typeName("bool", n), anyOf, allOf;
        for (int i = 0; i < n; ++i) {
            anyOf += std::string(i ? " || a." : "a.") + Letters[static_cast<size_t>(i)];
            allOf += std::string(i ? " && a." : "a.") + Letters[static_cast<size_t>(i)];
        }
        text += "inline bool any(" + b + " a) { return " + anyOf + "; }\ninline bool all(" + b + " a) { return " + allOf + "; }\n";
    }
    for (std::string s : {"float", "half", "int", "uint", "short", "ushort", "bool"}) {
        text += "inline " + s + " select(" + s + " a, " + s + " b, bool c) { return c ? b : a; }\n";
        for (int n = 2; n <= 4; ++n) {
            std::string v = typeName(s, n), parts;
            for (int i = 0; i < n; ++i) {
                std::string c = std::string(".") + Letters[static_cast<size_t>(i)];
                parts += (i ? ", c" : "c") + c + " ? b" + c + " : a" + c;
            }
            text += "inline " + v + " select(" + v + " a, " + v + " b, " + typeName("bool", n) + " c) { return " + v + "(" + parts + "); }\n";
        }
    }
    return text;
}

std::string matrixClass(int columns, int rows)
{
    std::string c = std::to_string(columns), r = std::to_string(rows), column = "vec<T, " + r + ">";
    std::string parameters, copies, diagonal, scalars, scalarCopies, product, transposed;
    for (int i = 0; i < columns; ++i) {
        std::string at = std::to_string(i), separator = i ? ", " : "";
        parameters += separator + "const " + column + "& c" + at;
        copies += separator + "c" + at;
        std::string diagonalColumn, scalarColumn;
        for (int k = 0; k < rows; ++k) {
            diagonalColumn += std::string(k ? ", " : "") + (k == i ? "s" : "T(0)");
            std::string name = "m" + at + std::to_string(k);
            scalars += (i + k ? ", T " : "T ") + name;
            scalarColumn += (k ? ", " : "") + name;
        }
        diagonal += separator + column + "(" + diagonalColumn + ")";
        scalarCopies += separator + column + "(" + scalarColumn + ")";
        product += (i ? " + m.columns[" : "m.columns[") + at + "] * v." + Letters[static_cast<size_t>(i)];
    }
    std::string rowProduct, matrixType = "matrix<T, " + c + ", " + r + ">";
    for (int i = 0; i < columns; ++i) {
        std::string terms;
        for (int k = 0; k < rows; ++k)
            terms += std::string(k ? " + v." : "v.") + Letters[static_cast<size_t>(k)] + " * m.columns[" + std::to_string(i) + "]." + Letters[static_cast<size_t>(k)];
        rowProduct += (i ? ", " : "") + terms;
    }
    std::string each[4];
    const char* forms[4] = {"a.columns[$] + b.columns[$]", "a.columns[$] - b.columns[$]", "a.columns[$] * s", "-a.columns[$]"};
    for (int f = 0; f < 4; ++f)
        for (int i = 0; i < columns; ++i) {
            std::string one = forms[f];
            for (size_t at = one.find('$'); at != std::string::npos; at = one.find('$')) one.replace(at, 1, std::to_string(i));
            each[f] += (i ? ", " : "") + one;
        }
    return "template <typename T> struct matrix<T, " + c + ", " + r + ">\n{\n" + column + " columns[" + c + "];\nmatrix() = default;\n" +
           "constexpr explicit matrix(T s) : columns{" + diagonal + "} {}\nconstexpr matrix(" + parameters + ") : columns{" + copies + "} {}\n" +
           "constexpr matrix(" + scalars + ") : columns{" + scalarCopies + "} {}\n" + column + "& operator[](int i) { return columns[i]; }\nconst " +
           column + "& operator[](int i) const { return columns[i]; }\n" + "friend matrix operator+(const matrix& a, const matrix& b) { return matrix(" +
           each[0] + "); }\nfriend matrix operator-(const matrix& a, const matrix& b) { return matrix(" + each[1] +
           "); }\nfriend matrix operator*(const matrix& a, T s) { return matrix(" + each[2] + "); }\nfriend matrix operator*(T s, const matrix& a) { return matrix(" +
           each[2] + "); }\nfriend matrix operator-(const matrix& a) { return matrix(" + each[3] + "); }\nfriend " + column +
           " operator*(const matrix& m, const vec<T, " + c + ">& v) { return " + product + "; }\nfriend vec<T, " + c + "> operator*(const " + column +
           "& v, const matrix& m) { return vec<T, " + c + ">(" + rowProduct + "); }\n};\n";
}

} // namespace

std::string matrixText()
{
    std::string text = "template <typename T, int C, int R> struct matrix;\n", inside;
    for (int c = 2; c <= 4; ++c)
        for (int r = 2; r <= 4; ++r) text += matrixClass(c, r);
    text += "template <typename T, int C, int R, int K> inline matrix<T, K, R> operator*(const matrix<T, C, R>& a, const matrix<T, K, C>& b) "
            "{ matrix<T, K, R> result; for (int i = 0; i < K; ++i) result.columns[i] = a * b.columns[i]; return result; }\n";
    for (std::string s : {"float", "half"})
        for (int c = 2; c <= 4; ++c)
            for (int r = 2; r <= 4; ++r) {
                std::string name = s + std::to_string(c) + "x" + std::to_string(r);
                text += "typedef matrix<" + s + ", " + std::to_string(c) + ", " + std::to_string(r) + "> " + name + ";\n";
                inside += "using ::" + name + ";\n";
            }
    return text + "namespace metal {\nusing ::matrix;\n" + inside + "}\n";
}

std::string functionText()
{
    return "namespace metal {\n" + floatFunctions() + geometricFunctions() + integerFunctions() + relationalFunctions() +
           "template <typename T, int C, int R> inline matrix<T, R, C> transpose(const matrix<T, C, R>& m) { matrix<T, R, C> t; "
           "for (int c = 0; c < C; ++c) for (int r = 0; r < R; ++r) t.columns[r][c] = m.columns[c][r]; return t; }\n"
           "template <typename T> inline T determinant(const matrix<T, 2, 2>& m) { return m[0].x * m[1].y - m[1].x * m[0].y; }\n"
           "template <typename T> inline T determinant(const matrix<T, 3, 3>& m) { return dot(m[0], cross(m[1], m[2])); }\n"
           "template <typename T> inline T determinant(const matrix<T, 4, 4>& m) { T s0 = m[0].x * m[1].y - m[1].x * m[0].y, "
           "s1 = m[0].x * m[1].z - m[1].x * m[0].z, s2 = m[0].x * m[1].w - m[1].x * m[0].w, s3 = m[0].y * m[1].z - m[1].y * m[0].z, "
           "s4 = m[0].y * m[1].w - m[1].y * m[0].w, s5 = m[0].z * m[1].w - m[1].z * m[0].w, c5 = m[2].z * m[3].w - m[3].z * m[2].w, "
           "c4 = m[2].y * m[3].w - m[3].y * m[2].w, c3 = m[2].y * m[3].z - m[3].y * m[2].z, c2 = m[2].x * m[3].w - m[3].x * m[2].w, "
           "c1 = m[2].x * m[3].z - m[3].x * m[2].z, c0 = m[2].x * m[3].y - m[3].x * m[2].y; "
           "return s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0; }\n"
           "template <typename T, int N> struct array { T softmetal_items[N]; T& operator[](int i) { return softmetal_items[i]; } "
           "const T& operator[](int i) const { return softmetal_items[i]; } int size() const { return N; } };\n"
           "}\n";
}

} // namespace softmetal::shader
