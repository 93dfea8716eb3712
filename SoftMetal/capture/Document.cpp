// SPDX-License-Identifier: Apache-2.0
#include "capture/Document.h"

#include "capture/Page.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>

namespace softmetal::capture {
namespace {

using inspect::Trace;
using inspect::TracedCall;

// ---- JSON -------------------------------------------------------------------------------------------------------------------

bool isText(const std::string& bytes)
{
    for (unsigned char c : bytes)
        if (c >= 127 || (c < 32 && c != '\n' && c != '\t')) return false;
    return true;
}

/// Text as it stands when it can be read, else as hexadecimal digits. "<" is escaped so that a page may hold the result.
std::string quoted(const std::string& text)
{
    std::string result = "\"";
    char code[8];
    bool readable = isText(text);
    if (!readable) result += "0x";
    for (unsigned char c : text) {
        if (!readable) std::snprintf(code, sizeof code, "%02x", c), result += code;
        else if (c == '"' || c == '\\') (result += '\\') += static_cast<char>(c);
        else if (c < 32 || c == '<') std::snprintf(code, sizeof code, "\\u%04x", c), result += code;
        else result += static_cast<char>(c);
    }
    return result + '"';
}

std::string number(double value)
{
    if (!std::isfinite(value)) return quoted(std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf");
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.17g", value);
    return digits;
}

std::string commandOf(const TracedCall& call)
{
    std::string text = "{\"object\": " + std::to_string(call.receiver) + ", \"call\": " + quoted(call.entry.call) + ", \"arguments\": {";
    const char* separator = "";
    for (size_t i = 0; i < call.entry.arguments.size(); ++i) {
        const SoftMetal::LogArgument& a = call.entry.arguments[i];
        text += separator + quoted(a.name) + ": ";
        if (call.objects[i]) text += "{\"object\": " + std::to_string(call.objects[i]) + "}";
        else text += a.text.empty() ? number(a.number) : quoted(a.text);
        separator = ", ";
    }
    return text + "}}";
}

/// One item a line.
template <class Items, class Line>
std::string list(const char* name, const Items& items, Line line)
{
    std::string text = quoted(name) + ": [";
    const char* separator = "\n";
    for (const auto& item : items) {
        text += separator + line(item);
        separator = ",\n";
    }
    return text + "\n]";
}

// ---- passes -------------------------------------------------------------------------------------------------------------------

struct Pass
{
    uint64_t serial;
    uint32_t encoder;       // object number
    size_t first, last;     // commands, from the one that opens it to the encoder's last
    size_t draws = 0;
};

std::vector<Pass> passesOf(const Trace& trace)
{
    std::vector<Pass> passes;
    std::map<uint32_t, size_t> byEncoder;
    for (size_t i = 0; i < trace.calls.size(); ++i) {
        const TracedCall& call = trace.calls[i];
        if (call.entry.call == "renderCommandEncoder" && !call.objects.empty() && call.objects[0]) {
            byEncoder[call.objects[0]] = passes.size();
            passes.push_back({static_cast<uint64_t>(call.entry.number("pass")), call.objects[0], i, i});
        } else if (auto at = byEncoder.find(call.receiver); at != byEncoder.end()) {
            Pass& pass = passes[at->second];
            pass.last = i;
            if (call.entry.call.rfind("draw", 0) == 0) ++pass.draws;
        }
    }
    return passes;
}

std::string fileOf(const Pass& pass, const Picture& picture) { return "pass-" + std::to_string(pass.serial) + "-" + picture.attachment + ".png"; }

std::string passText(const Pass& pass, const PicturesByPass& pictures)
{
    std::string text = "{\"pass\": " + std::to_string(pass.serial) + ", \"encoder\": " + std::to_string(pass.encoder) + ", \"first\": " + std::to_string(pass.first) +
                       ", \"last\": " + std::to_string(pass.last) + ", \"draws\": " + std::to_string(pass.draws) + ", \"attachments\": [";
    const char* separator = "";
    if (auto found = pictures.find(pass.serial); found != pictures.end())
        for (const Picture& picture : found->second) {
            text += separator + ("{\"name\": " + quoted(picture.attachment)) + ", \"width\": " + std::to_string(picture.width) + ", \"height\": " + std::to_string(picture.height) +
                    ", \"picture\": " + quoted(fileOf(pass, picture)) + "}";
            separator = ", ";
        }
    return text + "]}";
}

void write(const std::filesystem::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes; }

} // namespace

std::set<uint64_t> committedPasses(const Trace& trace)
{
    std::map<uint32_t, std::vector<uint64_t>> open; // by command buffer
    std::set<uint64_t> result;
    for (const TracedCall& call : trace.calls) {
        if (call.entry.call == "renderCommandEncoder") open[call.receiver].push_back(static_cast<uint64_t>(call.entry.number("pass")));
        if (call.entry.call == "commit") result.insert(open[call.receiver].begin(), open[call.receiver].end());
    }
    return result;
}

void writeDocument(const std::filesystem::path& folder, const Trace& trace, const PicturesByPass& pictures)
{
    std::vector<Pass> passes = passesOf(trace);
    size_t number = 0;
    std::string json = "{\"format\": \"SoftMetal trace\", \"version\": 1,\n";
    json += list("objects", trace.objects, [&](const inspect::TracedObject& object) {
        return "{\"id\": " + std::to_string(++number) + ", \"class\": " + quoted(object.className) + ", \"label\": " + quoted(object.label) + ", \"summary\": " + quoted(object.summary) + "}";
    });
    json += ",\n" + list("commands", trace.calls, commandOf);
    json += ",\n" + list("passes", passes, [&](const Pass& pass) { return passText(pass, pictures); }) + "}\n";
    write(folder / "trace.json", json);
    write(folder / "index.html", std::string(PageStart) + json + PageEnd);
    for (const Pass& pass : passes)
        if (auto found = pictures.find(pass.serial); found != pictures.end())
            for (const Picture& picture : found->second) write(folder / fileOf(pass, picture), picture.png);
}

} // namespace softmetal::capture
