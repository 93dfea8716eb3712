// SPDX-License-Identifier: Apache-2.0
// Each struct's fields stand here, for both directions: a stream is called with them and writes or reads each. They are
// taken apart by structured bindings, so that a field too few does not compile.
#include "shader/cache/Records.h"

#include <cstring>
#include <type_traits>

namespace softmetal::shader
{
namespace
{

template <class Stream>
void fields(Stream& stream, AttributeReflection& record)
{
    auto& [name, index, components, type, active] = record;
    stream(name, index, components, type, active);
}

template <class Stream>
void fields(Stream& stream, VaryingReflection& record)
{
    auto& [name, components, type, interpolation, firstComponent] = record;
    stream(name, components, type, interpolation, firstComponent);
}

template <class Stream>
void fields(Stream& stream, BindingReflection& record)
{
    auto& [kind, name, index, count, textureType, minimumSize, depth, reads, writes, used] = record;
    stream(kind, name, index, count, textureType, minimumSize, depth, reads, writes, used);
}

template <class Stream>
void fields(Stream& stream, ConstantReflection& record)
{
    auto& [name, index, dataType, required] = record;
    stream(name, index, dataType, required);
}

template <class Stream>
void fields(Stream& stream, FunctionReflection& record)
{
    auto& [name, stage, attributes, varyings, bindings, constants, hasPosition, pointSizeComponent, clipComponent,
           clipDistances, colorOutputs, colorTypes, colorComponents, writesDepth, writesStencil, writesCoverage,
           discards, usesPointCoord, earlyFragmentTests, readsDepth, readsInverseW, readsW,
           copiedTexture, copiedPlanes, writesMemory, inputComponents] = record;
    stream(name, stage, attributes, varyings, bindings, constants, hasPosition, pointSizeComponent, clipComponent,
           clipDistances, colorOutputs, colorTypes, colorComponents, writesDepth, writesStencil, writesCoverage,
           discards, usesPointCoord, earlyFragmentTests, readsDepth, readsInverseW, readsW,
           copiedTexture, copiedPlanes, writesMemory, inputComponents);
}

template <class Stream>
void fields(Stream& stream, MachineCode::Import& record)
{
    auto& [slot, name] = record;
    stream(slot, name);
}

template <class Stream>
void fields(Stream& stream, MachineCode& record)
{
    auto& [bytes, entry, imports, places] = record;
    stream(bytes, entry, imports, places);
}

template <class Stream>
void fields(Stream& stream, LibraryRecord& record)
{
    auto& [messages, functions] = record;
    stream(messages, functions);
}

template <class Stream>
void fields(Stream& stream, FunctionRecord& record)
{
    auto& [reflection, code] = record;
    stream(reflection, code);
}

template <class T>
constexpr bool IsPlain = std::is_arithmetic_v<T> || std::is_enum_v<T>;

class Writer
{
public:
    template <class... T>
    void operator()(T&... values)
    {
        (one(values), ...);
    }
    std::vector<uint8_t> take() { return std::move(bytes_); }

private:
    void raw(const void* from, size_t size)
    {
        const auto* bytes = static_cast<const uint8_t*>(from);
        bytes_.insert(bytes_.end(), bytes, bytes + size);
    }
    void length(size_t size)
    {
        uint64_t number = size;
        raw(&number, sizeof number);
    }

    template <class T>
    void one(T& value)
    {
        if constexpr (IsPlain<T>)
            raw(&value, sizeof value);
        else
            fields(*this, value);
    }
    template <class T, size_t Count>
    void one(T (&values)[Count])
    {
        for (T& value : values)
            one(value);
    }
    void one(std::string& text)
    {
        length(text.size());
        raw(text.data(), text.size());
    }
    template <class T>
    void one(std::vector<T>& values)
    {
        length(values.size());
        if constexpr (IsPlain<T>)
            raw(values.data(), values.size() * sizeof(T));
        else
            for (T& value : values)
                one(value);
    }

    std::vector<uint8_t> bytes_;
};

class Reader
{
public:
    explicit Reader(std::span<const uint8_t> bytes) : bytes_(bytes) {}
    template <class... T>
    void operator()(T&... values)
    {
        (one(values), ...);
    }
    bool isWhole() const { return whole_ && bytes_.empty(); }

private:
    void raw(void* to, size_t size)
    {
        whole_ = whole_ && size <= bytes_.size();
        if (!whole_ || size == 0) return;
        std::memcpy(to, bytes_.data(), size);
        bytes_ = bytes_.subspan(size);
    }
    /// How many elements follow; each takes at least so many bytes.
    size_t length(size_t least)
    {
        uint64_t number = 0;
        raw(&number, sizeof number);
        whole_ = whole_ && number <= bytes_.size() / least;
        return whole_ ? number : 0;
    }

    template <class T>
    void one(T& value)
    {
        if constexpr (std::is_same_v<T, bool>) {
            uint8_t byte = 0;
            raw(&byte, 1);
            value = byte != 0;
        } else if constexpr (IsPlain<T>)
            raw(&value, sizeof value);
        else
            fields(*this, value);
    }
    template <class T, size_t Count>
    void one(T (&values)[Count])
    {
        for (T& value : values)
            one(value);
    }
    void one(std::string& text)
    {
        text.resize(length(1));
        raw(text.data(), text.size());
    }
    template <class T>
    void one(std::vector<T>& values)
    {
        values.resize(length(IsPlain<T> ? sizeof(T) : 1));
        if constexpr (IsPlain<T>)
            raw(values.data(), values.size() * sizeof(T));
        else
            for (T& value : values)
                one(value);
    }

    std::span<const uint8_t> bytes_;
    bool whole_ = true;
};

template <class Record>
std::vector<uint8_t> written(const Record& record)
{
    Writer writer;
    fields(writer, const_cast<Record&>(record)); // a writer only looks
    return writer.take();
}

template <class Record>
std::optional<Record> read(std::span<const uint8_t> bytes)
{
    Record record;
    Reader reader(bytes);
    fields(reader, record);
    return reader.isWhole() ? std::optional(std::move(record)) : std::nullopt;
}

} // namespace

std::vector<uint8_t> toBytes(const LibraryRecord& record)
{
    return written(record);
}
std::vector<uint8_t> toBytes(const FunctionRecord& record)
{
    return written(record);
}
std::optional<LibraryRecord> libraryRecord(std::span<const uint8_t> bytes)
{
    return read<LibraryRecord>(bytes);
}
std::optional<FunctionRecord> functionRecord(std::span<const uint8_t> bytes)
{
    return read<FunctionRecord>(bytes);
}

} // namespace softmetal::shader
