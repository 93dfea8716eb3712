// SPDX-License-Identifier: Apache-2.0
#include "assembly/Statements.h"

#include <algorithm>
#include <cctype>

namespace assembly {

std::string trimmed(std::string_view text)
{
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
    return std::string(text);
}

std::vector<std::string> cut(std::string_view text)
{
    std::vector<std::string> pieces;
    int depth = 0;
    size_t start = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && (text[i] == '{' || text[i] == '[')) ++depth;
        if (i < text.size() && (text[i] == '}' || text[i] == ']')) --depth;
        if (i < text.size() && (text[i] != ',' || depth > 0)) continue;
        std::string piece = trimmed(text.substr(start, i - start));
        if (!piece.empty()) pieces.push_back(piece);
        start = i + 1;
    }
    return pieces;
}

namespace {

Line readLine(const std::string& text)
{
    Line line;
    size_t blank = std::min(text.find_first_of(" \t"), text.size());
    line.opcode = text.substr(0, blank);
    std::transform(line.opcode.begin(), line.opcode.end(), line.opcode.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    if (line.opcode.size() > 4 && line.opcode.ends_with("_SAT")) {
        line.saturates = true;
        line.opcode.resize(line.opcode.size() - 4);
    }
    line.operands = trimmed(std::string_view(text).substr(blank));
    line.list = cut(line.operands);
    return line;
}

} // namespace

std::vector<Line> statementsOf(std::string_view program)
{
    std::vector<Line> lines;
    std::string current;
    bool comment = false;
    for (char c : std::string(program) + "\n") {
        if (c == '#') comment = true;
        if (c == '\n') comment = false;
        if (comment) continue;
        if (c != '\n' && c != ';') {
            current += c;
            continue;
        }
        if (std::string text = trimmed(current); !text.empty()) lines.push_back(readLine(text));
        current.clear();
    }
    return lines;
}

} // namespace assembly
