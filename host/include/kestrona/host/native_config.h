#pragma once

#include <kestrona/host/definition.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// \file
/// The definition language behind the load of a table definition.

namespace Kestrona::Host {

/// How a load ended.
enum class LoadOutcome : std::uint8_t {
    Ok,            ///< The store is ready for records. There may be warnings.
    Findings,      ///< The definition is wrong: see the diagnostics and the messages.
    Unreadable,    ///< The definition, or a file that it includes, cannot be read.
    AlreadyLoaded, ///< This process has loaded its definition before.
};

/// Takes each finding in a definition as soon as its text has been parsed.
using DiagnosticSink = std::function<void(const Diagnostic&)>;

/// Parses definition sources, fills the store and has it resolved. Remembers what it was told and found.
class NativeConfig : public INativeConfigWrapper {
public:
    /// `feedback` is borrowed and may be null; empty functions take no diagnostics and read the file system.
    explicit NativeConfig(IInformationFeedback* feedback = nullptr, DiagnosticSink sink = {}, FileReader reader = {});

    /// Parses a file (UTF-8 path), and when that gives no error, empties the store, fills and resolves it and makes its
    /// columns. With errors in the text the store is left as it was; a failure in the resolution leaves it as far as it
    /// came. Never gives `AlreadyLoaded`: any number of stores can be loaded like this.
    LoadOutcome Load(const std::string& path, Data::MemoryResident::MemoryResidentData& store);

    /// `Load` for the data module. Null counts as the empty name, which no file has.
    std::int32_t LoadSource(const wchar_t* file_name, Data::MemoryResident::MemoryResidentData& store) override;

    void SetCompiledResource(std::int32_t resource) override;
    void SetCompiledFile(const std::wstring& path) override;
    /// Shows an error with the number of the resource.
    void ReportExtractionFailed() override;

    /// Forgets what the last load found and how it ended.
    void Forget();

    /// Returns what the last load found in the source, in reading order.
    [[nodiscard]] const std::vector<Diagnostic>& Diagnostics() const { return diagnostics_; }

    /// Returns how the last load ended; `Ok` before the first.
    [[nodiscard]] LoadOutcome LastOutcome() const { return outcome_; }

    /// Returns the resource that the configuration came from, 0 for none.
    [[nodiscard]] std::int32_t CompiledResource() const { return compiled_resource_; }

    /// Returns the compiled file that the configuration came from, "" for none.
    [[nodiscard]] const std::wstring& CompiledFile() const { return compiled_file_; }

private:
    IInformationFeedback* feedback_;
    DiagnosticSink sink_;
    FileReader reader_;
    std::vector<Diagnostic> diagnostics_;
    std::wstring compiled_file_;
    std::int32_t compiled_resource_ = 0;
    LoadOutcome outcome_ = LoadOutcome::Ok;
};

} // namespace Kestrona::Host
