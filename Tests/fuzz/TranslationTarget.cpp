// SPDX-License-Identifier: Apache-2.0
// The translator on any bytes: it succeeds or names the statement, says the same twice, and adds nothing to a failure.
#include "fuzz/Input.h"

#include "ShaderString.h"

#include <cstring>

using namespace ZALMetal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ShaderString program;
    program.Append(reinterpret_cast<const char*>(data), static_cast<unsigned>(size));

    ZALM::String source;
    ShaderBindings bindings;
    TranslationReport report;
    const int status = program.GLSLTranslation(source, bindings, &report);
    fuzz::require(status == 0 || status == 1);
    fuzz::require(status == 0 ? !source.IsEmpty() : source.IsEmpty());
    fuzz::require(status == 0 || (report.line > 0 && std::strlen(report.reason) > 0));

    ZALM::String again;
    ShaderBindings sameBindings;
    fuzz::require(program.GLSLTranslation(again, sameBindings) == status);
    fuzz::require(again == source && sameBindings.attributeMask == bindings.attributeMask);
    return 0;
}
