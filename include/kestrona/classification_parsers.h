#pragma once

#include <kestrona/export.h>
#include <kestrona/types.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// \file
/// Parsers of classification strings: one small class for each keyword that can be looked for.
///
/// A classification string is free text in which keywords stand one after another. A parser finds its keyword and hands
/// back the values that stand with it. There is no word boundary: a keyword is also found inside a longer word. Case
/// matters.
///
/// Parsers are cheap to make and keep nothing between calls. Patterns are compiled once a process and shared. Any
/// number of threads may use one parser.
///
/// The cost is linear in the length of the text, whatever it holds. A single match that would take the pattern more
/// than a fixed multiple of the text's length (blanks by the thousand inside it) counts as no match.

namespace Kestrona::Configuration::Parsers {

class ClassificationPattern;
class PatternGroups;
struct PatternText;

/// What a parser found. Nothing but `Matched` has a meaning when that is false. Positions count characters of the whole
/// text.
struct ClassificationMatch {
    bool Matched = false;
    std::int32_t Start = 0;                      ///< The match's first character.
    std::int32_t End = 0;                        ///< `Start` plus `Length`.
    std::int32_t Length = 0;                     ///< Length of `Text`.
    std::wstring Text;                           ///< The whole match.
    std::map<std::wstring, std::wstring> Values; ///< The captured values under the parser's key names.
};

/// Looks for one keyword.
class KS_API IClassificationParser {
public:
    IClassificationParser() = default;
    IClassificationParser(const IClassificationParser&) = default;
    IClassificationParser& operator=(const IClassificationParser&) = default;
    virtual ~IClassificationParser();

    /// Finds the first match at or behind `start`. Unmatched when `start` lies outside the text.
    [[nodiscard]] virtual ClassificationMatch MatchFrom(const std::wstring& text, std::int32_t start) const = 0;

    /// Finds the first match.
    [[nodiscard]] ClassificationMatch MatchFirst(const std::wstring& text) const;
    /// Tells whether there is a match.
    [[nodiscard]] bool IsMatch(const std::wstring& text) const;
    /// Finds every match in text order; none begins before the end of the one before it. A match that does not lead on
    /// from where its search began ends the walk and is left out.
    [[nodiscard]] std::vector<ClassificationMatch> MatchAll(const std::wstring& text) const;
};

/// Finds a keyword as it stands, without values.
class KS_API SimpleClassificationParser : public IClassificationParser {
public:
    explicit SimpleClassificationParser(std::wstring keyword);

    [[nodiscard]] ClassificationMatch MatchFrom(const std::wstring& text, std::int32_t start) const override;

private:
    std::wstring keyword_;
};

/// The same for a keyword that marks its field with a class.
class KS_API SimpleClassificationWithAttributeParser : public SimpleClassificationParser {
public:
    SimpleClassificationWithAttributeParser(std::wstring keyword, Class c);

    [[nodiscard]] Class get_Class() const { return class_; }

private:
    Class class_;
};

/// Finds a keyword together with what must follow it, by a regular expression (ECMAScript grammar).
class KS_API PatternedClassificationParser : public IClassificationParser {
public:
    [[nodiscard]] ClassificationMatch MatchFrom(const std::wstring& text, std::int32_t start) const override;

protected:
    explicit PatternedClassificationParser(const PatternText& text);

    // Takes the values out of a match of the pattern; false makes the result unmatched.
    virtual bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const = 0;

private:
    std::shared_ptr<const ClassificationPattern> pattern_;
};

/// A keyword with one value. The value is absent when the match has none.
class KS_API OneKeyClassificationParser : public PatternedClassificationParser {
public:
    [[nodiscard]] std::wstring get_FirstKey() const { return key_; }

protected:
    OneKeyClassificationParser(const PatternText& text, const wchar_t* key);

    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;

private:
    const wchar_t* key_;
};

/// A keyword with a name, in double quotes or in parentheses.
class KS_API NameClassificationParser : public OneKeyClassificationParser {
protected:
    explicit NameClassificationParser(const PatternText& text);

    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;
};

/// A keyword with a format's name and a field's name, as in DATABASE(format(field)).
class KS_API TableFieldClassificationParser : public PatternedClassificationParser {
public:
    [[nodiscard]] std::wstring get_TableNameKey() const;
    [[nodiscard]] std::wstring get_FieldNameKey() const;

protected:
    explicit TableFieldClassificationParser(const PatternText& text);

    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;
};

/// A keyword with two values.
class KS_API TwoKeyClassificationParser : public PatternedClassificationParser {
public:
    [[nodiscard]] std::wstring get_FirstKey() const { return first_key_; }

    [[nodiscard]] std::wstring get_SecondKey() const { return second_key_; }

protected:
    TwoKeyClassificationParser(const PatternText& text, const wchar_t* first_key, const wchar_t* second_key);

    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;

private:
    const wchar_t* first_key_;
    const wchar_t* second_key_;
};

// Keywords without values

class KS_API ClassificationParser_AUTO_CALCULATE : public SimpleClassificationParser {
public:
    ClassificationParser_AUTO_CALCULATE();
};

class KS_API ClassificationParser_SYSTEMDB : public SimpleClassificationParser {
public:
    ClassificationParser_SYSTEMDB();
};

class KS_API ClassificationParser_DATA_LIST : public SimpleClassificationWithAttributeParser {
public:
    ClassificationParser_DATA_LIST();
};

class KS_API ClassificationParser_EXCLUDE_FROM_DB : public SimpleClassificationWithAttributeParser {
public:
    ClassificationParser_EXCLUDE_FROM_DB();
};

// Keywords with one value

/// HELPPOPUPID(number): the number under "ID".
class KS_API ClassificationParser_HELPPOPUPID : public OneKeyClassificationParser {
public:
    ClassificationParser_HELPPOPUPID();
};

/// TIP DISPLAY or TIP DISPLAY(number): the number under "ORDER", no value for the bare form.
class KS_API ClassificationParser_TIP_DISPLAY : public OneKeyClassificationParser {
public:
    ClassificationParser_TIP_DISPLAY();
};

/// TABLE(name): the name under "NAME".
class KS_API ClassificationParser_TABLE : public OneKeyClassificationParser {
public:
    ClassificationParser_TABLE();
};

/// BY CLASSIFICATION(text): the text under "CLASSIFICATION".
class KS_API ClassificationParser_BY_CLASSIFICATION : public OneKeyClassificationParser {
public:
    ClassificationParser_BY_CLASSIFICATION();
};

/// DATABASE[text]: the text under "CLASSIFICATION".
class KS_API ClassificationParser_DATABASE_BY_CLASSIFICATION : public OneKeyClassificationParser {
public:
    ClassificationParser_DATABASE_BY_CLASSIFICATION();
};

/// FAMILY(field): the field under "COLUMN", with the blanks around it.
class KS_API ClassificationParser_FAMILY : public OneKeyClassificationParser {
public:
    ClassificationParser_FAMILY();

    /// The class that marks a field as carrying the keyword.
    static Class get_Class();
};

/// ASSOCIATE(field): the field under "COLUMN". The closing parenthesis may be missing.
class KS_API ClassificationParser_ASSOCIATE : public OneKeyClassificationParser {
public:
    ClassificationParser_ASSOCIATE();
};

/// ADDITIONAL REFERENCE(field): the field, up to a colon or the parenthesis, under "COLUMN".
class KS_API ClassificationParser_ADDITIONAL_REFERENCE : public OneKeyClassificationParser {
public:
    ClassificationParser_ADDITIONAL_REFERENCE();

    /// The class that marks a field as carrying the keyword.
    static Class get_Class();
    /// Tells whether the bare words stand anywhere, also where the parenthesised form does not match.
    static bool HasKeyword(const std::wstring& text);
};

/// OVERRIDE(field): the field, up to a colon or the parenthesis, under "COLUMN".
class KS_API ClassificationParser_OVERRIDE : public OneKeyClassificationParser {
public:
    ClassificationParser_OVERRIDE();

    /// The class that marks a field as carrying the keyword.
    static Class get_Class();
    /// Returns the text that the parser reads back as `field`.
    static std::wstring BuildClassification(const std::wstring& field);
};

/// UPDATE REFERENCE(field): the field, up to a colon or the parenthesis, under "COLUMN".
class KS_API ClassificationParser_UPDATE_REFERENCE : public OneKeyClassificationParser {
public:
    ClassificationParser_UPDATE_REFERENCE();

    /// The class that marks a field as carrying the keyword.
    static Class get_Class();
    /// Tells whether the bare words stand anywhere, also where the parenthesised form does not match.
    static bool HasKeyword(const std::wstring& text);
};

// Keywords with a name under "NAME"

/// BUTTON TEXT "name" or BUTTON TEXT (name).
class KS_API ClassificationParser_BUTTON_TEXT : public NameClassificationParser {
public:
    ClassificationParser_BUTTON_TEXT();
};

/// prefix FIELD NAME "name" or prefix FIELD NAME (name).
class KS_API ClassificationParserBase_FIELD_NAME : public NameClassificationParser {
public:
    /// `prefix` becomes the beginning of the pattern, so that characters with a meaning there keep it. A prefix that
    /// makes no pattern matches nothing. Each new prefix stays compiled for the life of the process.
    explicit ClassificationParserBase_FIELD_NAME(const std::wstring& prefix);
};

class KS_API ClassificationParser_DIALOG_FIELD_NAME : public ClassificationParserBase_FIELD_NAME {
public:
    ClassificationParser_DIALOG_FIELD_NAME();
};

class KS_API ClassificationParser_TIP_FIELD_NAME : public ClassificationParserBase_FIELD_NAME {
public:
    ClassificationParser_TIP_FIELD_NAME();
};

class KS_API ClassificationParser_EDITOR_FIELD_NAME : public ClassificationParserBase_FIELD_NAME {
public:
    ClassificationParser_EDITOR_FIELD_NAME();
};

// Keywords with a format and a field, under "TABLE" and "FIELD"

/// DATABASE(format(field)).
class KS_API ClassificationParser_DATABASE : public TableFieldClassificationParser {
public:
    ClassificationParser_DATABASE();

    /// Returns the text that the parser reads back as `table` and `field`.
    static std::wstring BuildClassification(const std::wstring& table, const std::wstring& field);
};

/// AUTO LIST(format(field)).
class KS_API ClassificationParser_AUTO_LIST : public TableFieldClassificationParser {
public:
    ClassificationParser_AUTO_LIST();

    /// The class that marks a field as carrying the keyword.
    static Class get_Class();
};

/// SOURCE(format(field)). Unmatched when the first occurrence is a LOOKUP SOURCE, whatever stands behind it.
class KS_API ClassificationParser_SOURCE : public TableFieldClassificationParser {
public:
    ClassificationParser_SOURCE();

protected:
    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;
};

// Keywords with two values

/// REMOTE_DEF"format(field)": the names under "TABLE" and "COLUMN".
class KS_API ClassificationParser_REMOTE_DEF : public TwoKeyClassificationParser {
public:
    ClassificationParser_REMOTE_DEF();
};

/// REMOTE(format(field)): the names under "TABLE" and "COLUMN".
class KS_API ClassificationParser_REMOTE : public TwoKeyClassificationParser {
public:
    ClassificationParser_REMOTE();
};

/// keyword(number->"text"): the number under "VALUE", the text under "TEXT".
class KS_API SubstituteClassificationParserBase : public TwoKeyClassificationParser {
public:
    /// `keyword` becomes the beginning of the pattern, as the prefix of `ClassificationParserBase_FIELD_NAME` does.
    explicit SubstituteClassificationParserBase(std::wstring keyword);

    /// Returns the entry for a pair, for example SUBSTITUTE(3->"Red"). A text with a double quote in it is not read
    /// back.
    [[nodiscard]] std::wstring BuildClassification(std::int32_t value, const std::wstring& text) const;

private:
    std::wstring keyword_;
};

class KS_API ClassificationParser_SUBSTITUTE : public SubstituteClassificationParserBase {
public:
    ClassificationParser_SUBSTITUTE();
};

class KS_API ClassificationParser_SUBSTITUTX : public SubstituteClassificationParserBase {
public:
    ClassificationParser_SUBSTITUTX();
};

/// FORMAT(text), FORMAT(MAX text) or FORMAT(MAX): the text, ".2" when MAX stands alone, under "FORMAT"; "MAX" under
/// "MAX" when it is there. FORMAT() is no match.
class KS_API ClassificationParser_FORMAT : public TwoKeyClassificationParser {
public:
    ClassificationParser_FORMAT();

protected:
    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;
};

// Expressions

/// keyword "expression": the expression under the empty key. The closing quote may be missing. Unmatched when the first
/// expression is blank.
class KS_API ExpressionClassificationParser : public PatternedClassificationParser {
public:
    /// `keyword` becomes the beginning of the pattern, as the prefix of `ClassificationParserBase_FIELD_NAME` does.
    explicit ExpressionClassificationParser(std::wstring keyword);

    [[nodiscard]] const std::wstring& get_ExpressionKey() const { return expression_key_; }

protected:
    bool TakeValues(const PatternGroups& groups, std::map<std::wstring, std::wstring>& values) const override;

private:
    std::shared_ptr<const ClassificationPattern> blank_;
    std::wstring keyword_;
    std::wstring expression_key_;
};

class KS_API ClassificationParser_EVALUATE : public ExpressionClassificationParser {
public:
    ClassificationParser_EVALUATE();
};

class KS_API ClassificationParser_HIDDEN_IF_Expr : public ExpressionClassificationParser {
public:
    ClassificationParser_HIDDEN_IF_Expr();
};

class KS_API ClassificationParser_EXCLUDE : public ExpressionClassificationParser {
public:
    ClassificationParser_EXCLUDE();
};

} // namespace Kestrona::Configuration::Parsers
