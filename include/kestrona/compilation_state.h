#pragma once

#include <kestrona/export.h>
#include <kestrona/types.h>

#include <cstdint>
#include <string>
#include <utility>

/// \file
/// Where a definition comes from and what is made of it.

class IResourceHandler;

namespace Kestrona::Configuration::Compiled {

/// Where the definition comes from.
enum class ConfigurationSource : std::int32_t {
    CompiledFile = 0,     ///< The file at `CompiledConfigurationFile`.
    SourceDefinition = 1, ///< The source, parsed by the host.
    EmbeddedResource = 2, ///< A resource of the host's program, extracted to a file first.
};

/// The kind of compiled file that is written.
enum class ConfigurationCompileType : std::int32_t {
    None = 0,
    Cnf = 1,
    Oem = 2,
    Runtime = 3
};

/// The kind of compiled file that is read. The numbers go into the file; those of `Oem` and `Runtime` are the other
/// way round than in `ConfigurationCompileType`.
enum class ConfigurationSourceType : std::int32_t {
    None = 0,
    Cnf = 1,
    Runtime = 2,
    Oem = 3
};

/// Outcome of `CompilationState::CreateCompiledFileManager`. Any other number fails like `ExtractionFailed`.
enum class FileManagerResult : std::int32_t {
    OK = 1,
    ExtractionFailed = 2
};

/// Holds the path of a compiled file while it is read.
class KS_API ICompiledFileManager {
public:
    ICompiledFileManager() = default;
    ICompiledFileManager(const ICompiledFileManager&) = delete;
    ICompiledFileManager& operator=(const ICompiledFileManager&) = delete;
    virtual ~ICompiledFileManager() = default;
    [[nodiscard]] virtual std::wstring GetFileName() const = 0;
};

/// A file that stays after use.
class KS_API CompiledFileManager : public ICompiledFileManager {
public:
    explicit CompiledFileManager(std::wstring path) : path_(std::move(path)) {}

    [[nodiscard]] std::wstring GetFileName() const override { return path_; }

private:
    std::wstring path_;
};

/// A temporary file, removed by the destructor.
class KS_API EmbeddedFileManager : public ICompiledFileManager {
public:
    explicit EmbeddedFileManager(std::wstring path) : path_(std::move(path)) {}

    ~EmbeddedFileManager() override;

    [[nodiscard]] std::wstring GetFileName() const override { return path_; }

private:
    std::wstring path_;
};

/// Process-wide settings of the definition load. The host sets them before `KSSERVER_LoadTableDefinition`.
class KS_API CompilationState {
public:
    /// Returns the one object; made at the first call.
    static CompilationState& Instance();

    /// True when this run writes a compiled configuration.
    [[nodiscard]] bool get_IsCompiling() const { return is_compiling_; }

    void set_IsCompiling(bool value) { is_compiling_ = value; }

    /// Path of the compiled file to read, or to write when compiling.
    [[nodiscard]] const NullValue<std::wstring>& get_CompiledConfigurationFile() const { return file_; }

    void set_CompiledConfigurationFile(NullValue<std::wstring> value) { file_ = std::move(value); }

    [[nodiscard]] ConfigurationCompileType get_CompileType() const { return compile_type_; }

    void set_CompileType(ConfigurationCompileType value) { compile_type_ = value; }

    [[nodiscard]] ConfigurationSource get_Source() const { return source_; }

    void set_Source(ConfigurationSource value) { source_ = value; }

    [[nodiscard]] ConfigurationSourceType get_SourceType() const { return source_type_; }

    /// A file is read with the number that it was compiled with: what was compiled as `Oem` is read as `Runtime`, and
    /// the other way round. A wrong type is not noticed as such; the file seems damaged or another program's.
    void set_SourceType(ConfigurationSourceType value) { source_type_ = value; }

    /// Kept for the host.
    [[nodiscard]] bool get_IsMaster() const { return is_master_; }

    void set_IsMaster(bool value) { is_master_ = value; }

    /// True when compiling with nobody to see a message.
    [[nodiscard]] bool get_IsCommandLineCompilation() const;

    /// Returns the name of the file that a compile writes when none is given: "KESTRONA.CNF", "KESTRONA.OEM" or
    /// "KESTRONA.KS_RT". Throws the wide text "Unexpected state" (`const wchar_t*`) for any other compile type.
    [[nodiscard]] std::wstring ResolveDefaultOutputFile() const;
    /// Returns the source type that a compile writes into its file; throws like `ResolveDefaultOutputFile`.
    [[nodiscard]] ConfigurationSourceType ResolveSourceType() const;

    /// Makes the manager of the compiled file to read; the caller deletes `*out`. Throws the wide text
    /// "No value present" (`const wchar_t*`) when a file is needed and none is set. `*out` is null unless OK.
    FileManagerResult CreateCompiledFileManager(IResourceHandler* resources, ICompiledFileManager** out) const;

private:
    bool is_compiling_ = false;
    NullValue<std::wstring> file_;
    ConfigurationCompileType compile_type_ = ConfigurationCompileType::None;
    ConfigurationSource source_ = ConfigurationSource::CompiledFile;
    ConfigurationSourceType source_type_ = ConfigurationSourceType::None;
    bool is_master_ = false;
};

} // namespace Kestrona::Configuration::Compiled
