// SPDX-License-Identifier: Apache-2.0
// Chapters: operands, declarations, arithmetic, flow.
#include "assembly/Interpreter.h"

#include "assembly/Statements.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace assembly {
namespace {

using Values = std::array<double, 4>;

float single(double value) { return static_cast<float>(value); }
Values all(double value) { return {value, value, value, value}; }
double clamp01(double value) { return std::min(std::max(value, 0.0), 1.0); }

Matrix transposed(const Matrix& m)
{
    Matrix t;
    for (size_t r = 0; r < 4; ++r)
        for (size_t c = 0; c < 4; ++c) t[r][c] = m[c][r];
    return t;
}

/// By elimination, in double precision.
Matrix inverse(Matrix m)
{
    Matrix result{};
    for (size_t i = 0; i < 4; ++i) result[i][i] = 1;
    for (size_t column = 0; column < 4; ++column) {
        size_t pivot = column;
        for (size_t r = column; r < 4; ++r)
            if (std::abs(m[r][column]) > std::abs(m[pivot][column])) pivot = r;
        std::swap(m[pivot], m[column]);
        std::swap(result[pivot], result[column]);
        double by = m[column][column];
        for (size_t c = 0; c < 4; ++c) m[column][c] /= by, result[column][c] /= by;
        for (size_t r = 0; r < 4; ++r) {
            double factor = r == column ? 0 : m[r][column];
            for (size_t c = 0; c < 4; ++c) m[r][c] -= factor * m[column][c], result[r][c] -= factor * result[column][c];
        }
    }
    return result;
}

int component(char letter)
{
    constexpr std::string_view Letters = "xyzwrgba";
    size_t at = Letters.find(letter);
    return at == std::string_view::npos ? -1 : static_cast<int>(at % 4);
}

/// Letters behind the last dot, when they are all components; "" else.
std::string swizzleOf(const std::string& name)
{
    size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find(']', dot) != std::string::npos) return "";
    std::string letters = name.substr(dot + 1);
    bool fits = !letters.empty() && letters.size() <= 4 && std::all_of(letters.begin(), letters.end(), [](char c) { return component(c) >= 0; });
    return fits ? letters : "";
}

class Run
{
public:
    Run(std::string_view program, const Inputs& inputs) : lines_(statementsOf(program)), inputs_(inputs) {}

    Outcome go()
    {
        for (size_t i = 0; i < lines_.size() && !outcome_.killed; i = step(i)) {}
        for (auto& [name, value] : registers_)
            if (name.rfind("result.", 0) == 0) outcome_.results[name] = value;
        return outcome_;
    }

private:
    // ---- operands ----

    static std::string renamed(const std::string& name)
    {
        if (name == "result.color") return "result.color[0]";
        if (name == "vertex.color" || name == "vertex.color.primary") return "vertex.attrib[3]";
        if (name.rfind("vertex.texcoord[", 0) == 0) return "vertex.attrib[" + std::to_string(8 + std::stoi(name.substr(16))) + "]";
        return name;
    }

    /// The row of a state matrix that a name means, "state.matrix.mvp.inverse.row[2]".
    Values matrixRow(const std::string& name) const
    {
        size_t row = name.rfind(".row[");
        if (row == std::string::npos) throw Unreadable(name);
        Matrix m = matrixOf(name.substr(0, row));
        return m[static_cast<size_t>(std::stoi(name.substr(row + 5)))];
    }

    Matrix matrixOf(const std::string& name) const
    {
        std::string rest = name.substr(std::strlen("state.matrix."));
        std::string kind = rest.substr(0, rest.find('.'));
        std::string change = rest.size() > kind.size() ? rest.substr(kind.size() + 1) : "";
        const Matrix& m = inputs_.matrices.at(kind);
        if (change == "inverse") return inverse(m);
        if (change == "transpose") return transposed(m);
        if (change == "invtrans") return transposed(inverse(m));
        return m;
    }

    Values whole(const std::string& name) const
    {
        if (name.rfind("state.matrix.", 0) == 0) return matrixRow(name);
        if (auto found = registers_.find(renamed(name)); found != registers_.end()) return found->second.v;
        if (auto found = inputs_.registers.find(renamed(name)); found != inputs_.registers.end()) return found->second.v;
        throw Unreadable("nothing is called " + name);
    }

    Values read(std::string text) const
    {
        bool negative = text.starts_with('-');
        if (negative || text.starts_with('+')) text = trimmed(std::string_view(text).substr(1));
        bool absolute = text.starts_with('|');
        if (absolute) text = trimmed(std::string_view(text).substr(1, text.size() - 2));
        Values value;
        if (std::isdigit(static_cast<unsigned char>(text[0])) || text[0] == '.') {
            value = all(single(std::stod(text)));
        } else {
            std::string letters = swizzleOf(text);
            Values from = whole(letters.empty() ? text : text.substr(0, text.size() - letters.size() - 1));
            value = from;
            for (size_t i = 0; i < 4 && !letters.empty(); ++i) value[i] = from[static_cast<size_t>(component(letters[std::min(i, letters.size() - 1)]))];
        }
        for (double& v : value) {
            if (absolute) v = std::abs(v);
            if (negative) v = -v;
        }
        return value;
    }

    void write(const std::string& text, const Values& value, bool saturates, bool isInteger = false)
    {
        std::string letters = swizzleOf(text);
        Register& to = registers_[renamed(letters.empty() ? text : text.substr(0, text.size() - letters.size() - 1))];
        for (size_t i = 0; i < 4; ++i) {
            bool masked = letters.empty() || std::any_of(letters.begin(), letters.end(), [&](char c) { return component(c) == static_cast<int>(i); });
            if (!masked) continue;
            double v = saturates ? clamp01(value[i]) : value[i];
            to.v[i] = isInteger ? v : single(v);
            to.written |= 1u << i;
        }
    }

    // ---- declarations ----

    void parameter(const std::string& text)
    {
        size_t equals = text.find('=');
        std::string name = trimmed(std::string_view(text).substr(0, equals)), value = trimmed(std::string_view(text).substr(equals + 1));
        size_t bracket = name.find('[');
        if (bracket == std::string::npos) {
            registers_[name].v = value[0] == '{' ? braced(value) : read(value);
            return;
        }
        std::string array = trimmed(std::string_view(name).substr(0, bracket));
        int index = 0;
        for (const std::string& element : cut(std::string_view(value).substr(1, value.size() - 2)))
            for (const Values& v : elements(element)) registers_[array + "[" + std::to_string(index++) + "]"].v = v;
    }

    Values braced(const std::string& text) const
    {
        Values value{};
        size_t i = 0;
        for (const std::string& piece : cut(std::string_view(text).substr(1, text.size() - 2))) value[i++] = read(piece)[0];
        return value;
    }

    /// What one item of an array's braces stands for: a vector, a range of bindings, a whole matrix.
    std::vector<Values> elements(const std::string& item) const
    {
        if (item[0] == '{') return {braced(item)};
        if (size_t dots = item.find(".."); dots != std::string::npos) {
            size_t open = item.rfind('[');
            int first = std::stoi(item.substr(open + 1)), last = std::stoi(item.substr(dots + 2));
            std::vector<Values> result;
            for (int i = first; i <= last; ++i) result.push_back(read(item.substr(0, open) + "[" + std::to_string(i) + "]"));
            return result;
        }
        bool matrix = item.rfind("state.matrix.", 0) == 0 && item.find(".row[") == std::string::npos;
        if (!matrix) return {read(item)};
        Matrix m = matrixOf(item);
        return {m.begin(), m.end()};
    }

    // ---- arithmetic ----

    template <class F>
    static Values each(const Values& a, F f)
    {
        return {f(a[0]), f(a[1]), f(a[2]), f(a[3])};
    }
    template <class F>
    static Values each(const Values& a, const Values& b, F f)
    {
        return {f(a[0], b[0]), f(a[1], b[1]), f(a[2], b[2]), f(a[3], b[3])};
    }
    static Values dot(const Values& a, const Values& b, size_t count)
    {
        float sum = 0;
        for (size_t i = 0; i < count; ++i) sum += single(a[i]) * single(b[i]);
        return all(sum);
    }

    using Unary = Values (*)(const Values&);
    using Binary = Values (*)(const Values&, const Values&);

    static const std::map<std::string, Unary>& unaries()
    {
        static const std::map<std::string, Unary> table = {
            {"MOV", [](const Values& a) { return a; }},
            {"MOVC", [](const Values& a) { return a; }},
            {"ABS", [](const Values& a) { return each(a, [](double x) { return std::abs(x); }); }},
            {"FLR", [](const Values& a) { return each(a, [](double x) { return std::floor(x); }); }},
            {"FRC", [](const Values& a) { return each(a, [](double x) { return x - std::floor(x); }); }},
            {"COS", [](const Values& a) { return all(std::cos(a[0])); }},
            {"SIN", [](const Values& a) { return all(std::sin(a[0])); }},
            {"EX2", [](const Values& a) { return all(std::exp2(a[0])); }},
            {"EXP", [](const Values& a) { return all(std::exp2(a[0])); }},
            {"LG2", [](const Values& a) { return all(std::log2(a[0])); }},
            {"RCP", [](const Values& a) { return all(1 / a[0]); }},
            {"RSQ", [](const Values& a) { return all(1 / std::sqrt(a[0])); }},
        };
        return table;
    }

    static const std::map<std::string, Binary>& binaries()
    {
        static const std::map<std::string, Binary> table = {
            {"ADD", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x + y; }); }},
            {"SUB", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x - y; }); }},
            {"MUL", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x * y; }); }},
            {"MIN", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return std::min(x, y); }); }},
            {"MAX", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return std::max(x, y); }); }},
            {"SEQ", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x == y ? 1.0 : 0.0; }); }},
            {"SNE", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x != y ? 1.0 : 0.0; }); }},
            {"SGE", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x >= y ? 1.0 : 0.0; }); }},
            {"SGT", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x > y ? 1.0 : 0.0; }); }},
            {"SLT", [](const Values& a, const Values& b) { return each(a, b, [](double x, double y) { return x < y ? 1.0 : 0.0; }); }},
            {"POW", [](const Values& a, const Values& b) { return all(std::pow(a[0], b[0])); }},
            {"DP2", [](const Values& a, const Values& b) { return dot(a, b, 2); }},
            {"DP3", [](const Values& a, const Values& b) { return dot(a, b, 3); }},
            {"DP4", [](const Values& a, const Values& b) { return dot(a, b, 4); }},
            {"XPD", [](const Values& a, const Values& b) { return Values{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0], 0}; }},
        };
        return table;
    }

    static Values ternary(const std::string& opcode, const Values& a, const Values& b, const Values& c)
    {
        Values r;
        for (size_t i = 0; i < 4; ++i) {
            if (opcode == "MAD") r[i] = single(a[i] * b[i]) + c[i];
            else if (opcode == "LRP") r[i] = c[i] + (b[i] - c[i]) * a[i];
            else r[i] = a[i] < 0 ? b[i] : c[i]; // CMP
        }
        return r;
    }

    static bool isSetOnly(const std::string& opcode) { return opcode.size() == 3 && opcode[0] == 'S' && (opcode == "SEQ" || opcode == "SNE" || opcode == "SGE" || opcode == "SGT" || opcode == "SLT"); }

    bool arithmetic(const Line& line)
    {
        Values value;
        const auto& l = line.list;
        if (auto one = unaries().find(line.opcode); one != unaries().end()) value = one->second(read(l.at(1)));
        else if (auto two = binaries().find(line.opcode); two != binaries().end()) value = two->second(read(l.at(1)), read(l.at(2)));
        else if (line.opcode == "MAD" || line.opcode == "LRP" || line.opcode == "CMP") value = ternary(line.opcode, read(l.at(1)), read(l.at(2)), read(l.at(3)));
        else return false;
        write(l.at(0), value, line.saturates && !isSetOnly(line.opcode));
        if (line.opcode == "MOVC") condition(l.at(0));
        return true;
    }

    /// The components just written are kept as the condition.
    void condition(const std::string& destination)
    {
        std::string letters = swizzleOf(destination);
        Values value = read(letters.empty() ? destination : destination.substr(0, destination.size() - letters.size() - 1));
        for (size_t i = 0; i < 4; ++i)
            if (letters.empty() || letters.find("xyzw"[i]) != std::string::npos) condition_[i] = value[i];
    }

    bool integers(const Line& line)
    {
        const auto& l = line.list;
        auto whole32 = [](double x) { return static_cast<uint32_t>(static_cast<int64_t>(x)); };
        if (line.opcode == "AND.U") write(l.at(0), each(read(l.at(1)), read(l.at(2)), [&](double a, double b) { return static_cast<double>(whole32(a) & whole32(b)); }), false, true);
        else if (line.opcode == "SHR.U") write(l.at(0), each(read(l.at(1)), read(l.at(2)), [&](double a, double b) { return static_cast<double>(whole32(a) >> (whole32(b) & 31)); }), false, true);
        else if (line.opcode == "FLR.U") write(l.at(0), each(read(l.at(1)), [](double a) { return std::floor(a); }), line.saturates, true);
        else if (line.opcode == "I2F.U") write(l.at(0), read(l.at(1)), false);
        else if (line.opcode == "PK4UB.U") pack(l);
        else if (line.opcode == "UP4UB") unpack(l);
        else return false;
        return true;
    }

    void pack(const std::vector<std::string>& l)
    {
        Values from = read(l.at(1));
        double word = 0;
        for (size_t i = 4; i-- > 0;) word = word * 256 + std::floor(255.0f * single(clamp01(from[i])));
        write(l.at(0), all(word), false, true);
    }

    void unpack(const std::vector<std::string>& l)
    {
        float value = single(read(l.at(1))[0]);
        uint32_t word = 0;
        std::memcpy(&word, &value, 4);
        Values bytes;
        for (size_t i = 0; i < 4; ++i) bytes[i] = (word >> (8 * i) & 255) / 255.0;
        write(l.at(0), bytes, false);
    }

    void sample(const Line& line)
    {
        const auto& l = line.list;
        int unit = std::stoi(l.at(2).substr(l.at(2).find('[') + 1));
        Register at;
        at.v = read(l.at(1));
        write(l.at(0), inputs_.sample(unit, l.at(3), at).v, line.saturates);
    }

    // ---- flow ----

    /// The statement that closes the block which the one at i opens, or its ELSE when that comes first and is wanted.
    size_t closing(size_t i, bool orElse) const
    {
        int depth = 0;
        for (size_t at = i + 1; at < lines_.size(); ++at) {
            const std::string& o = lines_[at].opcode;
            if (o == "IF" || o == "REP") ++depth;
            if (depth == 0 && (o == "ENDIF" || o == "ENDREP" || (orElse && o == "ELSE"))) return at;
            if (o == "ENDIF" || o == "ENDREP") --depth;
        }
        throw Unreadable("a block is not closed");
    }

    bool holds(const std::string& test) const
    {
        size_t dot = test.find('.');
        double value = condition_[dot == std::string::npos ? 0 : static_cast<size_t>(component(test[dot + 1]))];
        std::string name = test.substr(0, 2);
        if (name == "EQ") return value == 0;
        if (name == "GE") return value >= 0;
        if (name == "GT") return value > 0;
        if (name == "LE") return value <= 0;
        if (name == "LT") return value < 0;
        if (name == "NE") return value != 0;
        throw Unreadable(test);
    }

    size_t enclosingRepeat(size_t i) const
    {
        for (size_t at = loops_.size(); at-- > 0;)
            if (loops_[at].start < i) return at;
        throw Unreadable("BRK outside a loop");
    }

    struct Loop
    {
        size_t start, end;
        int count;
        double limit;
    };

    size_t turn(Loop& loop)
    {
        if (++loop.count < loop.limit) return loop.start + 1;
        size_t end = loop.end;
        loops_.pop_back();
        return end + 1;
    }

    size_t step(size_t i)
    {
        const Line& line = lines_[i];
        const std::string& o = line.opcode;
        if (o.rfind("!!", 0) == 0 || o == "END" || o == "OPTION" || o == "TEMP" || o == "UINT" || o == "ENDIF") return i + 1;
        if (o == "PARAM") return parameter(line.operands), i + 1;
        if (o == "TEX") return sample(line), i + 1;
        if (o == "KIL") {
            Values v = read(line.list.at(0));
            outcome_.killed = std::any_of(v.begin(), v.end(), [](double x) { return x < 0; });
            return i + 1;
        }
        if (o == "IF") return holds(line.list.at(0)) ? i + 1 : closing(i, true) + 1;
        if (o == "ELSE") return closing(i, false) + 1;
        if (o == "REP") {
            loops_.push_back({i, closing(i, false), 0, read(line.list.at(0))[0]});
            if (0 < loops_.back().limit) return i + 1;
            size_t end = loops_.back().end;
            loops_.pop_back();
            return end + 1;
        }
        if (o == "ENDREP" || o == "CONT") return turn(loops_.at(enclosingRepeat(i)));
        if (o == "BRK") {
            size_t end = loops_.at(enclosingRepeat(i)).end;
            loops_.pop_back();
            return end + 1;
        }
        if (arithmetic(line) || integers(line)) return i + 1;
        throw Unreadable(o);
    }

    std::vector<Line> lines_;
    const Inputs& inputs_;
    std::map<std::string, Register> registers_;
    Values condition_{};
    std::vector<Loop> loops_;
    Outcome outcome_;
};

} // namespace

Outcome interpret(std::string_view program, const Inputs& inputs) { return Run(program, inputs).go(); }

} // namespace assembly
