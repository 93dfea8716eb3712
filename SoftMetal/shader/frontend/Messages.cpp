// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Messages.h"

#include <clang/Basic/SourceManager.h>
#include <llvm/ADT/SmallString.h>

namespace softmetal::shader {
namespace {

using Level = clang::DiagnosticsEngine::Level;

const char* levelName(Level level)
{
    switch (level) {
    case Level::Note: return "note";
    case Level::Remark: return "remark";
    case Level::Warning: return "warning";
    case Level::Error: return "error";
    default: return "fatal error";
    }
}

/// "name:line:column", or the name alone for what has no place. Inside macros it is the place of the use.
std::string placeOf(const clang::SourceManager& sources, clang::SourceLocation location)
{
    clang::PresumedLoc place = sources.getPresumedLoc(sources.getExpansionLoc(location));
    if (place.isInvalid()) return SourceName;
    llvm::StringRef file = place.getFilename();
    std::string name = file.starts_with("/softmetal/") ? "metal_stdlib" : file.str();
    return name + ":" + std::to_string(place.getLine()) + ":" + std::to_string(place.getColumn());
}

} // namespace

void Messages::HandleDiagnostic(Level level, const clang::Diagnostic& diagnostic)
{
    DiagnosticConsumer::HandleDiagnostic(level, diagnostic); // counts
    bool placed = diagnostic.hasSourceManager() && diagnostic.getLocation().isValid();
    bool own = placed && diagnostic.getSourceManager().isInMainFile(diagnostic.getSourceManager().getExpansionLoc(diagnostic.getLocation()));
    if (level == Level::Ignored || (level == Level::Note && !own)) return;
    llvm::SmallString<160> words;
    diagnostic.FormatDiagnostic(words);
    text_ += placed ? placeOf(diagnostic.getSourceManager(), diagnostic.getLocation()) : std::string(SourceName);
    text_ += std::string(": ") + levelName(level) + ": " + words.c_str() + "\n";
}

} // namespace softmetal::shader
