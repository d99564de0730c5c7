#pragma once

#include "fixtures/recording_services.h"
#include "fixtures/scratch_files.h"

#include <kestrona/compilation_state.h>
#include <kestrona/host_interfaces.h>
#include <kestrona/store.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

// Compiled files in a folder of their own, and a host that keeps what it is told.
namespace Kestrona::ConfigurationTest {

using Data::MemoryResident::MemoryResidentData;

class CompiledFixture : public testing::Test, public INativeConfigWrapper, public IOleServerManager {
protected:
    CompiledFixture();
    ~CompiledFixture() override;

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
    static std::unique_ptr<MemoryResidentData> LoadDefinition(const std::string& file);

    // An empty store with the string tables of another one, which no stream holds.
    static std::unique_ptr<MemoryResidentData> StoreWithTablesOf(MemoryResidentData& other);

    bool Write(MemoryResidentData& store);
    bool Read(MemoryResidentData& store);

    std::string Bytes() const { return folder_.Read("plant.ks"); }

    void SetBytes(const std::string& bytes) const { folder_.Write("plant.ks", bytes); }

    // What the second reader finds in the file, and the file as the second writer makes it.
    nlohmann::json Decode(int kind) const;
    void Encode(const nlohmann::json& file) const;

    // The texts of all boxes so far, one line each.
    std::wstring Boxes() const;

    Fixtures::FreshProcess process_;
    Fixtures::RecordingLogger* log_;
    Fixtures::RecordingMessages* messages_;
    Testing::ScratchFolder folder_;
    std::wstring path_;
    std::wstring origin_;
    std::wstring first_text_;
    std::wstring second_text_;
};

} // namespace Kestrona::ConfigurationTest
