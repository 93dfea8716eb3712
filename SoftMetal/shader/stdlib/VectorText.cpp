// SPDX-License-Identifier: Apache-2.0
// Vector classes. Components are plain members; every swizzle is a property, so that it has the vector type itself
// wherever it is read (as an argument, below another swizzle) and can be assigned when no letter repeats.
#include "shader/stdlib/StandardHeader.h"

#include <array>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace softmetal::shader
{
namespace
{

constexpr std::string_view Letters = "xyzw", Colors = "rgba";

std::string letters(const std::string& indices, std::string_view alphabet)
{
    std::string result;
    for (char c : indices)
        result += alphabet[static_cast<size_t>(c - '0')];
    return result;
}

/// All strings of the given length over the digits below n.
std::vector<std::string> combinations(int n, int length)
{
    std::vector<std::string> result = {""};
    for (int i = 0; i < length; ++i) {
        std::vector<std::string> longer;
        for (const std::string& s : result)
            for (int d = 0; d < n; ++d)
                longer.push_back(s + static_cast<char>('0' + d));
        result = longer;
    }
    return result;
}

std::string swizzle(const std::string& indices)
{
    std::string name = letters(indices, Letters), type = "vec<T, " + std::to_string(indices.size()) + ">";
    bool writable = std::set<char>(indices.begin(), indices.end()).size() == indices.size();
    std::string get = "constexpr " + type + " softmetal_get_" + name + "() const { return " + type + "(";
    std::string put = "constexpr void softmetal_put_" + name + "(" + type + " softmetal_v) { ";
    for (size_t i = 0; i < indices.size(); ++i) {
        std::string component(1, name[i]);
        get += (i ? ", " : "") + component;
        put += component + " = softmetal_v." + Letters[i] + "; ";
    }
    std::string text = get + "); }\n" + (writable ? put + "}\n" : "");
    std::string access = "__declspec(property(get = softmetal_get_" + name +
                         (writable ? ", put = softmetal_put_" + name : "") + ")) " + type + " ";
    return text + access + name + ";\n" + access + letters(indices, Colors) + ";\n";
}

/// The components and their other names. All members have names: clang looks for an instantiated member without one by
/// walking over all of them, which for a few hundred swizzles costs more than a whole small program.
std::string components(int n)
{
    std::string names, colors;
    for (int i = 0; i < n; ++i) {
        const std::string name(1, Letters[static_cast<size_t>(i)]), color(1, Colors[static_cast<size_t>(i)]);
        names += (i ? ", " : "") + name;
        colors += "constexpr T softmetal_get_" + name + "() const { return " + name + "; }\n";
        colors += "constexpr void softmetal_put_" + name + "(T softmetal_v) { " + name + " = softmetal_v; }\n";
        colors += "__declspec(property(get = softmetal_get_" + name + ", put = softmetal_put_" + name + ")) T " +
                  color + ";\n";
    }
    return "T " + names + ";\n" + colors;
}

std::string swizzles(int n)
{
    std::string text;
    for (int length = 2; length <= 4; ++length)
        for (const std::string& indices : combinations(n, length))
            text += swizzle(indices);
    return text;
}

/// One constructor for each way to cut n components into arguments of one to n - 1 components.
void partitions(int n, const std::string& parts, std::vector<std::string>& out)
{
    if (n == 0) return out.push_back(parts);
    for (int size = 1; size <= n; ++size)
        partitions(n - size, parts + static_cast<char>('0' + size), out);
}

std::string constructors(int n)
{
    std::vector<std::string> cuts;
    partitions(n, "", cuts);
    std::string text;
    for (const std::string& cut : cuts) {
        if (cut.size() == 1) continue;
        std::string arguments, initial;
        int component = 0;
        for (size_t a = 0; a < cut.size(); ++a) {
            int size = cut[a] - '0';
            std::string name = "softmetal_" + std::string(1, static_cast<char>('a' + a));
            arguments += (a ? ", " : "") +
                         (size == 1 ? std::string("T ") : "const vec<T, " + std::to_string(size) + ">& ") + name;
            for (int i = 0; i < size; ++i, ++component)
                initial += std::string(component ? ", " : "") + Letters[static_cast<size_t>(component)] + "(" + name +
                           (size == 1 ? "" : std::string(".") + Letters[static_cast<size_t>(i)]) + ")";
        }
        text += "constexpr vec(" + arguments + ") : " + initial + " {}\n";
    }
    return text;
}

std::string perComponent(int n, const std::string& before, const std::string& between, const std::string& separator)
{
    std::string text;
    for (int i = 0; i < n; ++i) {
        std::string c(1, Letters[static_cast<size_t>(i)]);
        text += (i ? separator : "") + before + "a." + c + (between.empty() ? "" : between + "b." + c);
    }
    return text;
}

std::string operators(int n)
{
    static constexpr std::array Arithmetic = {"+", "-", "*", "/", "%", "&", "|", "^", "<<", ">>"};
    static constexpr std::array Comparisons = {"==", "!=", "<", ">", "<=", ">=", "&&", "||"};
    std::string flags = "vec<bool, " + std::to_string(n) + ">", text;
    for (std::string op : Arithmetic) {
        std::string cast = "(T)(";
        std::string values;
        for (int i = 0; i < n; ++i) {
            std::string c(1, Letters[static_cast<size_t>(i)]);
            values += (i ? ", " : "") + cast + "a." + c + " " + op + " b." + c + ")";
        }
        text += "friend constexpr vec operator" + op + "(const vec& a, const vec& b) { return vec(" + values + "); }\n";
        text += "vec& operator" + op + "=(const vec& b) { return *this = *this " + op + " b; }\n";
    }
    for (std::string op : Comparisons)
        text += "friend constexpr " + flags + " operator" + op + "(const vec& a, const vec& b) { return " + flags +
                "(" + perComponent(n, "", " " + op + " ", ", ") + "); }\n";
    for (std::string op : {"-", "~", "+"}) {
        std::string values;
        for (int i = 0; i < n; ++i)
            values += std::string(i ? ", " : "") + "(T)(" + op + "a." + Letters[static_cast<size_t>(i)] + ")";
        text += "friend constexpr vec operator" + op + "(const vec& a) { return vec(" + values + "); }\n";
    }
    text += "friend constexpr " + flags + " operator!(const vec& a) { return " + flags + "(" +
            perComponent(n, "!", "", ", ") + "); }\n";
    text += "vec& operator++() { return *this += vec(T(1)); }\nvec& operator--() { return *this -= vec(T(1)); }\n"
            "vec operator++(int) { vec before = *this; ++*this; return before; }\nvec operator--(int) { vec before = "
            "*this; --*this; return before; }\n";
    return text;
}

std::string vectorClass(int n)
{
    std::string splat, convert, count = std::to_string(n);
    for (int i = 0; i < n; ++i) {
        std::string separator = i ? ", " : "";
        auto at = static_cast<size_t>(i);
        splat += separator + Letters[at] + "(softmetal_s)";
        convert += separator + Letters[at] + "((T)softmetal_o." + Letters[at] + ")";
    }
    std::string shortened; // of a longer vector the first components
    for (int longer = n + 1; longer <= 4; ++longer) {
        std::string first;
        for (int i = 0; i < n; ++i) {
            const std::string letter(1, Letters[static_cast<size_t>(i)]);
            first += (i ? ", " : "") + letter + "((T)softmetal_o." + letter + ")";
        }
        shortened += "template <typename F> constexpr explicit vec(const vec<F, " + std::to_string(longer) +
                     ">& softmetal_o) : " + first + " {}\n";
    }
    std::string alignment = "sizeof(T) * " + std::to_string(n == 3 ? 4 : n);
    return "template <typename T> struct alignas(" + alignment + ") vec<T, " + count + ">\n{\n" + components(n) +
           "vec() = default;\nconstexpr vec(T softmetal_s) : " + splat + " {}\n" + constructors(n) +
           "template <typename F> constexpr explicit vec(const vec<F, " + count + ">& softmetal_o) : " + convert +
           " {}\n" + shortened +
           "T& operator[](int i) { return (&x)[i]; }\nconst T& operator[](int i) const { return (&x)[i]; }\n" +
           swizzles(n) + operators(n) + "};\n";
}

/// Vectors without padding: what they hold is read and written as it is, and arithmetic is that of the vector type.
std::string packedClass(int n)
{
    std::string count = std::to_string(n), vector = "vec<T, " + count + ">", packed = "const packed_vec& ",
                other = "const " + vector + "& ";
    std::string values, copied, text;
    for (int i = 0; i < n; ++i) {
        std::string separator = i ? ", " : "", letter(1, Letters[static_cast<size_t>(i)]);
        values += separator + letter;
        copied += separator + letter + "(softmetal_v." + letter + ")";
    }
    std::string constructed = constructors(n); // of the same parts as the vector's
    for (size_t at = constructed.find("constexpr vec("); at != std::string::npos;
         at = constructed.find("constexpr vec(", at))
        constructed.replace(at, 14, "constexpr packed_vec(");
    text = "template <typename T> struct packed_vec<T, " + count + ">\n{\n" + components(n) +
           "packed_vec() = default;\nconstexpr packed_vec(" + other + "softmetal_v) : " + copied + " {}\n" +
           constructed + "constexpr operator " + vector + "() const { return " + vector + "(" + values + "); }\n" +
           "T& operator[](int i) { return (&x)[i]; }\nconst T& operator[](int i) const { return (&x)[i]; }\n" +
           swizzles(n);
    for (std::string op : {"+", "-", "*", "/"}) {
        for (const auto& [left, right] :
             {std::pair(packed, packed), std::pair(packed, other), std::pair(other, packed)})
            text += "friend constexpr " + vector + " operator" + op + "(" + left + "a, " + right + "b) { return " +
                    vector + "(a) " + op + " " + vector + "(b); }\n";
        text +=
            "packed_vec& operator" + op + "=(" + other + "b) { return *this = " + vector + "(*this) " + op + " b; }\n";
    }
    for (std::string op : {"==", "!=", "<", ">", "<=", ">="})
        text += "friend constexpr vec<bool, " + count + "> operator" + op + "(" + packed + "a, " + packed +
                "b) { return " + vector + "(a) " + op + " " + vector + "(b); }\n";
    return text + "friend constexpr " + vector + " operator-(" + packed + "a) { return -" + vector + "(a); }\n};\n";
}

constexpr std::array Scalars = {"bool", "char", "uchar", "short", "ushort", "int",
                                "uint", "half", "float", "long",  "ulong"};

} // namespace

std::string vectorText()
{
    std::string text = "namespace softmetal_types {\ntemplate <typename T, int N> struct vec;\n";
    for (int n = 2; n <= 4; ++n)
        text += vectorClass(n);
    text += "template <typename T, int N> struct packed_vec;\n";
    for (int n = 2; n <= 4; ++n)
        text += packedClass(n);
    text += "}\n";
    std::string inside;
    for (std::string scalar : Scalars) {
        for (int n = 2; n <= 4; ++n) {
            std::string name = scalar + std::to_string(n);
            text += "typedef softmetal_types::vec<" + scalar + ", " + std::to_string(n) + "> " + name + ";\n";
            text += "typedef " + name + " simd_" + name + ";\ntypedef " + name + " vector_" + name + ";\n";
            inside += "using ::" + name + ";\n";
        }
    }
    for (std::string scalar : {"float", "half", "int", "uint", "short", "ushort", "char", "uchar"}) {
        for (int n = 2; n <= 4; ++n) {
            std::string packed = "packed_" + scalar + std::to_string(n);
            text += "typedef softmetal_types::packed_vec<" + scalar + ", " + std::to_string(n) + "> " + packed + ";\n";
            inside += "using ::" + packed + ";\n";
        }
    }
    return text +
           "namespace metal {\nusing softmetal_types::vec;\nusing ::half;\nusing ::uint;\nusing ::uchar;\nusing "
           "::ushort;\nusing ::as_type;\n" +
           inside + "}\nnamespace simd {\n" + inside + "}\n";
}

} // namespace softmetal::shader
