#pragma once

#include <kestrona/host/console_messages.h>
#include <kestrona/host/feedback.h>
#include <kestrona/host/globalization.h>
#include <kestrona/host/native_config.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/host/stream_logger.h>
#include <kestrona/host/text_sink.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/services.h>
#include <kestrona/store.h>

#include <memory>
#include <string>
#include <vector>

/// \file
/// A complete host in one object.

namespace Kestrona::Host {

/// What a `DefaultHost` is made of. A part that is given stands in for the default one.
struct DefaultHostOptions {
    std::string program = "kestrona";     ///< Stands before every message.
    TextSink output = StreamSink(stderr); ///< Takes messages, and diagnostics if they have no sink of their own.
    DiagnosticSink diagnostics;           ///< Takes what the definition language finds.
    FileReader reader;                    ///< Reads definitions; empty reads the file system.
    LogLevel log_level = LogLevel::Off;
    std::string log_file;  ///< Lines are appended here, with their times; empty logs to `output` without times.
    bool progress = false; ///< Shows the progress of a load if stderr is a terminal.
    LocaleNames locale = LocaleNamesFromEnvironment();
    std::string resource_folder; ///< Where embedded configurations lie.

    std::unique_ptr<CoreMessage> messages;
    std::unique_ptr<DefaultLogger> logger;
    std::unique_ptr<IInformationFeedback> feedback;
    std::unique_ptr<IGlobalizationHelper> globalization;
    std::unique_ptr<IDuplicateFormatHandler> duplicates;
    std::unique_ptr<IResourceHandler> resources;
    std::unique_ptr<IOleServerManager> ole_servers;
};

/// Makes and owns everything that the data module asks of a host: installs the process services, sets the process
/// headless with a definition source, and makes the store.
///
/// Requires: one object at a time in a process. The destructor frees the store and takes the services away; a service
/// that somebody else has installed meanwhile stays.
class DefaultHost {
public:
    explicit DefaultHost(DefaultHostOptions options = {});
    DefaultHost(const DefaultHost&) = delete;
    DefaultHost& operator=(const DefaultHost&) = delete;
    ~DefaultHost();

    /// Loads the process's definition into `Store` (UTF-8 path; empty tries the default file names). A process does
    /// this once, whichever host object asks: later calls show a message, change nothing and give `AlreadyLoaded`.
    LoadOutcome LoadDefinition(const std::string& path);

    /// Loads a definition into any store, any number of times: parses, fills and resolves it without the once-a-process
    /// entry. The process's own state (version mark, title, help file name) stays as it is.
    LoadOutcome FillAndResolve(const std::string& path, Data::MemoryResident::MemoryResidentData& store);

    /// Loads the process's definition from a compiled file into `Store`, once a process like `LoadDefinition`.
    LoadOutcome LoadCompiled(const std::string& path);

    /// Loads the process's definition from its source into `Store`, once a process like `LoadDefinition`, and writes it
    /// to a compiled file. A definition with errors writes no file.
    LoadOutcome CompileDefinition(const std::string& source, const std::string& target);

    /// Loads any store, any number of times, from a file of any kind: the source of a definition, a compiled one, or a
    /// snapshot, whose records come along (see `LoadSnapshot` for `dataset`). What is wrong is shown as a message.
    /// Apart from the help file name that a compiled definition or a snapshot brings, the process's own state stays as
    /// it is.
    LoadOutcome FillFromFile(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                             const std::wstring& dataset = {});

    /// What was wrong with the file of the last `FillFromFile`, or with the target of the last `CompileDefinition`; no
    /// fault where the definition was found wrong, or nothing was.
    [[nodiscard]] const FileProblem& LastFileProblem() const { return file_problem_; }

    /// The store that `LoadDefinition`, `LoadCompiled` and `CompileDefinition` fill.
    [[nodiscard]] Data::MemoryResident::MemoryResidentData& Store() { return *store_; }

    /// Makes a further store, in the locale of the options.
    [[nodiscard]] std::unique_ptr<Data::MemoryResident::MemoryResidentData> CreateStore() const;

    /// Returns what the last load found in its definition source.
    [[nodiscard]] const std::vector<Diagnostic>& Diagnostics() const { return native_config_->Diagnostics(); }

    /// The default message service, as long as it is installed; null when the options brought another one.
    [[nodiscard]] ConsoleMessages* Messages() { return console_messages_; }

    /// The default logger, as long as it is installed; null when the options brought another one.
    [[nodiscard]] StreamLogger* Logger() { return stream_logger_; }

    /// The title that the load gave the program, "" before.
    [[nodiscard]] const std::wstring& Title() const { return title_; }

private:
    void Install(DefaultHostOptions& options);
    void InstallMessages(DefaultHostOptions& options);
    void InstallLogger(DefaultHostOptions& options);
    void InstallFeedback(DefaultHostOptions& options);
    void InstallNativeConfig(DefaultHostOptions& options);
    LoadOutcome FillFromSnapshot(const std::string& path, Data::MemoryResident::MemoryResidentData& store,
                                 const std::wstring& dataset);
    void OnMessage(const ShownMessage& message);
    void ClearFeedback();
    void FinishFeedback();

    LocaleNames locale_;
    std::wstring title_;
    FileProblem file_problem_;
    bool logs_apart_ = false; // the log does not go where the messages go

    CoreMessage* messages_ = nullptr;               // the process holds it
    DefaultLogger* logger_ = nullptr;               // the process holds it
    IGlobalizationHelper* globalization_ = nullptr; // the store holds it
    ConsoleMessages* console_messages_ = nullptr;   // messages_, or null
    StreamLogger* stream_logger_ = nullptr;         // logger_, or null
    std::unique_ptr<IInformationFeedback> feedback_;
    ConsoleFeedback* console_feedback_ = nullptr; // feedback_, or null
    std::unique_ptr<IResourceHandler> resources_;
    std::unique_ptr<IOleServerManager> ole_servers_;
    std::unique_ptr<NativeConfig> native_config_;
    std::unique_ptr<Data::MemoryResident::MemoryResidentData> store_;
};

} // namespace Kestrona::Host
