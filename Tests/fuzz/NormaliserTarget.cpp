// SPDX-License-Identifier: Apache-2.0
// The normaliser on any bytes: a rewritten program is translated, and rewriting it once more changes nothing; a failure
// names a line.
#include "fuzz/Input.h"

#include "ProgramNormaliser.h"
#include "ShaderString.h"

using namespace ZALMetal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<NormaliserFault> faults;
    const std::string program = NormaliseProgram(text, faults);
    fuzz::require(program.empty() != faults.empty());
    for (const NormaliserFault& fault : faults)
        fuzz::require(fault.line > 0 && fault.column > 0 && !fault.text.empty());
    if (!faults.empty()) return 0;

    fuzz::require(NormaliseProgram(program, faults) == program);

    ShaderString translated;
    translated.Append(program.data(), static_cast<unsigned>(program.size()));
    ZALM::String source;
    ShaderBindings bindings;
    fuzz::require(translated.GLSLTranslation(source, bindings) == 0);
    return 0;
}
