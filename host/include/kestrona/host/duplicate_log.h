#pragma once

#include <kestrona/host_interfaces.h>

#include <cstdint>
#include <functional>

/// \file
/// What a host hears of duplicated formats.

namespace Kestrona::Host {

/// Hands the comings and goings of duplicated formats on to functions; without them it does nothing.
class DuplicateLog : public IDuplicateFormatHandler {
public:
    using Duplicated = std::function<void(std::int32_t source, std::int32_t copy)>;
    using Destroyed = std::function<void(std::int32_t format)>;

    explicit DuplicateLog(Duplicated duplicated = {}, Destroyed destroyed = {});

    void FormatDuplicated(std::int32_t source, std::int32_t copy) override;
    void FormatDestroyed(std::int32_t format) override;

private:
    Duplicated duplicated_;
    Destroyed destroyed_;
};

} // namespace Kestrona::Host
