// The functions that the C library does not have.
#include "expressions/operator_kernels.h"
#include "platform/numbers.h"

#include <kestrona/expression_functions.h>

#include <cassert>
#include <cmath>
#include <numeric>

namespace Kestrona::Expressions {

double Func_Frac(double x) {
    return x - Platform::TruncateToInt32(x);
}

double Func_Rnd(double x) {
    return x > 0.0 ? std::floor(x + 0.5) : std::ceil(x - 0.5);
}

double Func_Alog(double x) {
    return std::pow(10.0, x);
}

double Func_Min(const std::vector<double>& values) {
    assert(!values.empty());
    return std::accumulate(values.begin() + 1, values.end(), values.front(), Kernels::Minimum{});
}

double Func_Max(const std::vector<double>& values) {
    assert(!values.empty());
    return std::accumulate(values.begin() + 1, values.end(), values.front(), Kernels::Maximum{});
}

} // namespace Kestrona::Expressions
