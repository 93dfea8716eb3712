// SPDX-License-Identifier: Apache-2.0
// The workloads by subject; Workloads.cpp joins them to one table.
#pragma once

#include "SceneGL.h"
#include "Workload.h"

#include <array>

namespace bench {

std::span<const Workload> drawWorkloads();     // many small draws, and what changes between them
std::span<const Workload> fillWorkloads();     // pixels
std::span<const Workload> sceneWorkloads();    // triangles, attachments, volumes
std::span<const Workload> programWorkloads();  // texts to first draws
std::span<const Workload> transferWorkloads(); // memory to textures and buffers, and back

/// Viewport over the whole target, no depth test, everything black.
void clearAll(const scenes::Host& host);

/// A local parameter of the program that is bound.
void setLocal(GLuint index, std::array<float, 4> values, GLenum target = GL_FRAGMENT_PROGRAM_ARB);

/// A 2D texture of the demo's pattern, bound to unit 0: 256 x 256 texels, with all levels.
GLuint usePattern(GLint filter);

/// A workload that repeats one action and leaves a picture.
class Steps final : public Run
{
public:
    /// The action returns its units; each step begins with clearAll when asked, and ends with glFinish.
    Steps(const scenes::Host& host, bool clears, bool hasPicture, std::function<double()> action)
        : host_(host), clears_(clears), hasPicture_(hasPicture), action_(std::move(action))
    {
    }

    double step() override
    {
        if (clears_) clearAll(host_);
        double units = action_();
        glFinish();
        return units;
    }

    bool picture() override
    {
        if (hasPicture_) step();
        return hasPicture_;
    }

private:
    const scenes::Host& host_;
    bool clears_, hasPicture_;
    std::function<double()> action_;
};

} // namespace bench
