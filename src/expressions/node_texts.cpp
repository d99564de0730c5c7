// Implements: the nodes that join and compare texts.
#include <kestrona/expression_tree.h>

#include <algorithm>
#include <cassert>

namespace Kestrona::Expressions {

namespace {

// The text of a list: a literal as it stands, anything else evaluated into `buffer`.
const std::wstring& TextOf(StringListExpression& list, IMemoryResidentData& store, std::int32_t record,
                           std::int32_t matrix_index, std::wstring& buffer) {
    if (list.Elements().size() == 1) {
        if (const std::wstring* const literal = list.Elements().front()->Literal()) {
            return *literal;
        }
    }
    list.Evaluate(store, record, matrix_index, &buffer);
    return buffer;
}

} // namespace

StringListExpression::StringListExpression(std::vector<std::shared_ptr<AbstractString>> elements)
    : elements_(std::move(elements)) {
    std::erase(elements_, nullptr);
}

double StringListExpression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                      std::wstring* text) {
    if (text == nullptr) {
        return 0.0;
    }
    if (elements_.size() == 1) {
        elements_.front()->Evaluate(store, record, matrix_index, text);
        return 0.0;
    }
    std::wstring joined;
    std::wstring part;
    for (const std::shared_ptr<AbstractString>& element : elements_) {
        if (const std::wstring* const literal = element->Literal()) {
            joined += *literal;
        } else {
            element->Evaluate(store, record, matrix_index, &part);
            joined += part;
        }
    }
    *text = std::move(joined);
    return 0.0;
}

void StringListExpression::EvaluateBlock(IMemoryResidentData&, std::int32_t, std::int32_t count, double* out) {
    std::fill_n(out, std::max(count, 0), 0.0);
}

StringBinaryExpression::StringBinaryExpression(StringListExpression left, TextFunction function,
                                               StringListExpression right)
    : left_(std::move(left)),
      function_(function),
      right_(std::move(right)) {
    assert(function != nullptr);
}

double StringBinaryExpression::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                                        std::wstring*) {
    std::wstring left;
    std::wstring right;
    const std::wstring& left_text = TextOf(left_, store, record, matrix_index, left);
    const std::wstring& right_text = TextOf(right_, store, record, matrix_index, right);
    return function_(left_text, right_text);
}

void MyString::Evaluate(IMemoryResidentData& store, std::int32_t record, std::int32_t matrix_index,
                        std::wstring* text) {
    if (inner_ != nullptr) {
        inner_->Evaluate(store, record, matrix_index, text);
    } else {
        text->clear();
    }
}

} // namespace Kestrona::Expressions
