// SPDX-License-Identifier: Apache-2.0
// The Objective-C messages that metal-cpp does not send.
#include <AppKit/AppKit.hpp>

#include <cstdlib>
#include <cstring>

#include <objc/message.h>
#include <objc/runtime.h>

// AppKit's own function; the one of this header is C++ and takes C strings.
extern "C" void NSLogv(const NS::String* format, va_list arguments);

namespace {

/// objc_msgSend as the function that it stands in for, which the calling convention asks for.
template <typename Result, typename... Arguments> Result send(const void* receiver, const char* selector, Arguments... arguments)
{
    auto message = reinterpret_cast<Result (*)(const void*, SEL, Arguments...)>(&objc_msgSend);
    return message(receiver, sel_registerName(selector), arguments...);
}

} // namespace

void NSView::setWantsLayer(bool wantsLayer)
{
    send<void>(this, "setWantsLayer:", wantsLayer);
}

void NSView::setLayer(CA::MetalLayer* layer)
{
    send<void>(this, "setLayer:", layer);
}

CGRect NSView::bounds() const
{
    // A rectangle comes back through memory on x86-64; metal-cpp knows which way to go.
    return sendMessage<CGRect>(this, sel_registerName("bounds"));
}

void NSView::setPostsFrameChangedNotifications(bool posts)
{
    send<void>(this, "setPostsFrameChangedNotifications:", posts);
}

void NSLog(const char* format, ...)
{
    NS::AutoreleasePool* pool = NS::AutoreleasePool::alloc()->init();
    va_list arguments;
    va_start(arguments, format);
    NSLogv(NS::String::string(format, NS::UTF8StringEncoding), arguments);
    va_end(arguments);
    pool->release();
}

namespace NS
{

void raise(const char* name, const char* reason)
{
    using Raise = void (*)(Class, SEL, const String*, const String*, ...); // the method is variadic, and so is the call
    auto raiseFormat = reinterpret_cast<Raise>(&objc_msgSend);
    raiseFormat(reinterpret_cast<Class>(objc_lookUpClass("NSException")), sel_registerName("raise:format:"),
                String::string(name, UTF8StringEncoding), String::string("%@", UTF8StringEncoding),
                String::string(reason, UTF8StringEncoding));
    std::abort(); // an exception has left already
}

bool hasPrefix(const String* text, const char* prefix)
{
    const char* bytes = text ? text->utf8String() : nullptr;
    return bytes && std::strncmp(bytes, prefix, std::strlen(prefix)) == 0;
}

}
