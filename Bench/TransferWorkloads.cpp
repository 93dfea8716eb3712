// SPDX-License-Identifier: Apache-2.0
// Memory to textures and buffers and back, in bytes of the host's layout; memory_copy is what the machine itself does.
#include "Draws.h"
#include "WorkloadTables.h"

#include <cstring>
#include <memory>
#include <vector>

namespace bench {
namespace {

using scenes::Host;
using Bytes = std::vector<uint8_t>;

constexpr int Side = 1024; // of uploaded textures

std::shared_ptr<Bytes> bytesOf(size_t count)
{
    auto bytes = std::make_shared<Bytes>(count);
    for (size_t i = 0; i < count; ++i) (*bytes)[i] = static_cast<uint8_t>(i * 7);
    return bytes;
}

std::unique_ptr<Run> makeCopy(Host& host, std::string&)
{
    auto from = bytesOf(size_t{4} * Side * Side), to = bytesOf(from->size());
    return std::make_unique<Steps>(host, false, false, [from, to] {
        std::memcpy(to->data(), from->data(), from->size());
        return static_cast<double>(from->size());
    });
}

template <GLint Internal, GLenum Format, GLenum Type, int TexelBytes>
std::unique_ptr<Run> makeUpload(Host& host, std::string&)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    auto bytes = bytesOf(size_t{TexelBytes} * Side * Side);
    return std::make_unique<Steps>(host, false, false, [bytes] {
        glTexImage2D(GL_TEXTURE_2D, 0, Internal, Side, Side, 0, Format, Type, bytes->data());
        return static_cast<double>(bytes->size());
    });
}

template <GLenum Format, GLenum Type, int TexelBytes>
std::unique_ptr<Run> makeRead(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {0.2f, 0.4f, 0.6f, 1});
    useQuad();
    clearAll(host);
    drawQuad();
    auto bytes = bytesOf(static_cast<size_t>(TexelBytes) * static_cast<size_t>(host.width()) * static_cast<size_t>(host.height()));
    return std::make_unique<Steps>(host, false, false, [&host, bytes] {
        glReadPixels(0, 0, host.width(), host.height(), Format, Type, bytes->data());
        return static_cast<double>(bytes->size());
    });
}

template <int Size, int Times>
std::unique_ptr<Run> makeBuffer(Host& host, std::string&)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, Size, nullptr, GL_DYNAMIC_DRAW);
    auto bytes = bytesOf(Size);
    return std::make_unique<Steps>(host, false, false, [bytes] {
        for (int i = 0; i < Times; ++i) glBufferSubData(GL_ARRAY_BUFFER, 0, Size, bytes->data());
        return double{Times};
    });
}

std::unique_ptr<Run> makeSwap(Host& host, std::string&)
{
    return std::make_unique<Steps>(host, true, false, [&host] {
        host.swap();
        return 1.0;
    });
}

constexpr std::array Table = {
    Workload{"memory_copy", "GB/s", true, 1e-9, "4 MiB, memory to memory: no GL at all", makeCopy},
    Workload{"upload_bgra8", "GB/s", true, 1e-9, "glTexImage2D of 1024 x 1024, GL_BGRA bytes to GL_RGBA8", makeUpload<GL_RGBA8, GL_BGRA, GL_UNSIGNED_BYTE, 4>},
    Workload{"upload_rgba8", "GB/s", true, 1e-9, "as upload_bgra8, GL_RGBA bytes", makeUpload<GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, 4>},
    Workload{"upload_rgb8", "GB/s", true, 1e-9, "as upload_bgra8, GL_RGB bytes to GL_RGB8", makeUpload<GL_RGB8, GL_RGB, GL_UNSIGNED_BYTE, 3>},
    Workload{"upload_rgba32f", "GB/s", true, 1e-9, "as upload_bgra8, floats", makeUpload<GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT, 16>},
    Workload{"read_bgra8", "GB/s", true, 1e-9, "glReadPixels of the whole target, GL_BGRA bytes", makeRead<GL_BGRA, GL_UNSIGNED_BYTE, 4>},
    Workload{"read_rgba8", "GB/s", true, 1e-9, "as read_bgra8, GL_RGBA bytes", makeRead<GL_RGBA, GL_UNSIGNED_BYTE, 4>},
    Workload{"read_rgba32f", "GB/s", true, 1e-9, "as read_bgra8, floats", makeRead<GL_RGBA, GL_FLOAT, 16>},
    Workload{"buffer_256", "us", false, 1e6, "glBufferSubData of 256 bytes", makeBuffer<256, 1000>},
    Workload{"buffer_1m", "us", false, 1e6, "as buffer_256, 1 MiB", makeBuffer<1 << 20, 10>},
    Workload{"swap", "ms", false, 1e3, "clear and present the target", makeSwap},
    Workload{"swap_4k", "ms", false, 1e3, "as swap, 3840 x 2160", makeSwap, 3840, 2160},
};

} // namespace

std::span<const Workload> transferWorkloads() { return Table; }

} // namespace bench
