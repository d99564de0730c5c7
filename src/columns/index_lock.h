#pragma once

#include <ext/atomicity.h>

#include <shared_mutex>

// Holds a shared mutex, unless the process has one thread: then there is nobody to keep out, and the two atomic steps
// would cost as much as the search that they guard and keep the processor from working on several at once. A thread
// that starts later is ordered behind all that its starter did before. Requires: what is done under the lock starts no
// threads.
namespace Kestrona::Data::MemoryResident {

inline std::shared_mutex* NeededLock(std::shared_mutex& mutex) {
    return __gnu_cxx::__is_single_threaded() ? nullptr : &mutex;
}

class SharedHold {
public:
    explicit SharedHold(std::shared_mutex& mutex) : mutex_(NeededLock(mutex)) {
        if (mutex_ != nullptr) {
            mutex_->lock_shared();
        }
    }

    SharedHold(const SharedHold&) = delete;
    SharedHold& operator=(const SharedHold&) = delete;

    ~SharedHold() {
        if (mutex_ != nullptr) {
            mutex_->unlock_shared();
        }
    }

private:
    std::shared_mutex* mutex_;
};

class ExclusiveHold {
public:
    explicit ExclusiveHold(std::shared_mutex& mutex) : mutex_(NeededLock(mutex)) {
        if (mutex_ != nullptr) {
            mutex_->lock();
        }
    }

    ExclusiveHold(const ExclusiveHold&) = delete;
    ExclusiveHold& operator=(const ExclusiveHold&) = delete;

    ~ExclusiveHold() {
        if (mutex_ != nullptr) {
            mutex_->unlock();
        }
    }

private:
    std::shared_mutex* mutex_;
};

} // namespace Kestrona::Data::MemoryResident
