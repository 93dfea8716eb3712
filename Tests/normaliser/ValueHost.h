// SPDX-License-Identifier: Apache-2.0
// Where the two GLs that draw the cases differ. One source implements it for each; a program links one of them.
#pragma once

#include <string>
#include <string_view>

namespace normaliser
{

/// The program as this GL takes it; empty when it cannot.
std::string prepared(std::string_view program);

/// A parameter of all programs of a stage, for the program that is bound.
void setGlobal(unsigned target, unsigned index, const float* values);

/// A vertex attribute by its generic number and by the conventional name that it stands for; number 0 ends the vertex.
void setAttribute(unsigned index, const float* values);

} // namespace normaliser
