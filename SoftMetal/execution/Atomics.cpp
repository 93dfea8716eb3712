// SPDX-License-Identifier: Apache-2.0
#include "execution/Atomics.h"

#include <algorithm>
#include <atomic>

namespace softmetal
{
namespace
{

using abi::AtomicOperation;
constexpr auto Relaxed = std::memory_order_relaxed;

/// What has no operation of the machine's own is tried until nobody came between.
template <class Function>
uint32_t changed(std::atomic_ref<uint32_t> number, Function function)
{
    uint32_t before = number.load(Relaxed);
    while (!number.compare_exchange_weak(before, function(before), Relaxed)) {
    }
    return before;
}

uint32_t lesserSigned(uint32_t a, uint32_t b)
{
    return static_cast<int32_t>(a) < static_cast<int32_t>(b) ? a : b;
}
uint32_t greaterSigned(uint32_t a, uint32_t b)
{
    return static_cast<int32_t>(a) > static_cast<int32_t>(b) ? a : b;
}

uint32_t run(AtomicOperation operation, std::atomic_ref<uint32_t> number, uint32_t operand, uint32_t expected)
{
    switch (operation) {
    case AtomicOperation::Exchange:
        return number.exchange(operand, Relaxed);
    case AtomicOperation::Add:
        return number.fetch_add(operand, Relaxed);
    case AtomicOperation::Subtract:
        return number.fetch_sub(operand, Relaxed);
    case AtomicOperation::And:
        return number.fetch_and(operand, Relaxed);
    case AtomicOperation::Or:
        return number.fetch_or(operand, Relaxed);
    case AtomicOperation::Xor:
        return number.fetch_xor(operand, Relaxed);
    case AtomicOperation::SignedMin:
        return changed(number, [=](uint32_t v) { return lesserSigned(v, operand); });
    case AtomicOperation::SignedMax:
        return changed(number, [=](uint32_t v) { return greaterSigned(v, operand); });
    case AtomicOperation::UnsignedMin:
        return changed(number, [=](uint32_t v) { return std::min(v, operand); });
    case AtomicOperation::UnsignedMax:
        return changed(number, [=](uint32_t v) { return std::max(v, operand); });
    case AtomicOperation::CompareExchange:
        number.compare_exchange_strong(expected, operand, Relaxed);
        return expected;
    default:
        return number.load(Relaxed);
    }
}

} // namespace

void runAtomics(abi::AtomicCall* call)
{
    for (uint32_t i = 0; i < abi::MaxLanes; ++i) {
        bool aligned = call->address[i] % alignof(uint32_t) == 0; // an address of another kind is no atomic number's
        if (!(call->mask >> i & 1) || !aligned) continue;
        std::atomic_ref<uint32_t> number(*reinterpret_cast<uint32_t*>(call->address[i]));
        call->before.u[i] = run(call->operation, number, call->operand.u[i], call->expected.u[i]);
    }
}

} // namespace softmetal
