#include "store/sequencer_orders.h"

#include <kestrona/host_settings.h>
#include <kestrona/process.h>

namespace Kestrona {

bool HasSequencerHooks(std::int32_t format) {
    constexpr std::int32_t kAskTheHost = -1;
    if (GetCurrentModule() != KestronaModule::Sequencer) {
        return false;
    }
    const std::int32_t orders = GetSequencerOrderFormat();
    return orders != kAskTheHost ? format == orders
                                 : IsTableUsedBySequencer != nullptr && IsTableUsedBySequencer(format);
}

} // namespace Kestrona
