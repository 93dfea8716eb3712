// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AppKit/AppKit.hpp>
#include <Metal/Metal.hpp>
#include <QuartzCore/QuartzCore.hpp>

class ZALMetalState;
struct ZALMetalBlitter;

/// Metal objects of a context; shared with the contexts made from it.
struct ZALMetalData
{
    MTL::Device* device;
    MTL::CommandQueue* commandQueue;
    MTL::CaptureScope* captureScope; // null unless capture was started
    bool captureScopeActive;         // between begin and end of the scope
    ZALMetalState* metalState;
    ZALMetalBlitter* blitter;
    int32_t contexts;   // that use this record
    bool ownsObjects;   // device and queue were made here, not handed in
};

/// Where a context presents.
struct ZALMetalDrawable
{
    NSView* view = nullptr; // null when the host supplies textures
    CA::MetalLayer* layer = nullptr;
    CA::MetalDrawable* currentDrawable = nullptr; // retained; null between frames
    MTL::Texture* colorTexture = nullptr;
    MTL::Texture* depthTexture = nullptr;
    MTL::PixelFormat colorPixelFormat = MTL::PixelFormatInvalid;
    MTL::PixelFormat depthPixelFormat = MTL::PixelFormatInvalid;
};
