// SPDX-License-Identifier: Apache-2.0
#include "shader/stdlib/StandardHeader.h"

namespace softmetal::shader
{
namespace
{

constexpr const char* Core =
#include "shader/stdlib/Core.inc"
    ;
constexpr const char* Math =
#include "shader/stdlib/Math.inc"
    ;
constexpr const char* Functions =
#include "shader/stdlib/Functions.inc"
    ;
constexpr const char* Traits =
#include "shader/stdlib/Traits.inc"
    ;
constexpr const char* Textures =
#include "shader/stdlib/Textures.inc"
    ;
constexpr const char* Atomics =
#include "shader/stdlib/Atomics.inc"
    ;
constexpr const char* Uses =
#include "shader/stdlib/Uses.inc"
    ;
constexpr const char* End =
#include "shader/stdlib/End.inc"
    ;

} // namespace

std::string standardHeader()
{
    return Core + vectorText() + matrixText() + std::string(Math) + functionText() + Functions + Traits + Textures +
           Atomics + Uses + End;
}

} // namespace softmetal::shader
