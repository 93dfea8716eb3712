// SPDX-License-Identifier: Apache-2.0
// Core Foundation's calls on objects and strings, which are the same objects as Foundation's.
#include "foundation/Encodings.h"
#include "foundation/Strings.h"

using namespace softmetal;

namespace {

const std::string& textIn(CFStringRef string) { return static_cast<StringObject*>(castObject(string))->text(); }
CFStringRef toCore(NS::String* string) { return reinterpret_cast<CFStringRef>(string); }

/// An encoding that the room does not know is turned into one that it does not know either.
NS::StringEncoding encodingOf(CFStringEncoding encoding)
{
    switch (encoding) {
    case kCFStringEncodingUTF8: return NS::UTF8StringEncoding;
    case kCFStringEncodingASCII: return NS::ASCIIStringEncoding;
    case kCFStringEncodingISOLatin1: return NS::ISOLatin1StringEncoding;
    default: return NS::SymbolStringEncoding;
    }
}

} // namespace

// ---- objects -----------------------------------------------------------------------------------------------------------

CFTypeRef CFRetain(CFTypeRef object)
{
    NS::Private::retain(object);
    return object;
}

void CFRelease(CFTypeRef object) { NS::Private::release(object); }
CFIndex CFGetRetainCount(CFTypeRef object) { return static_cast<CFIndex>(NS::Private::retainCount(object)); }
Boolean CFEqual(CFTypeRef a, CFTypeRef b) { return castObject(a)->isEqual(castObject(b)); }
CFHashCode CFHash(CFTypeRef object) { return castObject(object)->hash(); }

// ---- strings -----------------------------------------------------------------------------------------------------------

CFStringRef __CFStringMakeConstantString(const char* text) { return toCore(NS::Private::constantString(text)); }

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding)
{
    return toCore(NS::String::alloc()->init(text, encodingOf(encoding)));
}

CFIndex CFStringGetLength(CFStringRef string) { return static_cast<CFIndex>(utf16Length(textIn(string))); }

const char* CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding)
{
    auto bytes = encode(textIn(string), encodingOf(encoding));
    return bytes && *bytes == textIn(string) ? textIn(string).c_str() : nullptr;
}
