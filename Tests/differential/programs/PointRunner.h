// SPDX-License-Identifier: Apache-2.0
// Runs pairs of programs on whatever GL is current: every input is a point on a pixel of its own in eight float
// targets, so that nothing is interpolated.
#pragma once

#include "SceneGL.h"
#include "differential/programs/Pairs.h"

namespace differential
{

class PointRunner
{
public:
    static constexpr int Rows = 32; // pairs between two read-backs

    PointRunner();

    /// False, with GL's words in error, when a program is refused. Its points go to the next row.
    bool run(const std::string& vertex, const std::string& fragment, const std::array<Inputs, PointsPerPair>& points,
             std::string& error);
    int rows() const { return row_; }
    /// The results of the rows so far; begins again at the first row.
    std::vector<Drawn> results();

private:
    void clear();
    bool load(GLenum target, const std::string& text, const Inputs& inputs, std::string& error);

    int row_ = 0;
    GLuint targets_[ColorsPerPoint] = {}, programs_[2] = {}, buffer_ = 0;
};

} // namespace differential
