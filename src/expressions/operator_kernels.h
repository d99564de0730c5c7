#pragma once

#include <kestrona/expression_functions.h>

// What the operators of two numbers compute: the one definition behind the exported functions and behind the loops over
// whole blocks.
namespace Kestrona::Expressions::Kernels {

inline double Truth(bool holds) {
    return holds ? 1.0 : 0.0;
}

struct Sum {
    double operator()(double a, double b) const { return a + b; }
};

struct Difference {
    double operator()(double a, double b) const { return a - b; }
};

struct Product {
    double operator()(double a, double b) const { return a * b; }
};

struct Quotient {
    double operator()(double a, double b) const { return b == 0.0 ? 0.0 : a / b; }
};

struct Both {
    double operator()(double a, double b) const { return Truth(a != 0.0 && b != 0.0); }
};

struct Either {
    double operator()(double a, double b) const { return Truth(a != 0.0 || b != 0.0); }
};

struct Less {
    double operator()(double a, double b) const { return Truth(a < b); }
};

struct LessOrEqual {
    double operator()(double a, double b) const { return Truth(a <= b); }
};

struct Greater {
    double operator()(double a, double b) const { return Truth(a > b); }
};

struct GreaterOrEqual {
    double operator()(double a, double b) const { return Truth(a >= b); }
};

struct Equal {
    double operator()(double a, double b) const { return Truth(a == b); }
};

struct Unequal {
    double operator()(double a, double b) const { return Truth(a != b); }
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
        action(Sum{});
    } else if (function == &Subtract) {
        action(Difference{});
    } else if (function == &Multiply) {
        action(Product{});
    } else if (function == &Divide) {
        action(Quotient{});
    } else if (function == &And) {
        action(Both{});
    } else if (function == &Or) {
        action(Either{});
    } else if (function == &LessThan) {
        action(Less{});
    } else if (function == &LessOrEqualTo) {
        action(LessOrEqual{});
    } else if (function == &GreaterThan) {
        action(Greater{});
    } else if (function == &GreaterOrEqualTo) {
        action(GreaterOrEqual{});
    } else if (function == &IsEqualTo) {
        action(Equal{});
    } else if (function == &IsNotEqualTo) {
        action(Unequal{});
    } else {
        action(function);
    }
}

} // namespace Kestrona::Expressions::Kernels
