#pragma once

#include <cstdint>

// The bound on fields that read each other.
//
// A chain of calculated fields may lead back to itself by way of a reference that shows another record's field, which
// no look at the definition alone can tell, and references may lead back to themselves. So each read of a calculated
// field takes a level and so does each step from a reference to its target, and there are 256 of them, with a bound on
// the depths of all trees in them together, for the stack.
namespace Kestrona::Text {

// One level, held while a calculated field is evaluated or the target of a reference is shown.
//
// The first level that is refused writes a debug line, and from then on every level is refused until the outermost read
// ends; a calculated field then has no value. A field that reads itself twice would else be evaluated 2^256 times, and
// what came out would depend on the order of evaluation.
class ReadLevel {
public:
    // `depth` is that of the expression's tree, 0 for a reference.
    explicit ReadLevel(std::int32_t depth) : depth_(depth), granted_(Take(depth)) {}

    ReadLevel(const ReadLevel&) = delete;
    ReadLevel& operator=(const ReadLevel&) = delete;

    ~ReadLevel() { Give(); }

    // Tells whether the field may be read.
    [[nodiscard]] bool IsGranted() const { return granted_; }

    // Tells whether no level was refused so far; otherwise a calculated field counts as 0.0 or an empty text.
    [[nodiscard]] bool IsSound() const { return !state_.exhausted; }

    // Tells whether no other read is going on around this one.
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

} // namespace Kestrona::Text
