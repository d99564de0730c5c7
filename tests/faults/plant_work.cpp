#include "faults/plant_work.h"

#include "commands/file_commands.h"
#include "commands/record_commands.h"
#include "exit_codes.h"
#include "fixtures/scratch_files.h"
#include "host/snapshot_fixture.h"
#include "store/process_state.h"

#include <kestrona/host/compressed_file.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/record_search.h>
#include <kestrona/records.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <utility>

namespace Kestrona::Faults {

namespace {

namespace fs = std::filesystem;

using namespace Tool;
using Host::Store;

constexpr const char* kProducts =
    "Number,Name,Weight,Colour,Takes,Sold,Likes\n"
    "1,Chair,4.5,red,0.25,1,2;3\n2,\"Table, round\",20,gr\u00fcn \U0001f3a8,0.5,0,\n3,Lamp,,,,,1\n";
constexpr const char* kOrders = "Number,Product\n1,2\n2,3\n3,1\n";
constexpr const char* kFormer = "what stood there before";

Host::DefaultHostOptions QuietHost() {
    Host::DefaultHostOptions options;
    options.output = [](std::string_view) {
    };
    options.locale = {"C", "C"};
    return options;
}

// Sends stdout and stderr to a file while it lives.
class Redirected {
public:
    explicit Redirected(const std::string& path) {
        std::fflush(stdout);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            former_[static_cast<std::size_t>(stream - 1)] = dup(stream);
            const std::string target = stream == STDOUT_FILENO ? path : "/dev/null";
            const int opened = open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            dup2(opened, stream);
            close(opened);
        }
    }

    Redirected(const Redirected&) = delete;
    Redirected& operator=(const Redirected&) = delete;

    ~Redirected() {
        std::fflush(stdout);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            dup2(former_[static_cast<std::size_t>(stream - 1)], stream);
            close(former_[static_cast<std::size_t>(stream - 1)]);
        }
    }

private:
    std::array<int, 2> former_{};
};

// A folder with the plant in every form, and one for what the work writes.
class PlantFolder {
public:
    PlantFolder() {
        inputs_.Write("plant.ksdef", Host::kSmallPlant);
        fs::create_directory(Records());
        inputs_.Write("data/Product.csv", kProducts);
        inputs_.Write("data/Order.csv", kOrders);
        ResetProcessStateForTests();
        Host::DefaultHost host(QuietHost());
        host.CompileDefinition(Definition(), Compiled());
        Host::FileProblem problem;
        const auto store = host.CreateStore();
        host.FillFromFile(Definition(), *store);
        Host::FillByChance(*store, 3, 1);
        (void)Host::SaveSnapshot(*store, Snapshot(), {}, problem);
        (void)Host::SaveSnapshot(*store, CompressedSnapshot(), {.compress = true}, problem);
    }

    [[nodiscard]] std::string Definition() const { return inputs_.Path("plant.ksdef"); }

    [[nodiscard]] std::string Records() const { return inputs_.Path("data"); }

    [[nodiscard]] std::string Compiled() const { return inputs_.Path("compiled"); }

    [[nodiscard]] std::string Snapshot() const { return inputs_.Path("snapshot"); }

    [[nodiscard]] std::string CompressedSnapshot() const { return inputs_.Path("compressed"); }

    [[nodiscard]] std::string Output() const { return inputs_.Path("out"); }

    [[nodiscard]] std::string Printed() const { return inputs_.Read("out"); }

    [[nodiscard]] std::string Target() const { return outputs_.Path("target"); }

    // The target holds something before each piece of work, and afterwards that or the whole new content.
    void Begin() const {
        fs::remove_all(outputs_.Path());
        fs::create_directory(outputs_.Path());
        outputs_.Write("target", kFormer);
    }

    // What has been written, "" for nothing. A snapshot in one form, and without its time.
    [[nodiscard]] std::string Written() const {
        Host::FileProblem problem;
        const bool is_compressed = Host::DecompressFile(Target(), inputs_.Path("plain"), problem);
        std::string bytes = is_compressed ? inputs_.Read("plain") : outputs_.Read("target");
        return bytes == kFormer ? "" : Host::WithoutStamp(std::move(bytes));
    }

    [[nodiscard]] std::string Others() const {
        std::string names;
        for (const fs::directory_entry& entry : fs::directory_iterator(outputs_.Path())) {
            names += entry.path() == Target() ? "" : entry.path().filename().string() + " is left over\n";
        }
        return names;
    }

private:
    Testing::ScratchFolder inputs_;
    Testing::TemporaryFolder outputs_;
};

class PlantWork : public Work {
public:
    void Prepare() override {
        ResetProcessStateForTests();
        folder_.Begin();
    }

    std::string HalfWrittenFiles() override {
        std::string wrong = folder_.Others();
        const std::string written = folder_.Written();
        if (whole_.empty()) {
            whole_ = written;
        } else if (!written.empty() && written != whole_) {
            wrong += "the target is half written\n";
        }
        return wrong;
    }

protected:
    PlantFolder folder_;

private:
    std::string whole_; // what the first attempt has written, which nothing disturbs
};

// A command of the tool. The result is what it prints or writes.
class Command : public PlantWork {
public:
    explicit Command(int (*run)(const PlantFolder& folder)) : run_(run) {}

    void Prepare() override {
        PlantWork::Prepare();
        quiet_.emplace(folder_.Output());
    }

    bool Run() override { return run_(folder_) == kExitGood && std::fflush(stdout) == 0; }

    std::string Finish(bool is_done) override {
        quiet_.reset();
        const std::string wrong = HalfWrittenFiles();
        return is_done ? wrong + folder_.Written() + folder_.Printed() : "";
    }

private:
    int (*run_)(const PlantFolder& folder);
    std::optional<Redirected> quiet_;
};

int Import(const PlantFolder& folder, bool compress) {
    ImportOptions options;
    options.definition = folder.Definition();
    options.folders = {folder.Records()};
    options.target = folder.Target();
    options.compress = compress;
    return RunImport(options);
}

RecordChoice Orders(const std::string& source) {
    RecordChoice records;
    records.source = source;
    records.table = "Order";
    return records;
}

// A store that is filled from a file. The result is its cells.
class Load : public PlantWork {
public:
    explicit Load(std::string (PlantFolder::*source)() const) : source_((folder_.*source)()) {}

    void Prepare() override {
        PlantWork::Prepare();
        host_.emplace(QuietHost());
    }

    bool Run() override {
        store_ = host_->CreateStore();
        return host_->FillFromFile(source_, *store_) == Host::LoadOutcome::Ok;
    }

    std::string Finish(bool is_done) override {
        std::string cells = is_done ? "loaded\n" + Host::CellsOf(*store_) : "";
        store_.reset();
        host_.reset();
        return cells;
    }

private:
    std::string source_;
    std::optional<Host::DefaultHost> host_;
    std::unique_ptr<Store> store_;
};

// Work on a store that has its records already.
class FilledStore : public PlantWork {
public:
    void Prepare() override {
        PlantWork::Prepare();
        host_.emplace(QuietHost());
        store_ = host_->CreateStore();
        host_->FillFromFile(folder_.Snapshot(), *store_);
    }

    std::string Finish(bool is_done) override {
        std::string result = is_done ? folder_.Written() + Host::CellsOf(*store_) : "";
        // Whatever has happened, the store can be saved, and what is saved is what it holds.
        Host::FileProblem problem;
        const std::string path = folder_.Snapshot() + ".again";
        const auto again = host_->CreateStore();
        if (!Host::SaveSnapshot(*store_, path, {}, problem) || !Host::LoadSnapshot(path, *again, {}, problem) ||
            Host::CellsOf(*again) != Host::CellsOf(*store_)) {
            result += "the store cannot be saved: " + problem.ToString();
        }
        store_.reset();
        return result;
    }

protected:
    std::optional<Host::DefaultHost> host_;
    std::unique_ptr<Store> store_;
};

class Save : public FilledStore {
public:
    explicit Save(bool compress) : compress_(compress) {}

    bool Run() override {
        Host::FileProblem problem;
        return Host::SaveSnapshot(*store_, folder_.Target(), {.compress = compress_}, problem);
    }

private:
    bool compress_;
};

class Edit : public FilledStore {
public:
    bool Run() override {
        for (std::int32_t format = 0; format < store_->GetFormatCount(); ++format) {
            KSDLL_DeleteDbItem(*store_, format, 1);
        }
        Host::FillByChance(*store_, 2, 7);
        return true;
    }
};

template <typename Made, typename... Arguments>
NamedWork Named(const char* name, Arguments... arguments) {
    return {name, [=] {
                return std::make_unique<Made>(arguments...);
            }};
}

int Show(const PlantFolder& folder) {
    return RunShow({Orders(folder.Snapshot()), {}, {}});
}

int Eval(const PlantFolder& folder) {
    return RunEval({Orders(folder.CompressedSnapshot()), "{#Product} * 2", false});
}

int Compile(const PlantFolder& folder) {
    return RunCompile({folder.Definition(), folder.Target()});
}

int ImportPlain(const PlantFolder& folder) {
    return Import(folder, false);
}

int ImportCompressed(const PlantFolder& folder) {
    return Import(folder, true);
}

} // namespace

std::vector<NamedWork> AllWork() {
    return {
        Named<Load>("LoadDefinition", &PlantFolder::Definition),
        Named<Load>("LoadCompiled", &PlantFolder::Compiled),
        Named<Load>("LoadSnapshot", &PlantFolder::Snapshot),
        Named<Load>("LoadCompressedSnapshot", &PlantFolder::CompressedSnapshot),
        Named<Save>("Save", false),
        Named<Save>("SaveCompressed", true),
        Named<Edit>("Edit"),
        Named<Command>("Compile", &Compile),
        Named<Command>("Import", &ImportPlain),
        Named<Command>("ImportCompressed", &ImportCompressed),
        Named<Command>("Show", &Show),
        Named<Command>("Eval", &Eval),
    };
}

} // namespace Kestrona::Faults
