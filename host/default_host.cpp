#include "compiled_file.h"
#include "resolve.h"
#include "snapshot/carried_texts.h"
#include "snapshot/load.h"

#include <kestrona/compilation_state.h>
#include <kestrona/definition_load.h>
#include <kestrona/execution_state.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host/duplicate_log.h>
#include <kestrona/host/ole_server_texts.h>
#include <kestrona/host/resource_directory.h>
#include <kestrona/host/snapshot.h>
#include <kestrona/host_settings.h>
#include <kestrona/process.h>
#include <kestrona/unicode.h>

#include <array>
#include <chrono>
#include <utility>

namespace Kestrona::Host {

namespace {

using Configuration::Compiled::CompilationState;
using Configuration::Compiled::ConfigurationCompileType;
using Configuration::Compiled::ConfigurationSource;
using Configuration::Compiled::ConfigurationSourceType;
using Data::MemoryResident::CreateMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;

// The title has room for 11 characters.
constexpr std::size_t kTitleSize = 12;

// Returns the part that the options brought, or a default one.
template <typename Default, typename Part>
std::unique_ptr<Part> GivenOr(std::unique_ptr<Part>& given) {
    return given ? std::move(given) : std::make_unique<Default>();
}

// The settings of a load, put back afterwards.
class LoadSettings {
public:
    LoadSettings()
        : source_(State().get_Source()),
          source_type_(State().get_SourceType()),
          is_compiling_(State().get_IsCompiling()),
          compile_type_(State().get_CompileType()),
          file_(State().get_CompiledConfigurationFile()) {}

    LoadSettings(const LoadSettings&) = delete;
    LoadSettings& operator=(const LoadSettings&) = delete;

    ~LoadSettings() {
        State().set_Source(source_);
        State().set_SourceType(source_type_);
        State().set_IsCompiling(is_compiling_);
        State().set_CompileType(compile_type_);
        State().set_CompiledConfigurationFile(file_);
    }

    static CompilationState& State() { return CompilationState::Instance(); }

private:
    ConfigurationSource source_;
    ConfigurationSourceType source_type_;
    bool is_compiling_;
    ConfigurationCompileType compile_type_;
    NullValue<std::wstring> file_;
};

DiagnosticSink LineSink(TextSink output) {
    if (!output) {
        return [](const Diagnostic&) {
        };
    }
    return [output = std::move(output)](const Diagnostic& diagnostic) {
        output(diagnostic.ToString() + "\n");
    };
}

// A service that somebody else has installed meanwhile stays.
void TakeAway(const CoreMessage* messages, const DefaultLogger* logger) {
    if (messages != nullptr && MessageManager::getInstance() == messages) {
        MessageManager::setInstance(nullptr);
    }
    if (logger != nullptr && LogManager::getInstance() == logger) {
        LogManager::setInstance(nullptr);
    }
}

} // namespace

DefaultHost::DefaultHost(DefaultHostOptions options) : locale_(options.locale) {
    try {
        Install(options);
    } catch (...) { // what the process has been given knows this object
        TakeAway(messages_, logger_);
        throw;
    }
    ExecutionState::Instance().set_IsRunningHeadless(true);
    CompilationState::Instance().set_Source(ConfigurationSource::SourceDefinition);
}

DefaultHost::~DefaultHost() {
    store_.reset();
    TakeAway(messages_, logger_);
}

void DefaultHost::Install(DefaultHostOptions& options) {
    InstallMessages(options);
    InstallLogger(options);
    InstallFeedback(options);
    resources_ =
        options.resources ? std::move(options.resources) : std::make_unique<ResourceDirectory>(options.resource_folder);
    ole_servers_ = GivenOr<OleServerTexts>(options.ole_servers);
    InstallNativeConfig(options);
    auto duplicates = GivenOr<DuplicateLog>(options.duplicates);
    globalization_ =
        options.globalization ? options.globalization.release() : std::make_unique<Globalization>(locale_).release();
    store_ = CreateMemoryResidentData(globalization_, duplicates.release());
}

LoadOutcome DefaultHost::LoadDefinition(const std::string& path) {
    const bool was_loaded = KSDLL_GetMiscPointer() == 0;
    native_config_->Forget();
    std::array<wchar_t, kTitleSize> title{};
    CarriedTexts texts(*store_, ole_servers_.get());
    const std::int32_t result =
        KSSERVER_LoadTableDefinition(*store_, FromUtf8(path).c_str(), title.data(), native_config_.get(),
                                     feedback_.get(), globalization_, resources_.get(), &texts);
    FinishFeedback();
    if (was_loaded) {
        return LoadOutcome::AlreadyLoaded;
    }
    title_ = title.data();
    if (result == 0) {
        return LoadOutcome::Ok;
    }
    return native_config_->LastOutcome() == LoadOutcome::Unreadable ? LoadOutcome::Unreadable : LoadOutcome::Findings;
}

LoadOutcome DefaultHost::FillAndResolve(const std::string& path, MemoryResidentData& store) {
    const LoadOutcome outcome = native_config_->Load(path, store);
    if (outcome == LoadOutcome::Ok) {
        MarkStringDefaults(store);
    }
    FinishFeedback();
    return outcome;
}

LoadOutcome DefaultHost::LoadCompiled(const std::string& path) {
    const LoadSettings settings;
    LoadSettings::State().set_IsCompiling(false);
    LoadSettings::State().set_Source(ConfigurationSource::CompiledFile);
    LoadSettings::State().set_SourceType(SourceTypeOf(path));
    LoadSettings::State().set_CompiledConfigurationFile(FromUtf8(path));
    const LoadOutcome outcome = LoadDefinition(path);
    const bool failed = outcome == LoadOutcome::Findings;
    return failed && KindOfFile(path) == FileKind::Unreadable ? LoadOutcome::Unreadable : outcome;
}

LoadOutcome DefaultHost::CompileDefinition(const std::string& source, const std::string& target) {
    const LoadSettings settings;
    LoadSettings::State().set_IsCompiling(true);
    LoadSettings::State().set_Source(ConfigurationSource::SourceDefinition);
    LoadSettings::State().set_CompileType(ConfigurationCompileType::Cnf);
    LoadSettings::State().set_CompiledConfigurationFile(FromUtf8(target));
    file_problem_ = {};
    const LoadOutcome outcome = LoadDefinition(source);
    // The library says the same of a target that cannot be written as of a definition that cannot be resolved.
    if (outcome == LoadOutcome::Findings && native_config_->LastOutcome() == LoadOutcome::Ok) {
        file_problem_ = {FileFault::CannotWrite, target, {}, "", ""};
    }
    return outcome;
}

LoadOutcome DefaultHost::FillFromFile(const std::string& path, MemoryResidentData& store, const std::wstring& dataset) {
    file_problem_ = {};
    switch (KindOfFile(path)) {
    case FileKind::Snapshot:
    case FileKind::CompressedSnapshot:
        return FillFromSnapshot(path, store, dataset);
    case FileKind::CompiledDefinition: {
        native_config_->Forget();
        CarriedTexts texts(store, ole_servers_.get());
        const LoadOutcome outcome = FillFromCompiled(path, store, feedback_.get(), texts, file_problem_);
        FinishFeedback();
        return outcome;
    }
    case FileKind::Unreadable: // a definition need not lie in the file system
    case FileKind::Other:
        break;
    }
    return FillAndResolve(path, store);
}

LoadOutcome DefaultHost::FillFromSnapshot(const std::string& path, MemoryResidentData& store,
                                          const std::wstring& dataset) {
    native_config_->Forget();
    const bool loaded = Snapshots::Load(path, store, dataset, feedback_.get(), file_problem_);
    FinishFeedback();
    if (loaded) {
        return LoadOutcome::Ok;
    }
    const FileFault fault = file_problem_.fault;
    if (fault != FileFault::None) {
        MessageManager::getInstance()->ShowMessage(nullptr, FromUtf8(file_problem_.ToString()), GetMessageCaption(),
                                                   kMessageStyleError);
    }
    const bool unreadable = fault == FileFault::CannotOpen || fault == FileFault::CannotRead;
    return unreadable ? LoadOutcome::Unreadable : LoadOutcome::Findings;
}

std::unique_ptr<MemoryResidentData> DefaultHost::CreateStore() const {
    auto globalization = std::make_unique<Globalization>(locale_);
    auto duplicates = std::make_unique<DuplicateLog>();
    return CreateMemoryResidentData(globalization.release(), duplicates.release());
}

void DefaultHost::InstallMessages(DefaultHostOptions& options) {
    if (!options.messages) {
        auto messages = std::make_unique<ConsoleMessages>(options.program, options.output);
        messages->SetListener([this](const ShownMessage& message) { OnMessage(message); });
        console_messages_ = messages.get();
        options.messages = std::move(messages);
    }
    messages_ = options.messages.get();
    MessageManager::setInstance(options.messages.release());
}

void DefaultHost::InstallLogger(DefaultHostOptions& options) {
    if (!options.logger) {
        TextSink sink = options.log_level == LogLevel::Off ? TextSink() : options.output;
        StreamLogger::Clock clock;
        if (options.log_level != LogLevel::Off && !options.log_file.empty()) {
            sink = FileSink(options.log_file);
            clock = [] {
                return std::chrono::system_clock::now();
            };
            logs_apart_ = true;
        }
        if (logs_apart_ && !sink) {
            messages_->DisplayUnableToOpen(FromUtf8(options.log_file));
        }
        auto logger = std::make_unique<StreamLogger>(options.log_level, std::move(sink), std::move(clock));
        stream_logger_ = logger.get();
        options.logger = std::move(logger);
    }
    if (options.log_level >= LogLevel::Debug) {
        EnableDebugLogging();
    }
    if (options.log_level >= LogLevel::Trace) {
        EnableExtendedDebugLogging();
    }
    logger_ = options.logger.get();
    LogManager::setInstance(options.logger.release());
}

void DefaultHost::InstallFeedback(DefaultHostOptions& options) {
    const bool logs_to_output = options.log_level != LogLevel::Off && !logs_apart_;
    if (options.feedback) {
        feedback_ = std::move(options.feedback);
    } else if (options.progress && !logs_to_output) {
        auto feedback = std::make_unique<ConsoleFeedback>();
        console_feedback_ = feedback.get();
        feedback_ = std::move(feedback);
    } else {
        feedback_ = std::make_unique<NullFeedback>();
    }
}

void DefaultHost::InstallNativeConfig(DefaultHostOptions& options) {
    DiagnosticSink sink = options.diagnostics ? std::move(options.diagnostics) : LineSink(options.output);
    native_config_ = std::make_unique<NativeConfig>(
        feedback_.get(),
        [this, sink = std::move(sink)](const Diagnostic& diagnostic) {
            ClearFeedback();
            sink(diagnostic);
        },
        std::move(options.reader));
}

void DefaultHost::OnMessage(const ShownMessage& message) {
    ClearFeedback();
    if (logs_apart_ && stream_logger_ != nullptr) {
        stream_logger_->Log(LogLevel::Error, message.text);
    }
}

void DefaultHost::ClearFeedback() {
    if (console_feedback_ != nullptr) {
        console_feedback_->Clear();
    }
}

void DefaultHost::FinishFeedback() {
    if (console_feedback_ != nullptr) {
        console_feedback_->Finish();
    }
}

} // namespace Kestrona::Host
