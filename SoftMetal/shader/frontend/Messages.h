// SPDX-License-Identifier: Apache-2.0
// Diagnostics as a host reads them: one line each, with the place in its own source text.
#pragma once

#include <clang/Basic/Diagnostic.h>

#include <string>

namespace softmetal::shader {

inline constexpr const char* SourceName = "program_source";

/// Appends "program_source:line:column: error: …" for every error and warning. Notes are kept where they point into the
/// program; those about candidates of the standard library would only be noise.
class Messages final : public clang::DiagnosticConsumer
{
public:
    explicit Messages(std::string& text) : text_(text) {}
    void HandleDiagnostic(clang::DiagnosticsEngine::Level level, const clang::Diagnostic& diagnostic) override;

private:
    std::string& text_;
};

} // namespace softmetal::shader
