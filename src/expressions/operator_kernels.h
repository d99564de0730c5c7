#pragma once

#include <kestrona/expression_functions.h>

#include <functional>

// What the operators of two numbers compute: the one definition behind the exported functions and behind the loops over
// whole blocks.
namespace Kestrona::Expressions::Kernels {

struct Quotient {
    double operator()(double a, double b) const { return b == 0.0 ? 0.0 : a / b; }
};

struct Both {
    bool operator()(double a, double b) const {
        const bool left = a != 0.0;
        const bool right = b != 0.0;
        return left && right;
    }
};

struct Either {
    bool operator()(double a, double b) const {
        const bool left = a != 0.0;
        const bool right = b != 0.0;
        return left || right;
    }
};

// The number of a condition: converted rather than chosen, since nobody foretells a branch on what records hold.
inline double Truth(bool holds) {
    return static_cast<double>(holds);
}

// The same for blocks: chosen, which compilers make a mask of two numbers at a time of.
template <typename Condition>
struct TruthOf {
    double operator()(double a, double b) const { return Condition{}(a, b) ? 1.0 : 0.0; }
};

// The comparisons are such that a NaN on the right is passed over.
struct Minimum {
    double operator()(double running, double next) const { return next < running ? next : running; }
};

struct Maximum {
    double operator()(double running, double next) const { return running < next ? next : running; }
};

// Calls `action` with the kernel of a function, or with the function itself where it has none.
template <typename Action>
void WithKernel(BinaryFunction function, Action action) {
    if (function == &Add) {
        action(std::plus<double>{});
    } else if (function == &Subtract) {
        action(std::minus<double>{});
    } else if (function == &Multiply) {
        action(std::multiplies<double>{});
    } else if (function == &Divide) {
        action(Quotient{});
    } else if (function == &And) {
        action(TruthOf<Both>{});
    } else if (function == &Or) {
        action(TruthOf<Either>{});
    } else if (function == &LessThan) {
        action(TruthOf<std::less<double>>{});
    } else if (function == &LessOrEqualTo) {
        action(TruthOf<std::less_equal<double>>{});
    } else if (function == &GreaterThan) {
        action(TruthOf<std::greater<double>>{});
    } else if (function == &GreaterOrEqualTo) {
        action(TruthOf<std::greater_equal<double>>{});
    } else if (function == &IsEqualTo) {
        action(TruthOf<std::equal_to<double>>{});
    } else if (function == &IsNotEqualTo) {
        action(TruthOf<std::not_equal_to<double>>{});
    } else {
        action(function);
    }
}

} // namespace Kestrona::Expressions::Kernels
