#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

// What is done with a small plant, cut in pieces that can fail: reading and writing it, and working on its records.
namespace Kestrona::Faults {

// One kind of work. `Prepare` and `Finish` are done with all the memory that there is.
class Work {
public:
    virtual ~Work() = default;

    virtual void Prepare() = 0;
    // False for a failure that it has told.
    virtual bool Run() = 0;
    // Puts everything away. What came of the work, as text; "" where it failed.
    virtual std::string Finish(bool is_done) = 0;
    // What is wrong with the files after `Finish`, "" if nothing is.
    virtual std::string HalfWrittenFiles() = 0;
};

struct NamedWork {
    const char* name;
    std::function<std::unique_ptr<Work>()> make;
};

std::vector<NamedWork> AllWork();

} // namespace Kestrona::Faults
