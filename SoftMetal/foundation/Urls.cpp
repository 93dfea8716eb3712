// SPDX-License-Identifier: Apache-2.0
#include "foundation/Strings.h"

#include <cctype>
#include <filesystem>
#include <optional>
#include <string_view>

namespace softmetal {
namespace {

class UrlObject final : public ObjectOf<NS::URL>
{
public:
    /// The path is that of a file; other addresses have none.
    UrlObject(std::string url, std::optional<std::string> file) : address(std::move(url)), path(std::move(file)) {}
    const std::string address;
    const std::optional<std::string> path;

    const char* className() const override { return "NSURL"; }
    Object* copy() const override { return sameAgain(*this); }
    std::string description() const override { return address; }
    bool isEqual(const Object* other) const override
    {
        auto* url = dynamic_cast<const UrlObject*>(other);
        return url && url->address == address;
    }
    NS::UInteger hash() const override { return std::hash<std::string>()(address); }
};

bool needsNoEscape(unsigned char c) { return std::isalnum(c) || std::string_view("/-._~!$&'()*+,=:@").find(static_cast<char>(c)) != std::string_view::npos; }

std::string escaped(std::string_view path)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string result;
    for (char c : path) {
        auto byte = static_cast<unsigned char>(c);
        if (needsNoEscape(byte)) result += c;
        else result += {'%', Digits[byte >> 4], Digits[byte & 15]};
    }
    return result;
}

int digit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    c = static_cast<char>(c | 0x20);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// Nothing when a percent sign is not followed by two digits.
std::optional<std::string> unescaped(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        if (text.size() - i < 3 || digit(text[i + 1]) < 0 || digit(text[i + 2]) < 0) return std::nullopt;
        result += static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2]));
        i += 2;
    }
    return result;
}

/// The path of a file's address, nothing for another scheme.
std::optional<std::string> pathIn(std::string_view address)
{
    constexpr std::string_view Scheme = "file://";
    if (address.substr(0, Scheme.size()) != Scheme) return std::nullopt;
    std::size_t path = address.find('/', Scheme.size()); // after the host, which is empty as a rule
    return path == std::string_view::npos ? std::nullopt : unescaped(address.substr(path));
}

UrlObject* fileUrl(const NS::String* path)
{
    if (!path || textOf(path).empty()) return nullptr;
    std::error_code failure;
    std::string full = std::filesystem::absolute(textOf(path), failure).string();
    if (failure) full = textOf(path); // the working directory is gone
    return new UrlObject("file://" + escaped(full), full);
}

} // namespace
} // namespace softmetal

namespace NS {

using namespace softmetal;

URL* URL::fileURLWithPath(const String* path)
{
    UrlObject* url = fileUrl(path);
    return url ? autoreleased(url) : nullptr;
}

URL* URL::alloc() { return api(new UrlObject({}, {})); }
URL* URL::init() { return this; }

URL* URL::init(const String* string)
{
    release();
    std::string address = textOf(string);
    return address.empty() ? nullptr : api(new UrlObject(address, pathIn(address)));
}

URL* URL::initFileURLWithPath(const String* path)
{
    release();
    UrlObject* url = fileUrl(path);
    return url ? api(url) : nullptr;
}

const char* URL::fileSystemRepresentation() const
{
    const auto& path = cast<UrlObject>(this)->path;
    return path ? path->c_str() : nullptr;
}

} // namespace NS
