// SPDX-License-Identifier: Apache-2.0
// What tests and tools look at: broken rules, the command log, injected faults.
#pragma once

#include "inspect/Rules.h"

#include <SoftMetal/SoftMetal.hpp>

#include <concepts>
#include <initializer_list>
#include <string>
#include <vector>

namespace softmetal::inspect {

/// An object that messages and log entries can name.
class Described
{
public:
    virtual const void* deviceIdentity() const = 0; // of the device that it belongs to
    virtual std::string labelText() const = 0;      // in quotes, or "(no label)"
    virtual std::string summary() const { return {}; } // size, format and the like in a line, for readers of traces

protected:
    ~Described() = default;
};

// ---- validation -------------------------------------------------------------------------------------------------------

bool validating();

/// A rule was broken: fills its sentence's braces in order. The call itself goes on as well as it can, or is ignored.
void report(Rule rule, std::initializer_list<std::string> values);

inline std::string text(const char* value) { return value; }
inline std::string text(const std::string& value) { return value; }
inline std::string text(const Described& value) { return value.labelText(); }
inline std::string text(std::integral auto value) { return std::to_string(value); }
std::string text(double value);
template <class Enumeration>
    requires std::is_enum_v<Enumeration>
std::string text(Enumeration value)
{
    return std::to_string(static_cast<std::underlying_type_t<Enumeration>>(value));
}

/// Gives the condition back, and reports when it does not hold. Sentences are made only then.
template <class... Values>
bool require(bool condition, Rule rule, const Values&... values)
{
    if (!condition && validating()) [[unlikely]] report(rule, {text(values)...});
    return condition;
}

// ---- command log --------------------------------------------------------------------------------------------------------

bool logging();
void logCall(const void* receiver, const char* call, std::vector<SoftMetal::LogArgument> arguments);

/// Cheap when the log is off. The receiver is an API pointer.
template <class... Arguments>
void note(const void* receiver, const char* call, Arguments... arguments)
{
    if (logging()) [[unlikely]] logCall(receiver, call, std::vector<SoftMetal::LogArgument>{arguments...});
}

template <class Number>
    requires std::is_arithmetic_v<Number> || std::is_enum_v<Number>
SoftMetal::LogArgument arg(const char* name, Number value)
{
    return {name, static_cast<double>(value), nullptr, {}};
}
inline SoftMetal::LogArgument arg(const char* name, const void* object) { return {name, 0, object, {}}; }
inline SoftMetal::LogArgument arg(const char* name, const std::string& value) { return {name, 0, nullptr, value}; }

/// An object as it was when a call named it.
struct TracedObject
{
    std::string className, label, summary;
};

/// A call, and a number for each object that it names: addresses are used again, these are not. Null has number 0.
struct TracedCall
{
    SoftMetal::LogEntry entry;
    uint32_t receiver = 0;
    std::vector<uint32_t> objects; // one for each argument
};

struct Trace
{
    std::vector<TracedCall> calls;
    std::vector<TracedObject> objects; // number n lies at n - 1
};

/// For trace documents: every call between the two, whatever the command log is set to.
void beginTrace();
Trace endTrace();

// ---- faults ---------------------------------------------------------------------------------------------------------------

/// Counts a call that may fail and says whether this one has to.
bool fails(const char* point);
/// The same for a call that is not among those that "*" means.
bool failsByName(const char* point);

} // namespace softmetal::inspect
