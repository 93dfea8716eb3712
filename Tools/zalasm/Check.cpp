// SPDX-License-Identifier: Apache-2.0
#include "Check.h"

#include "ScopedPool.h"

#include <Foundation/Foundation.hpp>
#include <Metal/Metal.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>

namespace zalasm {
namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// Where the statement on a line of the program begins, counted from 1.
size_t columnOf(const std::string& program, int line)
{
    auto lines = linesOf(program);
    if (line < 1 || static_cast<size_t>(line) > lines.size()) return 1;
    size_t column = lines[static_cast<size_t>(line) - 1].find_first_not_of(" \t;");
    return column == std::string::npos ? 1 : column + 1;
}

/// "name:12:5: error: words" taken apart; false for any other line.
bool parse(const std::string& message, int& line, std::string& kind, std::string& words)
{
    size_t name = message.find(':');
    if (name == std::string::npos) return false;
    int column = 0, read = 0;
    if (std::sscanf(message.c_str() + name, ":%d:%d: %n", &line, &column, &read) != 2 || read == 0) return false;
    std::string rest = message.substr(name + static_cast<size_t>(read));
    size_t colon = rest.find(": ");
    if (colon == std::string::npos) return false;
    kind = rest.substr(0, colon);
    words = rest.substr(colon + 2);
    return true;
}

struct Release
{
    void operator()(NS::Object* object) const { object->release(); }
};

template <class T>
using Owned = std::unique_ptr<T, Release>;

} // namespace

std::vector<std::string> compile(const std::string& source, bool& ok)
{
    const ScopedPool pool;
    const Owned<MTL::Device> device(MTL::CreateSystemDefaultDevice());
    ok = false;
    if (!device) return {"there is no Metal device to compile with"};
    NS::Error* error = nullptr;
    const Owned<MTL::Library> library(device->newLibrary(NS::String::string(source.c_str(), NS::UTF8StringEncoding), nullptr, &error));
    ok = library != nullptr;
    return error ? linesOf(error->localizedDescription()->utf8String()) : std::vector<std::string>();
}

std::string placed(const std::string& message, const std::string& file, const std::string& program, const ZALMetal::TranslationReport& report)
{
    int line = 0;
    std::string kind, words;
    if (!parse(message, line, kind, words)) return {};
    if (kind == "note") return {};
    if (kind == "fatal error") kind = "error";
    int body = line - report.firstBodyLine;
    if (body < 0 || static_cast<size_t>(body) >= report.bodySource.size()) return file + ":1:1: " + kind + ": " + words + " (line " + std::to_string(line) + " of the generated source)";
    int own = report.bodySource[static_cast<size_t>(body)];
    return file + ":" + std::to_string(own) + ":" + std::to_string(columnOf(program, own)) + ": " + kind + ": " + words;
}

} // namespace zalasm
