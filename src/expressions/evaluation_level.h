#pragma once

#include <cstdint>

// The bound on calculated fields that read each other.
//
// A chain of calculated fields may lead back to itself by way of a reference that shows another record's field, which
// no look at the definition alone can tell. So each read of a calculated field takes a level, and there are 256 of
// them, with a bound on the depths of all trees in them together, for the stack.
namespace Kestrona::Expressions {

// One level, held while a calculated field is evaluated.
//
// The first level that is refused writes a debug line, and from then on every level is refused until the outermost read
// ends, which then has no value: a field that reads itself twice would else be evaluated 2^256 times, and what came out
// would depend on the order of evaluation.
class EvaluationLevel {
public:
    // `depth` is that of the expression's tree.
    explicit EvaluationLevel(std::int32_t depth) : depth_(depth), granted_(Take(depth)) {}

    EvaluationLevel(const EvaluationLevel&) = delete;
    EvaluationLevel& operator=(const EvaluationLevel&) = delete;

    ~EvaluationLevel() { Give(); }

    // Tells whether the field may be evaluated.
    [[nodiscard]] bool IsGranted() const { return granted_; }

    // Tells whether no level was refused so far; otherwise the field counts as 0.0 or an empty text.
    [[nodiscard]] bool IsSound() const { return !state_.exhausted; }

    // Tells whether no other field is being evaluated around this one.
    [[nodiscard]] bool IsOutermost() const { return state_.levels == (granted_ ? 1 : 0); }

private:
    struct State {
        std::int32_t levels = 0;
        std::int32_t depth = 0;
        bool exhausted = false;
    };

    static constexpr std::int32_t kMaxLevels = 256;
    static constexpr std::int32_t kMaxTotalDepth = 16384;

    static bool Take(std::int32_t depth) {
        State& state = state_;
        if (state.exhausted || state.levels == kMaxLevels || depth > kMaxTotalDepth - state.depth) [[unlikely]] {
            Refuse();
            return false;
        }
        ++state.levels;
        state.depth += depth;
        return true;
    }

    void Give() const {
        State& state = state_;
        if (granted_) {
            --state.levels;
            state.depth -= depth_;
        }
        if (state.levels == 0) {
            state.exhausted = false;
        }
    }

    static void Refuse();

    // Each evaluation of a calculated field reaches for it: the model spares a call.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local State state_;

    std::int32_t depth_;
    bool granted_;
};

} // namespace Kestrona::Expressions
