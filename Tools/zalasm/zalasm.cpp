// SPDX-License-Identifier: Apache-2.0
// The offline translator: an assembly program to Metal source, to what it uses, or to the compiler's opinion of it.
// Exit status: 0, 1 the program does not translate or compile, 2 bad usage or a file that cannot be read.
#include "Check.h"

#include "ProgramNormaliser.h"

#include <ZALMetal/ZALMetal.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>

namespace {

constexpr const char* Usage = "usage: zalasm [--check | --bindings | --normalise] FILE\n"
                              "       zalasm --help | --version\n";

constexpr const char* Help = "\n"
                             "Prints the Metal source that libZALMetal makes of an assembly program; FILE may be - for standard input.\n"
                             "  --check      compile it and print what the compiler says, with the lines of the assembly program\n"
                             "  --bindings   print the texture units, attributes and colour outputs that it uses, as JSON\n"
                             "  --normalise  rewrite a standard program into the dialect that the library reads, and print that\n";

enum class Mode { Source, Check, Bindings, Normalise };

std::optional<std::string> read(const std::string& path)
{
    if (path == "-") return std::string(std::istreambuf_iterator<char>(std::cin), {});
    std::error_code unknown;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, unknown)) return std::nullopt;
    std::string text(std::istreambuf_iterator<char>(file), {});
    return file.bad() ? std::nullopt : std::optional(std::move(text));
}

/// The program up to its first NUL, as glProgramStringARB reads it.
struct Translated
{
    std::string source;
    ZALMetal::ShaderBindings bindings;
    ZALMetal::TranslationReport report;
};

bool translate(const std::string& program, const std::string& file, Translated& result)
{
    ZALMetal::ShaderString text;
    text.Append(program.c_str(), static_cast<unsigned>(std::strlen(program.c_str())));
    ZALM::String source;
    if (text.GLSLTranslation(source, result.bindings, &result.report) == 0) {
        result.source.assign(source.Buffer(), static_cast<size_t>(source.GetStringBytes()));
        return true;
    }
    const auto& report = result.report;
    std::fprintf(stderr, "%s:%d:1: error: %s: %s\n", file.c_str(), report.line > 0 ? report.line : 1, *report.reason ? report.reason : "there is not enough memory",
                 report.statement.Buffer());
    return false;
}

int check(const std::string& program, const std::string& file, const Translated& translated)
{
    bool ok = false;
    auto messages = zalasm::compile(translated.source, ok);
    bool said = false;
    for (const std::string& message : messages) {
        std::string line = zalasm::placed(message, file, program, translated.report);
        if (line.empty()) continue;
        std::fprintf(stderr, "%s\n", line.c_str());
        said = true;
    }
    for (const std::string& message : messages)
        if (!ok && !said) std::fprintf(stderr, "%s:1:1: error: %s\n", file.c_str(), message.c_str());
    return ok ? 0 : 1;
}

const char* targetName(uint32_t target)
{
    switch (target) {
    case ZALMetal::kTarget2D: return "2D";
    case ZALMetal::kTarget3D: return "3D";
    case ZALMetal::kTargetRectangle: return "RECT";
    case ZALMetal::kTargetCubeMap: return "CUBE";
    default: return "unknown";
    }
}

/// Items of the bits that are set, joined by commas.
template <class Item>
std::string listed(uint32_t mask, Item item)
{
    std::string text;
    for (int bit = 0; bit < 32; ++bit)
        if (mask >> bit & 1) text += (text.empty() ? "" : ", ") + item(bit);
    return text;
}

int printBindings(const ZALMetal::ShaderBindings& bindings)
{
    std::string units = listed(bindings.textureUnitMask, [&](int unit) {
        return "{\"unit\": " + std::to_string(unit) + ", \"target\": \"" + targetName(bindings.textureTargets[unit]) + "\"}";
    });
    std::string attributes = listed(bindings.attributeMask & 0xFFFF, [](int index) {
        return "{\"index\": " + std::to_string(index) + ", \"name\": \"" + ZALMetal::ShaderBindings::GetAttributeName(index) + "\"}";
    });
    std::string outputs = listed(bindings.colorMask, [](int index) { return std::to_string(index); });
    std::printf("{\"textures\": [%s],\n \"attributes\": [%s],\n \"colors\": [%s]}\n", units.c_str(), attributes.c_str(), outputs.c_str());
    return 0;
}

int normalise(const std::string& program, const std::string& file)
{
    std::vector<ZALMetal::NormaliserFault> faults;
    std::string text = ZALMetal::NormaliseProgram(program, faults);
    for (const auto& fault : faults) std::fprintf(stderr, "%s:%d:%d: error: %s\n", file.c_str(), fault.line, fault.column, fault.text.c_str());
    if (!faults.empty()) return 1;
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
}

int run(Mode mode, const std::string& file, const std::string& program)
{
    if (mode == Mode::Normalise) return normalise(program, file);
    Translated translated;
    if (!translate(program, file, translated)) return 1;
    if (mode == Mode::Check) return check(program, file, translated);
    if (mode == Mode::Bindings) return printBindings(translated.bindings);
    return std::fputs(translated.source.c_str(), stdout) < 0;
}

int refuse(const char* why, const std::string& what)
{
    std::fprintf(stderr, "zalasm: %s%s\n%s", why, what.c_str(), Usage);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    Mode mode = Mode::Source;
    std::optional<std::string> file;
    for (int i = 1; i < argc; ++i) {
        std::string word = argv[i];
        if (word == "--help") return std::printf("%s%s", Usage, Help) < 0;
        if (word == "--version") return std::printf("zalasm %d.%d.%d\n", ZALMETAL_VERSION_MAJOR, ZALMETAL_VERSION_MINOR, ZALMETAL_VERSION_PATCH) < 0;
        bool isMode = word == "--check" || word == "--bindings" || word == "--normalise";
        if (isMode && mode != Mode::Source) return refuse("only one of the options at a time", "");
        if (word == "--check") mode = Mode::Check;
        else if (word == "--bindings") mode = Mode::Bindings;
        else if (word == "--normalise") mode = Mode::Normalise;
        else if (word.size() > 1 && word[0] == '-') return refuse("unknown option ", word);
        else if (file) return refuse("one file at a time", "");
        else file = word;
    }
    if (!file) return refuse("no file given", "");
    auto program = read(*file);
    if (!program) {
        std::fprintf(stderr, "zalasm: %s cannot be read\n", file->c_str());
        return 2;
    }
    return run(mode, *file == "-" ? "<stdin>" : *file, *program);
}
