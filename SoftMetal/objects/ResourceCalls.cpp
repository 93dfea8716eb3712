// SPDX-License-Identifier: Apache-2.0
// Metal's calls on buffers, textures and states.
#include "formats/PixelFormat.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"
#include "objects/Resources.h"
#include "texturing/Copy.h"
#include "texturing/Sampling.h"

#include <algorithm>

using namespace softmetal;

namespace softmetal {
namespace {

MTL::Device* deviceOf(const DeviceObject* device) { return api(device); }

NS::String* labelOf(const ObjectRef& label) { return reinterpret_cast<NS::String*>(label.get()); }

bool isTexture(const Object* object) { return dynamic_cast<const TextureObject*>(object) != nullptr; }

texturing::Block blockOf(const MTL::Region& r)
{
    auto n = [](NS::UInteger v) { return static_cast<uint32_t>(v); };
    return {n(r.origin.x), n(r.origin.y), n(r.origin.z), n(r.size.width), n(r.size.height), n(r.size.depth)};
}

/// The checks that reading and writing from the processor have in common.
bool accessible(const TextureObject& texture, const char* call, const MTL::Region& region, NS::UInteger level, NS::UInteger slice)
{
    std::string subject = std::string(call) + " on texture '" + texture.labelText() + "': ";
    if (texture.description.storageMode == MTL::StorageModePrivate) {
        inspect::report("texture.private-access", subject + "a texture in private storage cannot be reached by the processor");
        return false;
    }
    if (texture.inside(region, level, slice)) return true;
    inspect::report("texture.region", subject + "the region, level or slice lies outside the texture");
    return false;
}

} // namespace
} // namespace softmetal

// ---- Resource ------------------------------------------------------------------------------------------------------------

NS::String* MTL::Resource::label() const
{
    auto* object = castObject(this);
    return labelOf(isTexture(object) ? static_cast<TextureObject*>(object)->label : static_cast<BufferObject*>(object)->label);
}

void MTL::Resource::setLabel(const NS::String* label)
{
    auto* object = castObject(this);
    (isTexture(object) ? static_cast<TextureObject*>(object)->label : static_cast<BufferObject*>(object)->label) = ObjectRef(castObject(label));
}

MTL::Device* MTL::Resource::device() const
{
    auto* object = castObject(this);
    return deviceOf((isTexture(object) ? static_cast<TextureObject*>(object)->device : static_cast<BufferObject*>(object)->device).get());
}

MTL::ResourceOptions MTL::Resource::resourceOptions() const
{
    auto* object = castObject(this);
    if (!isTexture(object)) return static_cast<BufferObject*>(object)->options;
    return api(&static_cast<TextureObject*>(object)->description)->resourceOptions();
}

MTL::CPUCacheMode MTL::Resource::cpuCacheMode() const { return static_cast<CPUCacheMode>(resourceOptions() & 15); }
MTL::StorageMode MTL::Resource::storageMode() const { return static_cast<StorageMode>(resourceOptions() >> 4 & 15); }
MTL::HazardTrackingMode MTL::Resource::hazardTrackingMode() const { return static_cast<HazardTrackingMode>(resourceOptions() >> 8 & 3); }
MTL::PurgeableState MTL::Resource::setPurgeableState(PurgeableState) { return PurgeableStateNonVolatile; }

NS::UInteger MTL::Resource::allocatedSize() const
{
    auto* object = castObject(this);
    if (!isTexture(object)) return static_cast<BufferObject*>(object)->length;
    const auto& texture = *static_cast<TextureObject*>(object);
    NS::UInteger bytes = 0;
    for (uint32_t i = 0; i < texture.view.levelCount; ++i) bytes += texture.view.levels[i].slicePitch * texture.slices();
    return bytes;
}

// ---- Buffer --------------------------------------------------------------------------------------------------------------

NS::UInteger MTL::Buffer::length() const { return cast<BufferObject>(this)->length; }

void* MTL::Buffer::contents()
{
    auto& buffer = *cast<BufferObject>(this);
    bool reachable = (buffer.options >> 4 & 15) != StorageModePrivate;
    if (!inspect::require(reachable, "buffer.private-contents", "contents: a buffer in private storage cannot be reached by the processor")) return nullptr;
    return buffer.memory.data();
}

void MTL::Buffer::didModifyRange(NS::Range range)
{
    auto& buffer = *cast<BufferObject>(this);
    inspect::note(this, "didModifyRange", inspect::arg("location", static_cast<double>(range.location)), inspect::arg("length", static_cast<double>(range.length)));
    if (range.location > buffer.length || range.length > buffer.length - range.location)
        inspect::report("buffer.modified-range", "didModifyRange on buffer '" + buffer.labelText() + "': the range ends beyond the buffer's length (" +
                                                     std::to_string(buffer.length) + ")");
}

MTL::Texture* MTL::Buffer::newTexture(const TextureDescriptor*, NS::UInteger, NS::UInteger) { return nullptr; }
void MTL::Buffer::addDebugMarker(const NS::String*, NS::Range) {}
void MTL::Buffer::removeAllDebugMarkers() {}

// ---- Texture -------------------------------------------------------------------------------------------------------------

MTL::Texture* MTL::Texture::parentTexture() const { return api(cast<TextureObject>(this)->parent.get()); }
NS::UInteger MTL::Texture::parentRelativeLevel() const { return 0; }
NS::UInteger MTL::Texture::parentRelativeSlice() const { return 0; }
MTL::Buffer* MTL::Texture::buffer() const { return nullptr; }
NS::UInteger MTL::Texture::bufferOffset() const { return 0; }
NS::UInteger MTL::Texture::bufferBytesPerRow() const { return 0; }
MTL::TextureType MTL::Texture::textureType() const { return cast<TextureObject>(this)->description.textureType; }
MTL::PixelFormat MTL::Texture::pixelFormat() const { return cast<TextureObject>(this)->description.pixelFormat; }
NS::UInteger MTL::Texture::width() const { return cast<TextureObject>(this)->description.width; }
NS::UInteger MTL::Texture::height() const { return cast<TextureObject>(this)->description.height; }
NS::UInteger MTL::Texture::depth() const { return cast<TextureObject>(this)->description.depth; }
NS::UInteger MTL::Texture::mipmapLevelCount() const { return cast<TextureObject>(this)->description.mipmapLevelCount; }
NS::UInteger MTL::Texture::sampleCount() const { return 1; }
NS::UInteger MTL::Texture::arrayLength() const { return cast<TextureObject>(this)->description.arrayLength; }
MTL::TextureUsage MTL::Texture::usage() const { return cast<TextureObject>(this)->description.usage; }
MTL::TextureSwizzleChannels MTL::Texture::swizzle() const { return cast<TextureObject>(this)->description.swizzle; }

void MTL::Texture::replaceRegion(Region region, NS::UInteger level, NS::UInteger slice, const void* bytes, NS::UInteger bytesPerRow, NS::UInteger bytesPerImage)
{
    auto& texture = *cast<TextureObject>(this);
    inspect::note(this, "replaceRegion", inspect::arg("x", static_cast<double>(region.origin.x)), inspect::arg("y", static_cast<double>(region.origin.y)),
                  inspect::arg("z", static_cast<double>(region.origin.z)), inspect::arg("width", static_cast<double>(region.size.width)),
                  inspect::arg("height", static_cast<double>(region.size.height)), inspect::arg("depth", static_cast<double>(region.size.depth)),
                  inspect::arg("level", static_cast<double>(level)), inspect::arg("slice", static_cast<double>(slice)),
                  inspect::arg("bytesPerRow", static_cast<double>(bytesPerRow)), inspect::arg("bytesPerImage", static_cast<double>(bytesPerImage)));
    if (!bytes || !accessible(texture, "replaceRegion", region, level, slice)) return;
    texturing::Image to{&texture.view, static_cast<uint32_t>(level), static_cast<uint32_t>(slice)};
    texturing::copyMemoryToTexture(static_cast<const uint8_t*>(bytes), bytesPerRow, bytesPerImage, to, blockOf(region), texturing::Aspect::All);
}

void MTL::Texture::replaceRegion(Region region, NS::UInteger level, const void* bytes, NS::UInteger bytesPerRow)
{
    replaceRegion(region, level, 0, bytes, bytesPerRow, bytesPerRow * region.size.height);
}

void MTL::Texture::getBytes(const void* bytes, NS::UInteger bytesPerRow, NS::UInteger bytesPerImage, Region region, NS::UInteger level, NS::UInteger slice)
{
    auto& texture = *cast<TextureObject>(this);
    inspect::note(this, "getBytes", inspect::arg("level", static_cast<double>(level)), inspect::arg("slice", static_cast<double>(slice)));
    if (!bytes || !accessible(texture, "getBytes", region, level, slice)) return;
    texturing::Image from{&texture.view, static_cast<uint32_t>(level), static_cast<uint32_t>(slice)};
    auto* out = static_cast<uint8_t*>(const_cast<void*>(bytes)); // the API's own signature: the caller's memory is written
    texturing::copyTextureToMemory(from, blockOf(region), out, bytesPerRow, bytesPerImage, texturing::Aspect::All);
}

void MTL::Texture::getBytes(const void* bytes, NS::UInteger bytesPerRow, Region region, NS::UInteger level)
{
    getBytes(bytes, bytesPerRow, bytesPerRow * region.size.height, region, level, 0);
}

MTL::Texture* MTL::Texture::newTextureView(PixelFormat format) { return newTextureView(format, textureType(), NS::Range(0, mipmapLevelCount()), NS::Range(0, cast<TextureObject>(this)->slices())); }

MTL::Texture* MTL::Texture::newTextureView(PixelFormat format, TextureType type, NS::Range levels, NS::Range slices)
{
    return newTextureView(format, type, levels, slices, swizzle());
}

MTL::Texture* MTL::Texture::newTextureView(PixelFormat format, TextureType type, NS::Range levels, NS::Range slices, TextureSwizzleChannels channels)
{
    auto& texture = *cast<TextureObject>(this);
    const auto *ours = formats::pixelFormatInfo(texture.view.format), *wanted = formats::pixelFormatInfo(static_cast<uint32_t>(format));
    bool fits = wanted && wanted->bytes == ours->bytes && levels.length > 0 && levels.Max() <= texture.view.levelCount && slices.length > 0 && slices.Max() <= texture.slices();
    if (!inspect::require(fits, "texture.view", "newTextureView: the format's size, the levels or the slices do not fit the texture")) return nullptr;
    TextureDescriptorObject description(texture.description);
    auto* view = new TextureObject(texture.device.get(), description, texture.memory);
    view->parent = Ref<TextureObject>(&texture);
    view->description.pixelFormat = format;
    view->description.textureType = type;
    view->description.swizzle = channels;
    view->description.mipmapLevelCount = levels.length;
    view->description.arrayLength = type == TextureTypeCube || type == TextureTypeCubeArray ? slices.length / 6 : slices.length;
    const abi::TextureLevel& first = texture.view.levels[levels.location];
    view->description.width = first.width;
    view->description.height = first.height;
    view->description.depth = first.depth;
    abi::Texture& v = view->view;
    v = texture.view;
    for (NS::UInteger i = 0; i < levels.length; ++i) {
        v.levels[i] = texture.view.levels[levels.location + i];
        v.levels[i].data += slices.location * v.levels[i].slicePitch;
    }
    v.type = static_cast<uint32_t>(type);
    v.format = static_cast<uint32_t>(format);
    v.width = first.width;
    v.height = first.height;
    v.depth = first.depth;
    v.levelCount = static_cast<uint32_t>(levels.length);
    v.arrayLength = static_cast<uint32_t>(view->description.arrayLength);
    const uint8_t swizzle[4] = {channels.red, channels.green, channels.blue, channels.alpha};
    std::copy(swizzle, swizzle + 4, v.swizzle);
    texturing::prepareTexture(v);
    return api(view);
}

// ---- states --------------------------------------------------------------------------------------------------------------

NS::String* MTL::SamplerState::label() const { return labelOf(cast<SamplerStateObject>(this)->label); }
MTL::Device* MTL::SamplerState::device() const { return deviceOf(cast<SamplerStateObject>(this)->device.get()); }
NS::String* MTL::DepthStencilState::label() const { return labelOf(cast<DepthStencilStateObject>(this)->label); }
MTL::Device* MTL::DepthStencilState::device() const { return deviceOf(cast<DepthStencilStateObject>(this)->device.get()); }
NS::String* MTL::RenderPipelineState::label() const { return labelOf(cast<RenderPipelineStateObject>(this)->label); }
MTL::Device* MTL::RenderPipelineState::device() const { return deviceOf(cast<RenderPipelineStateObject>(this)->device.get()); }
NS::String* MTL::Fence::label() const { return labelOf(cast<FenceObject>(this)->label); }
void MTL::Fence::setLabel(const NS::String* label) { cast<FenceObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::Fence::device() const { return deviceOf(cast<FenceObject>(this)->device.get()); }

// ---- Library, Function ------------------------------------------------------------------------------------------------------

namespace {

constexpr const char* LibraryDomain = "MTLLibraryErrorDomain";

MTL::Function* makeFunction(LibraryObject& library, const NS::String* name, const std::vector<shader::ConstantValue>& values, NS::Error** error)
{
    std::string why;
    std::shared_ptr<shader::Function> function;
    if (inspect::fails("newFunction")) why = "the function could not be made (injected fault)";
    else function = library.library->specialise(textOf(name), values, why);
    if (function) return api(new FunctionObject(library.device.get(), std::move(function)));
    report(error, LibraryDomain, MTL::LibraryErrorFunctionNotFound, why);
    return nullptr;
}

/// Bytes of one value of a data type, and of one element where an array of them is packed.
size_t sizeOf(MTL::DataType type)
{
    struct Row
    {
        uint32_t first;
        size_t bytes;
    };
    static constexpr Row Rows[] = {{3, 4}, {16, 2}, {29, 4}, {33, 4}, {37, 2}, {41, 2}, {45, 1}, {49, 1}, {53, 1}};
    for (const Row& row : Rows)
        if (type >= row.first && type < row.first + 4) {
            size_t components = type - row.first + 1;
            return row.bytes * (components == 3 ? 4 : components);
        }
    return 0;
}

void addValue(ConstantValuesObject& all, const uint8_t* from, MTL::DataType type, NS::UInteger index, std::string name)
{
    shader::ConstantValue value{};
    value.index = static_cast<uint32_t>(index);
    value.name = std::move(name);
    value.dataType = static_cast<uint32_t>(type);
    std::copy(from, from + std::min(sizeOf(type), sizeof value.bytes), value.bytes);
    all.values.push_back(std::move(value));
}

} // namespace

NS::String* MTL::Library::label() const { return labelOf(cast<LibraryObject>(this)->label); }
void MTL::Library::setLabel(const NS::String* label) { cast<LibraryObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::Library::device() const { return deviceOf(cast<LibraryObject>(this)->device.get()); }
MTL::Function* MTL::Library::newFunction(const NS::String* name) { return makeFunction(*cast<LibraryObject>(this), name, {}, nullptr); }

MTL::Function* MTL::Library::newFunction(const NS::String* name, const FunctionConstantValues* values, NS::Error** error)
{
    static const std::vector<shader::ConstantValue> None;
    return makeFunction(*cast<LibraryObject>(this), name, values ? cast<ConstantValuesObject>(values)->values : None, error);
}

NS::Array* MTL::Library::functionNames() const
{
    std::vector<NS::Object*> names;
    for (const std::string& name : cast<LibraryObject>(this)->library->functionNames()) names.push_back(newString(name));
    NS::Array* result = NS::Array::array(names.data(), names.size());
    for (NS::Object* name : names) name->release();
    return result;
}

NS::String* MTL::Function::label() const { return labelOf(cast<FunctionObject>(this)->label); }
void MTL::Function::setLabel(const NS::String* label) { cast<FunctionObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::Function::device() const { return deviceOf(cast<FunctionObject>(this)->device.get()); }
NS::String* MTL::Function::name() const { return autoreleasedString(cast<FunctionObject>(this)->function->reflection().name); }

MTL::FunctionType MTL::Function::functionType() const
{
    return cast<FunctionObject>(this)->function->reflection().stage == shader::Stage::Vertex ? FunctionTypeVertex : FunctionTypeFragment;
}

MTL::FunctionConstantValues* MTL::FunctionConstantValues::alloc() { return api(new ConstantValuesObject); }
MTL::FunctionConstantValues* MTL::FunctionConstantValues::init() { return this; }
void MTL::FunctionConstantValues::reset() { cast<ConstantValuesObject>(this)->values.clear(); }

void MTL::FunctionConstantValues::setConstantValue(const void* value, DataType type, NS::UInteger index)
{
    addValue(*cast<ConstantValuesObject>(this), static_cast<const uint8_t*>(value), type, index, {});
}

void MTL::FunctionConstantValues::setConstantValues(const void* values, DataType type, NS::Range range)
{
    auto* from = static_cast<const uint8_t*>(values);
    for (NS::UInteger i = 0; i < range.length; ++i, from += sizeOf(type)) addValue(*cast<ConstantValuesObject>(this), from, type, range.location + i, {});
}

void MTL::FunctionConstantValues::setConstantValue(const void* value, DataType type, const NS::String* name)
{
    addValue(*cast<ConstantValuesObject>(this), static_cast<const uint8_t*>(value), type, 0, textOf(name));
}
