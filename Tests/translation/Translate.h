// SPDX-License-Identifier: Apache-2.0
// Short ways to a translation, for tests.
#pragma once

#include "ShaderString.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace translation
{

inline constexpr const char* kVertexHeader = "!!ARBvp1.0\n";
inline constexpr const char* kFragmentHeader = "!!ARBfp1.0\n";

struct Translated
{
    int status = 0;
    std::string source;
    std::string body; // what stands between the two marks
    ZALMetal::ShaderBindings bindings;
    ZALMetal::TranslationReport report;
};

inline std::string textOf(const ZALM::String& text)
{
    return {text.Buffer(), static_cast<size_t>(text.GetStringBytes())};
}

inline ZALM::String stringOf(const std::string& text)
{
    return ZALM::String(text.c_str());
}

inline Translated translate(const std::string& program)
{
    ZALMetal::ShaderString shader;
    shader.Append(program.data(), static_cast<unsigned>(program.size()));

    Translated result;
    ZALM::String source;
    result.status = shader.GLSLTranslation(source, result.bindings, &result.report);
    result.source = textOf(source);

    const std::string mark = "  //\n";
    const size_t first = result.source.find(mark);
    const size_t last = result.source.rfind(mark);
    if (first != std::string::npos && first != last)
        result.body = result.source.substr(first + mark.size(), last - first - mark.size());
    return result;
}

inline Translated translateVertex(const std::string& statements)
{
    return translate(kVertexHeader + statements);
}

inline Translated translateFragment(const std::string& statements)
{
    return translate(kFragmentHeader + statements);
}

// The body of a fragment program; a failure is part of the text, so that it never passes for a body.
inline std::string bodyOf(const std::string& statements)
{
    const Translated result = translateFragment(statements);
    return result.status == 0 ? result.body : "failed: " + std::string(result.report.reason);
}

// One statement's line, without indentation and line end.
inline std::string lineOf(const std::string& statement)
{
    const std::string body = bodyOf(statement);
    if (body.size() < 3 || body.compare(0, 2, "  ") != 0 || body.back() != '\n') return "not a line: " + body;

    return body.substr(2, body.size() - 3);
}

struct Row
{
    const char* statement;
    const char* line;
};

inline void expectLines(const std::vector<Row>& rows)
{
    for (const Row& row : rows)
        EXPECT_EQ(lineOf(row.statement), row.line) << row.statement;
}

} // namespace translation
