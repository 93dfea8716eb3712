// SPDX-License-Identifier: Apache-2.0
#include "foundation/Log.h"
#include "inspect/Inspect.h"
#include "inspect/RuleTable.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

namespace softmetal::inspect {
namespace {

using SoftMetal::Validation;

constexpr size_t MostMessages = 10000;  // kept for takeMessages
constexpr size_t MostSentences = 1000;  // whose repetition is counted
constexpr uint32_t MostRepetitions = 10; // of one sentence in the log

Validation modeFromEnvironment()
{
    const char* mode = std::getenv("SOFTMETAL_VALIDATION");
    if (mode && std::strcmp(mode, "off") == 0) return Validation::Off;
    return mode && std::strcmp(mode, "abort") == 0 ? Validation::Abort : Validation::Report;
}

std::atomic<Validation>& mode()
{
    static std::atomic<Validation> value{modeFromEnvironment()};
    return value;
}

struct Collected
{
    std::mutex mutex;
    std::vector<SoftMetal::Message> messages;
    std::map<std::string, uint32_t> printed;
};

/// Never destroyed: objects that outlive the statics still report.
Collected& collected()
{
    static auto* all = new Collected;
    return *all;
}

std::string fill(const char* sentence, std::initializer_list<std::string> values)
{
    std::string result;
    auto value = values.begin();
    for (const char* c = sentence; *c; ++c) {
        if (c[0] == '{' && c[1] == '}') {
            if (value != values.end()) result += *value++;
            ++c;
        } else {
            result += *c;
        }
    }
    return result;
}

} // namespace

bool validating() { return mode().load(std::memory_order_relaxed) != Validation::Off; }

std::string text(double value)
{
    char digits[40];
    std::snprintf(digits, sizeof digits, "%g", value);
    return digits;
}

void report(Rule rule, std::initializer_list<std::string> values)
{
    if (!validating()) return;
    const RuleRow& row = RuleTable[static_cast<size_t>(rule)];
    std::string sentence = fill(row.sentence, values);
    uint32_t times = 0;
    {
        std::lock_guard lock(collected().mutex);
        auto known = collected().printed.find(sentence);
        if (known != collected().printed.end()) times = ++known->second;
        else if (collected().printed.size() < MostSentences) times = ++collected().printed[sentence];
        if (collected().messages.size() < MostMessages) collected().messages.push_back({row.id, sentence});
    }
    bool last = times == MostRepetitions;
    if (times <= MostRepetitions) log(LogLevel::Error, "SoftMetal validation: " + sentence + " [" + row.id + "]" + (last ? " (not printed again)" : ""));
    if (mode() == Validation::Abort) std::abort();
}

} // namespace softmetal::inspect

namespace SoftMetal {

using namespace softmetal;

void setValidation(Validation value) { inspect::mode() = value; }
Validation validation() { return inspect::mode(); }

std::vector<Message> takeMessages()
{
    std::lock_guard lock(inspect::collected().mutex);
    inspect::collected().printed.clear();
    return std::exchange(inspect::collected().messages, {});
}

std::vector<std::string> validationRules()
{
    std::vector<std::string> ids;
    for (const auto& row : inspect::RuleTable) ids.emplace_back(row.id);
    return ids;
}

} // namespace SoftMetal
