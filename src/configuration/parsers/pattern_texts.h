#pragma once

#include "configuration/parsers/classification_pattern.h"

// The patterns of the keywords. They are what definitions are read by, so a change here changes their meaning.
//
// An outline differs from its pattern where the pattern can give back: a value that may begin and end with blanks is
// one repetition there, the blanks included.
namespace Kestrona::Configuration::Parsers::Texts {

// One value

inline constexpr PatternText kHelpPopupId{LR"re(HELPPOPUPID\s*\(\s*(-?\d+)\s*\))re", L"HELPPOPUPID",
                                          LR"re(\s*\(\s*-?\d+\s*\))re"};
inline constexpr PatternText kTipDisplay{LR"re(TIP DISPLAY\s*\(\s*(\d+)\s*\)|TIP DISPLAY)re", L"TIP DISPLAY", L""};
// The value ends with its line, at the first parenthesis behind its first character; or it is blanks; or the blanks
// behind it reach into other lines.
inline constexpr PatternText kTable{LR"re(TABLE\s*\(\s*(.+?)\s*\))re", L"TABLE",
                                    LR"re(\s*\(\s*.[^)\n\r]*\)|\s*\(\s+\)|\s*\(\s*.+\s*\))re"};
inline constexpr PatternText kByClassification{LR"re(BY CLASSIFICATION\s*\(\s*([^\)]+?)\s*\))re", L"BY CLASSIFICATION",
                                               LR"re(\s*\([^)]+\))re"};
inline constexpr PatternText kDatabaseByClassification{LR"re(DATABASE\s*\[\s*([^\]]+?)\s*\])re", L"DATABASE",
                                                       LR"re(\s*\[[^\]]+\])re"};
inline constexpr PatternText kFamily{LR"re(FAMILY\(([^)]+)\s*\))re", L"FAMILY", LR"re(\([^)]+\))re"};
inline constexpr PatternText kAssociate{LR"re(ASSOCIATE\s*\(\s*([^)]+))re", L"ASSOCIATE", LR"re(\s*\([^)])re"};
inline constexpr PatternText kAdditionalReference{LR"re(ADDITIONAL REFERENCE\s*\(\s*([^):]+))re",
                                                  L"ADDITIONAL REFERENCE", LR"re(\s*\([^):])re"};
inline constexpr PatternText kOverride{LR"re(OVERRIDE\s*\(\s*([^):]+))re", L"OVERRIDE", LR"re(\s*\([^):])re"};
inline constexpr PatternText kUpdateReference{LR"re(UPDATE REFERENCE\s*\(\s*([^):]+))re", L"UPDATE REFERENCE",
                                              LR"re(\s*\([^):])re"};

// A name in quotes or in parentheses. The first character in parentheses may itself be the closing one.

inline constexpr std::wstring_view kNameOutline = LR"re(\s*"[^"]+"|\s*\([^"][^")]*\))re";
inline constexpr PatternText kButtonText{LR"re(BUTTON TEXT\s*(?:"([^"]+?)"|\(([^"]+?)\)))re", L"BUTTON TEXT",
                                         kNameOutline};
// Behind a prefix.
inline constexpr std::wstring_view kFieldNameKeyword = L" FIELD NAME";
inline constexpr std::wstring_view kFieldNameTail = LR"re( FIELD NAME\s*(?:"([^"]+?)"|\(([^"]+?)\)))re";

// A format and a field

inline constexpr std::wstring_view kTableFieldOutline = LR"re(\s*\([^()]+\([^)])re";
inline constexpr PatternText kDatabase{LR"re(DATABASE\s*\(\s*([^)(]+)\(\s*([^)]+))re", L"DATABASE", kTableFieldOutline};
inline constexpr PatternText kAutoList{LR"re(AUTO LIST\s*\(\s*([^)(]+)\(\s*([^)]+))re", L"AUTO LIST",
                                       kTableFieldOutline};
inline constexpr PatternText kSource{LR"re((LOOKUP |)SOURCE\s*\(\s*([^)(]+)\(\s*([^)]+))re", L"SOURCE",
                                     kTableFieldOutline, 7};

// Two values

inline constexpr PatternText kRemoteDef{LR"re(REMOTE_DEF\s*"\s*([^("]+)\s*\(\s*([^)"]+)\s*\)\s*")re", L"REMOTE_DEF",
                                        LR"re(\s*"[^("]+\([^)"]+\)\s*")re"};
inline constexpr PatternText kRemote{LR"re(REMOTE\s*\(\s*([^(]+)\s*\(\s*([^)]+)\)\s*\))re", L"REMOTE",
                                     LR"re(\s*\([^(]+\([^)]+\)\s*\))re"};
// Behind a keyword.
inline constexpr std::wstring_view kSubstituteTail = LR"re(\s*\(\s*(-?\d+\.?\d*)\s*-\s*>\s*"([^"]*)"\s*\))re";
inline constexpr std::wstring_view kSubstituteOutline = LR"re(\s*\(\s*-?\d+\.?\d*\s*-\s*>\s*"[^"]*"\s*\))re";
inline constexpr PatternText kFormat{LR"re(FORMAT\s*\(\s*(MAX)?\s*([^ \)]*)\s*\))re", L"FORMAT",
                                     LR"re(\s*\(\s*[^ )]*\s*\)|\s*\(\s*MAX\s*[^ )]*\s*\))re"};

// Expressions

// Behind a keyword.
inline constexpr std::wstring_view kExpressionTail = LR"re(\s*"\s*([^"]+)"?)re";
inline constexpr std::wstring_view kExpressionOutline = LR"re(\s*"[^"])re";
inline constexpr PatternText kBlank{LR"re(^\s*$)re", L"", L""};

} // namespace Kestrona::Configuration::Parsers::Texts
