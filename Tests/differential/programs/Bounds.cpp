// SPDX-License-Identifier: Apache-2.0
#include "differential/programs/Bounds.h"

#include <algorithm>
#include <cmath>

namespace differential
{
namespace
{

constexpr double Ulp = 1.1920928955078125e-7; // of 1, as a fraction of any value
constexpr double Tiny = 1e-37;                // what becomes 0 in a library that has no denormal numbers
constexpr double Largest = 1e15;              // beyond it values count as unknown
constexpr double Infinite = std::numeric_limits<double>::infinity();

Value known(double v, double e)
{
    if (!(std::abs(v) + e < Largest)) return {0, Infinite};
    return {v, e};
}

/// Rounded some units in the last place away.
Value rounded(double v, double e, double units)
{
    return known(v, e + units * Ulp * (std::abs(v) + e) + Tiny);
}

double size(const Value& a)
{
    return std::abs(a.v) + a.e;
}

/// Both outcomes of something that is not decided.
Value either(const Value& a, const Value& b)
{
    double low = std::min(a.v - a.e, b.v - b.e), high = std::max(a.v + a.e, b.v + b.e);
    return known((low + high) / 2, (high - low) / 2);
}

Value added(const Value& a, const Value& b)
{
    return rounded(a.v + b.v, a.e + b.e, 0.5);
}

Value product(const Value& a, const Value& b)
{
    return known(a.v * b.v, std::abs(a.v) * b.e + std::abs(b.v) * a.e + a.e * b.e);
}

Value multiplied(const Value& a, const Value& b)
{
    Value p = product(a, b);
    return rounded(p.v, p.e, 0.5);
}

/// A sum of products, in any order, fused or not: every partial sum is at most the sum of the sizes.
Value dot(const Vector& a, const Vector& b, int n)
{
    Value sum;
    double sizes = 0;
    for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
        Value p = product(a[i], b[i]);
        sum = {sum.v + p.v, sum.e + p.e};
        sizes += size(a[i]) * size(b[i]);
    }
    return known(sum.v, sum.e + (n + 1) * Ulp * sizes + Tiny);
}

Value crossed(const Value& a, const Value& b, const Value& c, const Value& d)
{
    Value p = product(a, b), q = product(c, d);
    return known(p.v - q.v, p.e + q.e + 2 * Ulp * (size(a) * size(b) + size(c) * size(d)) + Tiny);
}

/// y x + z (1 - x), or z + x (y - z).
Value between(const Value& x, const Value& y, const Value& z)
{
    double v = x.v * y.v + (1 - x.v) * z.v;
    double e =
        x.e * (std::abs(y.v - z.v) + y.e + z.e) + std::abs(x.v) * y.e + std::abs(1 - x.v) * z.e + x.e * (y.e + z.e);
    double sizes = size(x) * (size(y) + size(z)) + size(z) * (1 + size(x));
    return known(v, e + 3 * Ulp * sizes + Tiny);
}

/// The choice may be made by weighing with 0 and 1, which rounds by the size of both.
Value chosen(const Value& a, const Value& b, const Value& c)
{
    double weighing = 2 * Ulp * (size(b) + size(c));
    Value less = known(b.v, b.e + weighing), more = known(c.v, c.e + weighing);
    if (a.v + a.e < 0) return less;
    return a.v - a.e >= 0 ? more : either(less, more);
}

Value truth(bool yes)
{
    return {yes ? 1.0 : 0.0, 0};
}

Value atLeast(const Value& a, const Value& b)
{
    double distance = a.v - b.v, unsure = a.e + b.e;
    if (distance - unsure >= 0) return truth(true);
    return distance + unsure < 0 ? truth(false) : either(truth(false), truth(true));
}

Value floored(const Value& a)
{
    double low = std::floor(a.v - a.e), high = std::floor(a.v + a.e);
    return known((low + high) / 2, (high - low) / 2);
}

Value fraction(const Value& a)
{
    if (std::floor(a.v - a.e) != std::floor(a.v + a.e)) return {0.5, 0.5};
    double v = a.v - std::floor(a.v);
    return known(v, a.e + Ulp * std::max(v, 0.5));
}

Value reciprocal(const Value& a, double units)
{
    double least = std::abs(a.v) - a.e;
    if (!(least > 1e-15)) return {0, Infinite};
    return rounded(1 / a.v, a.e / (std::abs(a.v) * least), units);
}

Value rootReciprocal(const Value& a, double units)
{
    double least = a.v - a.e;
    if (!(least > 1e-15)) return {0, Infinite};
    return rounded(1 / std::sqrt(a.v), 1 / std::sqrt(least) - 1 / std::sqrt(a.v), units);
}

Value exponential(const Value& a, double units)
{
    if (!(std::abs(a.v) + a.e < 60)) return {0, Infinite};
    double v = std::exp2(a.v);
    return rounded(v, v * (std::exp2(a.e) - 1), units);
}

Value logarithm(const Value& a, double absolute)
{
    double least = a.v - a.e;
    if (!(least > 1e-15)) return {0, Infinite};
    double v = std::log2(a.v);
    return rounded(v, v - std::log2(least) + absolute, 1);
}

Value wave(double v, const Value& a, double absolute)
{
    if (!(size(a) < 100)) return {0, Infinite};
    return known(v, std::min(a.e + absolute + Ulp * size(a), 2.0));
}

Value saturated(const Value& a)
{
    double low = std::clamp(a.v - a.e, 0.0, 1.0), high = std::clamp(a.v + a.e, 0.0, 1.0), v = std::clamp(a.v, 0.0, 1.0);
    return {v, std::max(high - v, v - low)};
}

class Run
{
public:
    Run(const RandomProgram& program, const Inputs& inputs, const Exactness& exactness)
        : program_(program), inputs_(inputs), exactness_(exactness)
    {}

    Outcome go()
    {
        Outcome outcome;
        for (const Statement& s : program_.body) {
            if (s.opcode == Opcode::Kil) {
                kill(s, outcome.fate);
                continue;
            }
            Vector result = computed(s);
            for (size_t i = 0; i < 4; ++i) {
                if (!(s.mask >> i & 1)) continue;
                Value value = s.saturates && std::isfinite(result[i].e) ? saturated(result[i]) : result[i];
                registers_[s.destination][i] = value;
            }
        }
        std::copy_n(registers_.begin(), outcome.results.size(), outcome.results.begin());
        return outcome;
    }

private:
    Vector read(const Source& s) const
    {
        Vector from{}, result{};
        for (size_t i = 0; i < 4; ++i) {
            switch (s.file) {
            case File::Temporary:
                from[i] = registers_[s.index][i];
                break;
            case File::Input:
                from[i].v = static_cast<double>(inputs_.attributes[s.index][i]);
                break;
            case File::Local:
                from[i].v = static_cast<double>(inputs_.locals[s.index][i]);
                break;
            case File::Constant:
                from[i].v = static_cast<double>(program_.constants[s.index][i]);
                break;
            case File::Number:
                from[i].v = static_cast<double>(s.number);
                break;
            }
        }
        for (size_t i = 0; i < 4; ++i) {
            result[i] = from[s.file == File::Number ? i : s.swizzle[i]];
            if (s.negative) result[i].v = -result[i].v;
        }
        return result;
    }

    void kill(const Statement& s, Fate& fate) const
    {
        for (const Value& value : read(s.sources[0])) {
            if (value.v + value.e < 0)
                fate = Fate::Killed;
            else if (value.v - value.e < 0 && fate == Fate::Drawn)
                fate = Fate::Either;
        }
    }

    Vector computed(const Statement& s) const
    {
        Vector a = read(s.sources[0]), b = read(s.sources[1]), c = read(s.sources[2]);
        if (factsOf(s.opcode).scalar) return all(scalar(s.opcode, a[0], b[0]));
        if (s.opcode == Opcode::Dp3) return all(finite(a, b, 3) ? dot(a, b, 3) : Value{0, Infinite});
        if (s.opcode == Opcode::Dp4) return all(finite(a, b, 4) ? dot(a, b, 4) : Value{0, Infinite});
        if (s.opcode == Opcode::Xpd)
            return finite(a, b, 3) ? Vector{crossed(a[1], b[2], a[2], b[1]), crossed(a[2], b[0], a[0], b[2]),
                                            crossed(a[0], b[1], a[1], b[0]), Value{}}
                                   : all({0, Infinite});
        Vector result;
        for (size_t i = 0; i < 4; ++i)
            result[i] = known(s.opcode, a[i], b[i], c[i]) ? component(s.opcode, a[i], b[i], c[i]) : Value{0, Infinite};
        return result;
    }

    static Vector all(const Value& value) { return {value, value, value, value}; }

    static bool finite(const Vector& a, const Vector& b, size_t n)
    {
        for (size_t i = 0; i < n; ++i)
            if (!std::isfinite(a[i].e) || !std::isfinite(b[i].e)) return false;
        return true;
    }

    static bool known(Opcode opcode, const Value& a, const Value& b, const Value& c)
    {
        int n = factsOf(opcode).sources;
        return std::isfinite(a.e) && (n < 2 || std::isfinite(b.e)) && (n < 3 || std::isfinite(c.e));
    }

    Value scalar(Opcode opcode, const Value& a, const Value& b) const
    {
        if (!known(opcode, a, b, {})) return {0, Infinite};
        switch (opcode) {
        case Opcode::Cos:
            return wave(std::cos(a.v), a, exactness_.wave);
        case Opcode::Sin:
            return wave(std::sin(a.v), a, exactness_.wave);
        case Opcode::Ex2:
            return exponential(a, exactness_.exponential);
        case Opcode::Lg2:
            return logarithm(a, exactness_.logarithm);
        case Opcode::Rcp:
            return reciprocal(a, exactness_.reciprocal);
        case Opcode::Rsq:
            return rootReciprocal(a, exactness_.root);
        default:
            break;
        }
        Value power = logarithm(a, exactness_.logarithm); // POW, as the exponential of a multiple of the logarithm
        if (!std::isfinite(power.e)) return power;
        power = multiplied(power, b);
        return std::isfinite(power.e) ? exponential(power, exactness_.exponential) : power;
    }

    static Value component(Opcode opcode, const Value& a, const Value& b, const Value& c)
    {
        switch (opcode) {
        case Opcode::Abs:
            return {std::abs(a.v), a.e};
        case Opcode::Add:
            return added(a, b);
        case Opcode::Sub:
            return added(a, {-b.v, b.e});
        case Opcode::Cmp:
            return chosen(a, b, c);
        case Opcode::Flr:
            return floored(a);
        case Opcode::Frc:
            return fraction(a);
        case Opcode::Lrp:
            return between(a, b, c);
        case Opcode::Mad:
            return added(multiplied(a, b), c);
        case Opcode::Max:
            return {std::max(a.v, b.v), std::max(a.e, b.e)};
        case Opcode::Min:
            return {std::min(a.v, b.v), std::max(a.e, b.e)};
        case Opcode::Mul:
            return multiplied(a, b);
        case Opcode::Sge:
            return atLeast(a, b);
        case Opcode::Slt: {
            Value no = atLeast(a, b);
            return {1 - no.v, no.e};
        }
        default:
            return a;
        }
    }

    const RandomProgram& program_;
    const Inputs& inputs_;
    const Exactness& exactness_;
    std::array<Vector, RandomProgram::Temporaries> registers_{};
};

} // namespace

Outcome compute(const RandomProgram& program, const Inputs& inputs, const Exactness& exactness)
{
    return Run(program, inputs, exactness).go();
}

} // namespace differential
