// Implements: DefaultHost, without its loads.
#include <kestrona/compilation_state.h>
#include <kestrona/execution_state.h>
#include <kestrona/host/default_host.h>
#include <kestrona/host/duplicate_log.h>
#include <kestrona/host/ole_server_texts.h>
#include <kestrona/host/resource_directory.h>
#include <kestrona/unicode.h>

#include <chrono>
#include <utility>

namespace Kestrona::Host {

namespace {

using Configuration::Compiled::CompilationState;
using Configuration::Compiled::ConfigurationSource;
using Data::MemoryResident::CreateMemoryResidentData;
using Data::MemoryResident::MemoryResidentData;

// Returns the part that the options brought, or a default one.
template <typename Default, typename Part>
std::unique_ptr<Part> GivenOr(std::unique_ptr<Part>& given) {
    return given ? std::move(given) : std::make_unique<Default>();
}

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
