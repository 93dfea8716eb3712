// SPDX-License-Identifier: Apache-2.0
#include "Host.h"

#include "SceneGL.h"

namespace scenes {

Image Host::read()
{
    Image image(width_, height_);
    glReadPixels(0, 0, width_, height_, GL_RGBA, GL_UNSIGNED_BYTE, image.pixels.data());
    flipRows(image);
    return image;
}

} // namespace scenes
