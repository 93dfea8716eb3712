// SPDX-License-Identifier: Apache-2.0
// The debugging switches of the state record, read from the environment. Only context creation calls this.
#include "ZALGLState.h"

#include "ZALMetalLog.h"

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace
{

/// False, with the output untouched, when the text is not a whole number from beginning to end.
bool parse(std::string_view text, int32_t& value)
{
    int32_t number = 0;
    auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (status != std::errc() || end != text.data() + text.size()) return false;
    value = number;
    return true;
}

/// As above, for a switch: 1 or 0.
bool parse(std::string_view text, uint8_t& flag)
{
    if (text != "0" && text != "1") return false;
    flag = text == "1";
    return true;
}

/// An unset variable leaves the default; so does a value that cannot be read, with one line in the log.
template <class Field>
void readSwitch(const char* name, Field& field)
{
    const char* text = std::getenv(name);
    if (text && !parse(text, field)) ZALMetal::Log(ZALMetalLogLevelWarn, "ZAL Metal, ignoring %s, its value \"%s\" cannot be read.", name, text);
}

} // namespace

void ApplyEnvironmentSwitches(ZALGLState& state)
{
    readSwitch("ZALMETAL_DEVICE_INDEX", state.deviceIndex);
    readSwitch("ZALMETAL_GPU_CAPTURE", state.enableDebugGPUCapture);
    readSwitch("ZALMETAL_GPU_CAPTURE_AT_START", state.debugCaptureAtStart);
    readSwitch("ZALMETAL_DEVICE_WRAPPER", state.useMetalDeviceWrapper);
}
