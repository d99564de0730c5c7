#pragma once

#include <kestrona/host_interfaces.h>

#include <string>

/// \file
/// The two texts of the host that travel with a compiled configuration.

namespace Kestrona::Host {

/// Keeps the two texts that travel with a compiled configuration. Both are empty at first. `DefaultHost` puts the
/// string tables of the definition behind them in a file, and takes them off again.
class OleServerTexts : public IOleServerManager {
public:
    void GetServerTexts(std::wstring& first, std::wstring& second) override;
    /// Null counts as empty.
    void SetServerTexts(const wchar_t* first, const wchar_t* second) override;

private:
    std::wstring first_;
    std::wstring second_;
};

} // namespace Kestrona::Host
