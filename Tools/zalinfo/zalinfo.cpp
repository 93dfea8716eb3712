// SPDX-License-Identifier: Apache-2.0
// What a host finds here: device, versions, limits, strings and the environment that the library reads. --json for programs.
// Exit status: 0, 1 when there is no device, 2 bad usage.
#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <Foundation/Foundation.hpp>
#include <Metal/Metal.hpp>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Limit
{
    const char* name;
    GLenum query; // 0: fixed
    GLint fixed;
};

// The limits that glGetIntegerv answers, and those that programs run into without being able to ask.
constexpr std::array Limits = {
    Limit{"GL_MAX_TEXTURE_SIZE", GL_MAX_TEXTURE_SIZE, 0},
    Limit{"GL_MAX_3D_TEXTURE_SIZE", GL_MAX_3D_TEXTURE_SIZE, 0},
    Limit{"GL_MAX_RENDERBUFFER_SIZE", GL_MAX_RENDERBUFFER_SIZE, 0},
    Limit{"texture units", 0, 32},
    Limit{"distinct samplers in a draw", 0, 16},
    Limit{"vertex attributes", 0, 16},
    Limit{"draw buffers", 0, 8},
    Limit{"program local parameters", 0, 256},
    Limit{"matrices in a stack", 0, 17},
};

constexpr std::array Environment = {
    "ZALMETAL_DEVICE_INDEX",  "ZALMETAL_GPU_CAPTURE", "ZALMETAL_GPU_CAPTURE_AT_START", "ZALMETAL_DEVICE_WRAPPER", "ZALMETAL_SHADER_DUMP_DIR",
    "ZALMETAL_SHADER_REPLACE_DIR", "SOFTMETAL_VALIDATION",
    "SOFTMETAL_THREADS",      "SOFTMETAL_LANES",      "SOFTMETAL_ISA",                 "SOFTMETAL_DEVICE_NAME",   "SOFTMETAL_NO_DEVICE",
    "SOFTMETAL_SHADER_LIMIT", "SOFTMETAL_CAPTURE",    "SOFTMETAL_COMPILER",            "SOFTMETAL_LOG_LEVEL",
    "SOFTMETAL_CACHE_DIR",    "SOFTMETAL_CACHE_SIZE",
    "ZALMETAL_LOG_LEVEL",
};

struct Fact
{
    std::string name, value;
    bool number = false, known = true; // unknown values are null
};

struct Section
{
    const char* name;
    std::vector<Fact> facts;
};

Fact text(const char* name, const char* value) { return {name, value ? value : "", false, value != nullptr}; }

Section versions()
{
    std::string version = std::to_string(ZALMETAL_VERSION_MAJOR) + "." + std::to_string(ZALMETAL_VERSION_MINOR) + "." +
                          std::to_string(ZALMETAL_VERSION_PATCH);
    return {"library", {{"ZALMetal", version}}};
}

Section device(MTL::Device* device) { return {"device", {text("name", device->name()->utf8String())}}; }

Section strings()
{
    auto get = [](const char* name, GLenum query) { return text(name, reinterpret_cast<const char*>(glGetString(query))); };
    return {"strings",
            {get("GL_VENDOR", GL_VENDOR), get("GL_RENDERER", GL_RENDERER), get("GL_VERSION", GL_VERSION), get("GL_EXTENSIONS", GL_EXTENSIONS)}};
}

Section limits()
{
    Section section{"limits", {}};
    for (const Limit& limit : Limits) {
        GLint value = limit.query == 0 ? limit.fixed : -1;
        if (limit.query != 0) glGetIntegerv(limit.query, &value);
        bool known = glGetError() == GL_NO_ERROR && value >= 0;
        section.facts.push_back({limit.name, std::to_string(value), true, known});
    }
    return section;
}

Section environment()
{
    Section section{"environment", {}};
    for (const char* name : Environment) section.facts.push_back(text(name, std::getenv(name)));
    return section;
}

std::string quoted(const std::string& value)
{
    std::string result = "\"";
    for (char c : value) {
        if (c == '"' || c == '\\') result += '\\';
        if (static_cast<unsigned char>(c) < 32) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", c);
            result += escape;
        } else {
            result += c;
        }
    }
    return result + "\"";
}

void printJson(const std::vector<Section>& sections)
{
    std::string out = "{";
    for (const Section& section : sections) {
        out += (out.size() > 1 ? ",\n " : "\n ") + quoted(section.name) + ": {";
        for (size_t i = 0; i < section.facts.size(); ++i) {
            const Fact& f = section.facts[i];
            out += (i > 0 ? ",\n  " : "\n  ") + quoted(f.name) + ": " + (!f.known ? "null" : f.number ? f.value : quoted(f.value));
        }
        out += "\n }";
    }
    std::puts((out + "\n}").c_str());
}

void printText(const std::vector<Section>& sections)
{
    for (const Section& section : sections) {
        std::printf("%s\n", section.name);
        for (const Fact& f : section.facts) std::printf("  %-36s %s\n", f.name.c_str(), f.known ? f.value.c_str() : "-");
    }
}

} // namespace

int main(int argc, char** argv)
{
    std::string word = argc == 2 ? argv[1] : "";
    if (argc > 2 || (!word.empty() && word != "--json" && word != "--help" && word != "--version")) {
        std::fputs("usage: zalinfo [--json | --help | --version]\n", stderr);
        return 2;
    }
    if (word == "--help") return std::puts("usage: zalinfo [--json]\nPrints the device, versions, limits, GL strings and environment that a host of libZALMetal finds."), 0;
    if (word == "--version") return std::printf("zalinfo %s\n", versions().facts[0].value.c_str()), 0;

    NS::AutoreleasePool* pool = NS::AutoreleasePool::alloc()->init();
    MTL::Device* metal = MTL::CreateSystemDefaultDevice();
    ZALMetalContext* context = nullptr;
    MTL::CommandQueue* queue = metal ? metal->newCommandQueue() : nullptr;
    if (!queue || ZALMetalContextInitFromMTLCommandQueue(context, nullptr, queue) != ZALMetalResultSuccess) {
        std::fputs("zalinfo: there is no Metal device\n", stderr);
        return 1;
    }
    std::vector<Section> sections = {versions(), device(metal), strings(), limits(), environment()};
    word == "--json" ? printJson(sections) : printText(sections);
    ZALMetalContextDestroy(context);
    queue->release();
    metal->release();
    pool->release();
    return 0;
}
