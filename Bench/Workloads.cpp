// SPDX-License-Identifier: Apache-2.0
#include "WorkloadTables.h"

#include "Pattern.h"

#include <vector>

namespace bench {

std::span<const Workload> workloads()
{
    static const auto all = [] {
        std::vector<Workload> table;
        for (auto part : {drawWorkloads(), sceneWorkloads(), fillWorkloads(), programWorkloads(), transferWorkloads()})
            table.insert(table.end(), part.begin(), part.end());
        return table;
    }();
    return all;
}

double measure(const Workload& workload, Run& run, std::chrono::duration<double> atLeast)
{
    using Clock = std::chrono::steady_clock;
    run.step();
    double units = 0;
    auto start = Clock::now();
    std::chrono::duration<double> elapsed{};
    do {
        units += run.step();
        elapsed = Clock::now() - start;
    } while (elapsed < atLeast);
    return workload.scale * (workload.perSecond ? units / elapsed.count() : elapsed.count() / units);
}

void clearAll(const scenes::Host& host)
{
    glViewport(0, 0, host.width(), host.height());
    glDisable(GL_DEPTH_TEST);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

void setLocal(GLuint index, std::array<float, 4> values, GLenum target)
{
    glProgramLocalParameter4fvARB(target, index, values.data());
}

GLuint usePattern(GLint filter)
{
    auto pattern = scenes::glazePattern(256);
    GLuint name = 0;
    glGenTextures(1, &name);
    glActiveTextureARB(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    GLint level = 0;
    for (const auto& texels : pattern.levels) {
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, 256 >> level, 256 >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
        ++level;
    }
    return name;
}

} // namespace bench
