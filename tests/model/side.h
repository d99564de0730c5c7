#pragma once

namespace Kestrona::Model {

// Whose memory is allocated now: that of the twin, or that of the library and of whoever calls it. Whoever counts
// allocations reads it.
inline thread_local bool is_twin_side = false;

// The twin's side until the end of the scope.
class OnTwinSide {
public:
    OnTwinSide() { is_twin_side = true; }

    OnTwinSide(const OnTwinSide&) = delete;
    OnTwinSide& operator=(const OnTwinSide&) = delete;

    ~OnTwinSide() { is_twin_side = former_; }

private:
    bool former_ = is_twin_side;
};

} // namespace Kestrona::Model
