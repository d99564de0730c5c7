#pragma once

#include <kestrona/host_interfaces.h>
#include <kestrona/memory_resident_data.h>

#include <string>

namespace Kestrona::Host {

// Lets the string tables of a store, constants and help texts among them, travel with its definition: in the
// definition language, behind the two texts of the host. Whoever reads a definition hands the texts over before it is
// resolved, so expressions find their constants.
class CarriedTexts : public IOleServerManager {
public:
    // Both are borrowed; `host` may be null.
    CarriedTexts(Data::MemoryResident::IMemoryResidentData& store, IOleServerManager* host)
        : store_(store),
          host_(host) {}

    void GetServerTexts(std::wstring& first, std::wstring& second) override;

    // Fills the string tables of the store. Texts that cannot be read are reported as a warning and left out.
    void SetServerTexts(const wchar_t* first, const wchar_t* second) override;

private:
    Data::MemoryResident::IMemoryResidentData& store_;
    IOleServerManager* host_;
};

} // namespace Kestrona::Host
