// SPDX-License-Identifier: Apache-2.0
// Matrix classes of two to four columns and rows.
#include "shader/stdlib/StandardHeader.h"

#include <string_view>

namespace softmetal::shader {
namespace {

constexpr std::string_view Letters = "xyzw";

/// The form once for each i below n, with i for '$' and its letter for '@'.
std::string each(int n, std::string_view form, std::string_view separator = ", ")
{
    std::string text;
    for (int i = 0; i < n; ++i) {
        if (i) text += separator;
        for (char c : form) {
            if (c == '$') text += std::to_string(i);
            else if (c == '@') text += Letters[static_cast<size_t>(i)];
            else text += c;
        }
    }
    return text;
}

/// Constructors from a scalar for the diagonal, from columns, from scalars, and from a matrix of another type.
std::string constructors(int columns, int rows, const std::string& column)
{
    std::string diagonal, scalars, fromScalars;
    for (int i = 0; i < columns; ++i) {
        std::string at = std::to_string(i), values, names;
        for (int k = 0; k < rows; ++k) values += std::string(k ? ", " : "") + (k == i ? "s" : "T(0)");
        diagonal += (i ? ", " : "") + column + "(" + values + ")";
        scalars += (i ? ", " : "") + each(rows, "T m" + at + "$");
        fromScalars += (i ? ", " : "") + column + "(" + each(rows, "m" + at + "$") + ")";
    }
    std::string shape = std::to_string(columns) + ", " + std::to_string(rows);
    return "matrix() = default;\nconstexpr explicit matrix(T s) : columns{" + diagonal + "} {}\n" +
           "constexpr matrix(" + each(columns, "const " + column + "& c$") + ") : columns{" + each(columns, "c$") + "} {}\n" +
           "constexpr matrix(" + scalars + ") : columns{" + fromScalars + "} {}\n" +
           "template <typename F> constexpr explicit matrix(const matrix<F, " + shape + ">& o) : columns{" + each(columns, column + "(o.columns[$])") +
           "} {}\n" + "constexpr " + column + "& operator[](int i) { return columns[i]; }\n" +
           "constexpr const " + column + "& operator[](int i) const { return columns[i]; }\n";
}

std::string operators(int columns, int rows, const std::string& column)
{
    std::string rowVector = "vec<T, " + std::to_string(columns) + ">", row;
    for (int i = 0; i < columns; ++i) row += (i ? ", " : "") + each(rows, "v.@ * m.columns[" + std::to_string(i) + "].@", " + ");
    auto binary = [&](const char* op, const char* left, const char* right, const char* form) {
        return std::string("friend constexpr matrix operator") + op + "(" + left + ", " + right + ") { return matrix(" + each(columns, form) + "); }\n";
    };
    std::string text = binary("+", "const matrix& a", "const matrix& b", "a.columns[$] + b.columns[$]") +
                       binary("-", "const matrix& a", "const matrix& b", "a.columns[$] - b.columns[$]") +
                       binary("*", "const matrix& a", "T s", "a.columns[$] * s") + binary("*", "T s", "const matrix& a", "a.columns[$] * s") +
                       binary("/", "const matrix& a", "T s", "a.columns[$] / s");
    text += "friend constexpr matrix operator-(const matrix& a) { return matrix(" + each(columns, "-a.columns[$]") + "); }\n";
    text += "friend constexpr " + column + " operator*(const matrix& m, const " + rowVector + "& v) { return " +
            each(columns, "m.columns[$] * v.@", " + ") + "; }\n";
    text += "friend constexpr " + rowVector + " operator*(const " + column + "& v, const matrix& m) { return " + rowVector + "(" + row + "); }\n";
    std::string equal;
    for (int i = 0; i < columns; ++i) {
        std::string at = "columns[" + std::to_string(i) + "]";
        equal += (i ? " && " : "") + each(rows, "a." + at + ".@ == b." + at + ".@", " && ");
    }
    text += "friend constexpr bool operator==(const matrix& a, const matrix& b) { return " + equal + "; }\n";
    text += "friend constexpr bool operator!=(const matrix& a, const matrix& b) { return !(a == b); }\n";
    for (const char* op : {"+", "-"}) text += std::string("constexpr matrix& operator") + op + "=(const matrix& b) { return *this = *this " + op + " b; }\n";
    for (const char* op : {"*", "/"}) text += std::string("constexpr matrix& operator") + op + "=(T s) { return *this = *this " + op + " s; }\n";
    return text;
}

std::string matrixClass(int columns, int rows)
{
    std::string column = "vec<T, " + std::to_string(rows) + ">", shape = std::to_string(columns) + ", " + std::to_string(rows);
    return "template <typename T> struct matrix<T, " + shape + ">\n{\n" + column + " columns[" + std::to_string(columns) + "];\n" +
           constructors(columns, rows, column) + operators(columns, rows, column) + "};\n";
}

std::string products()
{
    std::string text;
    for (int k = 2; k <= 4; ++k)
        text += "template <typename T, int C, int R> constexpr matrix<T, " + std::to_string(k) + ", R> operator*(const matrix<T, C, R>& a, const matrix<T, " +
                std::to_string(k) + ", C>& b) { return matrix<T, " + std::to_string(k) + ", R>(" + each(k, "a * b.columns[$]") + "); }\n";
    return text + "template <typename T, int N> constexpr matrix<T, N, N>& operator*=(matrix<T, N, N>& a, const matrix<T, N, N>& b) { return a = a * b; }\n";
}

} // namespace

std::string matrixText()
{
    std::string text = "namespace softmetal_types {\ntemplate <typename T, int C, int R> struct matrix;\n", inside, names;
    for (int c = 2; c <= 4; ++c)
        for (int r = 2; r <= 4; ++r) text += matrixClass(c, r);
    text += products() + "}\n";
    for (std::string s : {"float", "half"})
        for (int c = 2; c <= 4; ++c)
            for (int r = 2; r <= 4; ++r) {
                std::string shape = std::to_string(c) + "x" + std::to_string(r), name = s + shape;
                names += "typedef softmetal_types::matrix<" + s + ", " + std::to_string(c) + ", " + std::to_string(r) + "> " + name + ";\n";
                names += "typedef " + name + " matrix_" + name + ";\ntypedef " + name + " simd_" + name + ";\n";
                inside += "using ::" + name + ";\n";
            }
    return text + names + "namespace metal {\nusing softmetal_types::matrix;\n" + inside + "}\nnamespace simd {\n" + inside + "}\n";
}

} // namespace softmetal::shader
