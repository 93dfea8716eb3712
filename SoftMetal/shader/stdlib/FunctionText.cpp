// SPDX-License-Identifier: Apache-2.0
// The functions that exist for every width: written out per type, since templates would not accept a scalar where a
// vector is wanted.
#include "shader/stdlib/StandardHeader.h"

#include <array>
#include <string_view>

namespace softmetal::shader {
namespace {

constexpr std::string_view Letters = "xyzw";

std::string typeName(const std::string& scalar, int n) { return n == 1 ? scalar : scalar + std::to_string(n); }

/// The form once per component, '$' being ".x", ".y" and so on; for a scalar it is nothing.
std::string sumOf(int n, const std::string& form, const std::string& separator)
{
    std::string text;
    for (int i = 0; i < n; ++i) {
        if (i) text += separator;
        for (char c : form) {
            if (c != '$') text += c;
            else if (n > 1) text += std::string(".") + Letters[static_cast<size_t>(i)];
        }
    }
    return text;
}

/// A function of `arity` equal arguments, from its scalar form "f(a, b)"; half is computed as float.
std::string componentwise(const std::string& name, const std::string& scalar, int n, int arity, const std::string& expression,
                          const std::string& resultScalar = {})
{
    static constexpr std::array Names = {"a", "b", "c"};
    std::string type = typeName(scalar, n), arguments, text;
    for (int i = 0; i < arity; ++i) arguments += std::string(i ? ", " : "") + type + " " + Names[static_cast<size_t>(i)];
    std::string result = typeName(resultScalar.empty() ? scalar : resultScalar, n);
    text = "inline " + result + " " + name + "(" + arguments + ") { return " + result + "(";
    for (int i = 0; i < n; ++i) {
        std::string one = expression;
        for (int k = 0; k < arity; ++k) {
            std::string mark = std::string("$") + static_cast<char>('1' + k);
            std::string value = Names[static_cast<size_t>(k)];
            if (n > 1) value += std::string(".") + Letters[static_cast<size_t>(i)];
            if (scalar == "half") value = "(float)" + value;
            for (size_t at = one.find(mark); at != std::string::npos; at = one.find(mark)) one.replace(at, 2, value);
        }
        text += (i ? ", " : "") + (result == type && scalar == "half" ? "(half)(" + one + ")" : one);
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
    FloatFunction{"round", 1, "softmetal_math::round($1)"},
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
    FloatFunction{"sinpi", 1, "softmetal_math::sinpi($1)"},
    FloatFunction{"cospi", 1, "softmetal_math::cospi($1)"},
    FloatFunction{"tanpi", 1, "softmetal_math::tanpi($1)"},
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
    FloatFunction{"divide", 2, "($1 / $2)"},
    FloatFunction{"nextafter", 2, "softmetal_math::nextafter($1, $2)"},
    FloatFunction{"step", 2, "($2 < $1 ? 0.0f : 1.0f)"},
    FloatFunction{"fma", 3, "__builtin_fmaf($1, $2, $3)"},
    FloatFunction{"clamp", 3, "softmetal_math::min(softmetal_math::max($1, $2), $3)"},
    FloatFunction{"mix", 3, "($1 + ($2 - $1) * $3)"},
    FloatFunction{"min3", 3, "softmetal_math::min($1, softmetal_math::min($2, $3))"},
    FloatFunction{"fmin3", 3, "softmetal_math::min($1, softmetal_math::min($2, $3))"},
    FloatFunction{"max3", 3, "softmetal_math::max($1, softmetal_math::max($2, $3))"},
    FloatFunction{"fmax3", 3, "softmetal_math::max($1, softmetal_math::max($2, $3))"},
    FloatFunction{"median3", 3, "softmetal_math::max(softmetal_math::min($1, $2), softmetal_math::min(softmetal_math::max($1, $2), $3))"},
    FloatFunction{"fmedian3", 3, "softmetal_math::max(softmetal_math::min($1, $2), softmetal_math::min(softmetal_math::max($1, $2), $3))"},
};

/// Vector forms that take scalars for their last arguments.
std::string mixedForms(const std::string& scalar, int n)
{
    std::string v = typeName(scalar, n), s = scalar;
    return "inline " + v + " smoothstep(" + v + " low, " + v + " high, " + v + " x) { " + v + " t = saturate((x - low) / (high - low)); return t * t * (" +
           s + "(3) - " + s + "(2) * t); }\n";
}

/// Questions about one or two numbers, asked of the number as a float.
constexpr std::array FloatQuestions = {
    FloatFunction{"isnan", 1, "$1 != $1"},
    FloatFunction{"isinf", 1, "__builtin_fabsf($1) == __builtin_inff()"},
    FloatFunction{"isfinite", 1, "__builtin_fabsf($1) < __builtin_inff()"},
    FloatFunction{"isnormal", 1, "(__builtin_fabsf($1) < __builtin_inff() && __builtin_fabsf($1) >= 1.17549435e-38f)"},
    FloatFunction{"signbit", 1, "as_type<int>($1) < 0"},
    FloatFunction{"isordered", 2, "($1 == $1 && $2 == $2)"},
    FloatFunction{"isunordered", 2, "($1 != $1 || $2 != $2)"},
};

/// Functions whose arguments or results are of several types.
std::string irregularFunctions(const std::string& scalar, int n)
{
    std::string v = typeName(scalar, n), i = typeName("int", n);
    auto each = [&](const std::string& form) { return sumOf(n, form, ", "); };
    std::string assign = n == 1 ? "int e; a = softmetal_math::frexp((float)a, e); b = e; " : "", exponents;
    for (int k = 0; n > 1 && k < n; ++k) {
        std::string c(1, Letters[static_cast<size_t>(k)]), e = "e" + std::to_string(k);
        assign += "int " + e + "; a." + c + " = (" + scalar + ")softmetal_math::frexp((float)a." + c + ", " + e + "); b." + c + " = " + e + "; ";
    }
    return "inline " + v + " ldexp(" + v + " a, " + i + " b) { return " + v + "(" + each("(" + scalar + ")softmetal_math::ldexp((float)a$, b$)") + "); }\n" +
           "inline " + i + " ilogb(" + v + " a) { return " + i + "(" + each("softmetal_math::ilogb((float)a$)") + "); }\n" +
           "inline " + v + " frexp(" + v + " a, thread " + i + "& b) { " + assign + "return a; }\n" +
           "inline " + v + " sincos(" + v + " a, thread " + v + "& c) { c = cos(a); return sin(a); }\n" +
           "inline " + v + " modf(" + v + " a, thread " + v + "& whole) { whole = trunc(a); return a - whole; }\n";
}

std::string floatFunctions()
{
    std::string text;
    for (std::string scalar : {"float", "half"}) {
        for (int n = 1; n <= 4; ++n) {
            for (const FloatFunction& f : FloatFunctions) text += componentwise(f.name, scalar, n, f.arity, f.expression);
            for (const FloatFunction& f : FloatQuestions) text += componentwise(f.name, scalar, n, f.arity, f.expression, "bool");
            text += mixedForms(scalar, n) + irregularFunctions(scalar, n);
        }
    }
    return text;
}

std::string geometricFunctions()
{
    std::string text;
    for (std::string s : {"float", "half"}) {
        for (int n = 2; n <= 4; ++n) {
            std::string v = typeName(s, n);
            text += "inline " + s + " dot(" + v + " a, " + v + " b) { return " + sumOf(n, "a$ * b$", " + ") + "; }\n";
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

struct IntegerFunction
{
    const char* name;
    int arity;
    const char* expression; // T is the type itself
    bool wide;              // of 32 bits only
};

constexpr std::array IntegerFunctions = {
    IntegerFunction{"min", 2, "($2 < $1 ? $2 : $1)", false},
    IntegerFunction{"max", 2, "($1 < $2 ? $2 : $1)", false},
    IntegerFunction{"min3", 3, "min($1, min($2, $3))", false},
    IntegerFunction{"max3", 3, "max($1, max($2, $3))", false},
    IntegerFunction{"median3", 3, "max(min($1, $2), min(max($1, $2), $3))", false},
    IntegerFunction{"clamp", 3, "($1 < $2 ? $2 : ($3 < $1 ? $3 : $1))", false},
    IntegerFunction{"abs", 1, "(T)($1 < 0 ? -$1 : $1)", false},
    IntegerFunction{"addsat", 2, "softmetal_math::saturated<T>((long)$1 + (long)$2)", false},
    IntegerFunction{"subsat", 2, "softmetal_math::saturated<T>((long)$1 - (long)$2)", false},
    IntegerFunction{"hadd", 2, "(T)(((long)$1 + (long)$2) >> 1)", false},
    IntegerFunction{"rhadd", 2, "(T)(((long)$1 + (long)$2 + 1) >> 1)", false},
    IntegerFunction{"absdiff", 2, "(T)($1 < $2 ? $2 - $1 : $1 - $2)", false},
    IntegerFunction{"popcount", 1, "(T)__builtin_popcount((uint)$1 & (uint)((1ul << (8 * sizeof(T))) - 1))", false},
    IntegerFunction{"clz", 1, "(T)softmetal_math::leading_zeros((ulong)$1, (int)sizeof(T) * 8)", false},
    IntegerFunction{"ctz", 1, "(T)softmetal_math::trailing_zeros((uint)$1, (int)sizeof(T) * 8)", false},
    IntegerFunction{"reverse_bits", 1, "(T)(__builtin_bitreverse32((uint)$1) >> (32 - 8 * sizeof(T)))", false},
    IntegerFunction{"mulhi", 2, "softmetal_math::high<T>($1, $2)", false},
    IntegerFunction{"madhi", 3, "(T)(softmetal_math::high<T>($1, $2) + $3)", false},
    IntegerFunction{"madsat", 3, "softmetal_math::madsat<T>($1, $2, $3)", false},
    IntegerFunction{"mul24", 2, "($1 * $2)", true},
    IntegerFunction{"mad24", 3, "($1 * $2 + $3)", true},
    IntegerFunction{"rotate", 2, "softmetal_math::rotate<T>($1, $2)", false},
};

std::string integerFunctions()
{
    std::string text;
    for (std::string s : {"int", "uint", "short", "ushort", "char", "uchar"})
        for (const IntegerFunction& f : IntegerFunctions) {
            if (f.wide && s != "int" && s != "uint") continue;
            std::string expression;
            for (std::string_view rest = f.expression; !rest.empty(); rest.remove_prefix(1)) expression += rest[0] == 'T' ? s : std::string(1, rest[0]);
            for (int n = 1; n <= 4; ++n) text += componentwise(f.name, s, n, f.arity, expression);
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

} // namespace

std::string functionText()
{
    return "namespace metal {\n" + floatFunctions() + geometricFunctions() + integerFunctions() + relationalFunctions() + "}\n";
}

} // namespace softmetal::shader
