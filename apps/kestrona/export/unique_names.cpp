#include "export/unique_names.h"

#include <kestrona/unicode.h>

namespace Kestrona::Tool {

std::string UniqueNames::Add(const std::string& name) {
    const std::wstring wide = FromUtf8(name);
    std::wstring ending;
    for (int number = 2;; ++number) {
        const std::wstring start(most_ == 0 ? std::wstring_view(wide) : CutUtf16(wide, most_ - ending.size()));
        if (taken_.insert(FoldCase(start + ending)).second) {
            return ToUtf8(start + ending);
        }
        ending = L" " + std::to_wstring(number);
    }
}

} // namespace Kestrona::Tool
