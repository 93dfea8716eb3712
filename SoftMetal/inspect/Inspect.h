// SPDX-License-Identifier: Apache-2.0
// What tests and tools look at: broken rules, the command log, injected faults.
#pragma once

#include <SoftMetal/SoftMetal.hpp>

#include <vector>
#include <string>
#include <string_view>

namespace softmetal::inspect {

// ---- validation -------------------------------------------------------------------------------------------------------

/// A rule of the API was broken: the sentence names the call, the object and the rule. The call itself goes on as well as
/// it can, or is ignored.
void report(const char* rule, const std::string& sentence);
bool validating();

/// Reports when the condition does not hold, and gives it back.
inline bool require(bool condition, const char* rule, const char* sentence)
{
    if (!condition && validating()) report(rule, sentence);
    return condition;
}

// ---- command log --------------------------------------------------------------------------------------------------------

bool logging();
void logCall(const void* receiver, const char* call, std::vector<SoftMetal::LogArgument> arguments);

/// Cheap when the log is off.
template <class... Arguments>
void note(const void* receiver, const char* call, Arguments... arguments)
{
    if (logging()) [[unlikely]] logCall(receiver, call, std::vector<SoftMetal::LogArgument>{arguments...});
}

inline SoftMetal::LogArgument arg(const char* name, double value) { return {name, value, nullptr, {}}; }
inline SoftMetal::LogArgument arg(const char* name, const void* object) { return {name, 0, object, {}}; }
inline SoftMetal::LogArgument arg(const char* name, const std::string& text) { return {name, 0, nullptr, text}; }

// ---- faults ---------------------------------------------------------------------------------------------------------------

/// Counts a call that may fail and says whether this one has to.
bool fails(const char* point);

} // namespace softmetal::inspect
