#pragma once

#include "configuration/compiled_configuration.h"
#include "fixtures/program_output.h"
#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"

#include <kestrona/compilation_state.h>
#include <kestrona/execution_state.h>
#include <kestrona/host/native_config.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/process.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Kestrona::ConfigurationTest {

// What is said of files, in few words.
class FileMessages : public Fixtures::RecordingMessages {
public:
    FileMessages() {
        texts = {{19054, L"old %2% %3%"}, {19062, L"missing"}, {19063, L"foreign '%1%'"}, {19076, L"new %2% %3%"}};
    }

    void DisplayGenericUnableToRead(const std::wstring& name) override { ShowMessage(L"unreadable", name.c_str(), 0); }

    void DisplayUnableToOpen(const std::wstring& name) override { ShowMessage(L"not opened", name.c_str(), 0); }

    std::wstring GetMessage(std::int32_t id) override {
        const std::wstring text = RecordingMessages::GetMessage(id);
        return text.empty() ? std::to_wstring(id) + L" %s %s" : text;
    }
};

// Compiled files in a folder of their own, and a host that keeps what it is told.
class CompiledFixture : public testing::Test, public INativeConfigWrapper, public IOleServerManager {
protected:
    using MemoryResidentData = Data::MemoryResident::MemoryResidentData;
    using CompilationState = Configuration::Compiled::CompilationState;

    CompiledFixture() {
        MessageManager::setInstance(messages_);
        ExecutionState::Instance().set_IsRunningHeadless(true);
        CompilationState& compilation = CompilationState::Instance() = CompilationState();
        compilation.set_CompileType(Configuration::Compiled::ConfigurationCompileType::Cnf);
        compilation.set_SourceType(Configuration::Compiled::ConfigurationSourceType::Cnf);
    }

    ~CompiledFixture() override { CompilationState::Instance() = CompilationState(); }

    void SetCompiledResource(std::int32_t resource) override { origin_ = std::to_wstring(resource); }

    void SetCompiledFile(const std::wstring& path) override { origin_ = path; }

    void ReportExtractionFailed() override {}

    std::int32_t LoadSource(const wchar_t*, MemoryResidentData&) override { return -1; }

    void GetServerTexts(std::wstring& first, std::wstring& second) override {
        first = first_text_;
        second = second_text_;
    }

    void SetServerTexts(const wchar_t* first, const wchar_t* second) override {
        first_text_ = first;
        second_text_ = second;
    }

    // A store with the definition of a source file below the project's folder, resolved.
    static std::unique_ptr<MemoryResidentData> LoadDefinition(const std::string& file) {
        auto store = Data::MemoryResident::CreateMemoryResidentData();
        EXPECT_EQ(Host::NativeConfig().Load(KESTRONA_SOURCE_DIR "/" + file, *store), Host::LoadOutcome::Ok) << file;
        return store;
    }

    bool Write(MemoryResidentData& store) { return Configuration::WriteCompiledConfiguration(store, path_, this); }

    bool Read(MemoryResidentData& store) {
        return Configuration::ReadCompiledConfiguration(store, path_, this, nullptr, this);
    }

    std::string Bytes() const { return folder_.Read("plant.ks"); }

    void SetBytes(const std::string& bytes) const { folder_.Write("plant.ks", bytes); }

    // What the second reader finds in the file.
    nlohmann::json Decode(int kind) const {
        const std::string found =
            Fixtures::OutputOf("python3 '" KESTRONA_SOURCE_DIR "/tests/oracles/compiled.py' decode '" +
                               folder_.Path("plant.ks") + "' " + std::to_string(kind));
        EXPECT_NE(found, "") << "python3 reads the file as well";
        return nlohmann::json::parse(found, nullptr, false);
    }

    // The file as the second writer makes it.
    void Encode(const nlohmann::json& file) const {
        folder_.Write("encoded.json", file.dump());
        EXPECT_TRUE(Testing::RunOracle("compiled.py", "encode '" + folder_.Path("plant.ks") + "' < '" +
                                                          folder_.Path("encoded.json") + "'"));
    }

    // The texts of all boxes so far, one line each.
    std::wstring Boxes() const {
        std::wstring text;
        for (const auto& box : messages_->boxes) {
            text += box.text + L"\n";
        }
        return text;
    }

    Fixtures::FreshProcess process_;
    Fixtures::RecordingLogger* log_ = &Fixtures::InstallRecordingLogger();
    FileMessages* messages_ = new FileMessages();
    Testing::ScratchFolder folder_;
    std::wstring path_ = folder_.WidePath("plant.ks");
    std::wstring origin_;
    std::wstring first_text_;
    std::wstring second_text_;
};

} // namespace Kestrona::ConfigurationTest
