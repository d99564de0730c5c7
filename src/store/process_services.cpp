// Implements: LogManager, ProgressManager, MessageManager and the holder of the three services.
#include "store/process_services.h"

#include <kestrona/services.h>

#include <utility>

namespace Kestrona {

namespace {

// Owns one service. A plain pointer, so that the slot works before the first constructor of the process and after the
// last destructor.
template <typename Service>
class ServiceSlot {
public:
    Service* Get() {
        if (service_ == nullptr) {
            service_ = new Service();
        }
        return service_;
    }

    // The former service goes last: its destructor may use the new one.
    void Set(Service* owned) {
        if (owned != service_) {
            delete std::exchange(service_, owned);
        }
    }

private:
    Service* service_ = nullptr;
};

constinit ServiceSlot<DefaultLogger> logger;
constinit ServiceSlot<BaseProgressManager> progress;
constinit ServiceSlot<CoreMessage> messages;

// A service that writes a file must see the end of the process.
struct FreeAtExit {
    FreeAtExit() = default;
    FreeAtExit(const FreeAtExit&) = delete;
    FreeAtExit& operator=(const FreeAtExit&) = delete;

    ~FreeAtExit() { FreeProcessServices(); }
};

const FreeAtExit free_at_exit;

} // namespace

void FreeProcessServices() {
    messages.Set(nullptr);
    progress.Set(nullptr);
    logger.Set(nullptr);
}

} // namespace Kestrona

DefaultLogger* LogManager::getInstance() {
    return Kestrona::logger.Get();
}

void LogManager::setInstance(DefaultLogger* owned) {
    Kestrona::logger.Set(owned);
}

BaseProgressManager* ProgressManager::getInstance() {
    return Kestrona::progress.Get();
}

void ProgressManager::setInstance(BaseProgressManager* owned) {
    Kestrona::progress.Set(owned);
}

CoreMessage* MessageManager::getInstance() {
    return Kestrona::messages.Get();
}

void MessageManager::setInstance(CoreMessage* owned) {
    Kestrona::messages.Set(owned);
}
