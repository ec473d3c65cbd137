// Trees of getters against a recursive evaluator, and their printed form against a postfix evaluator.
#include "roofline_model/unified/value_getters.h"

#include "tests/roofline_model/test_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace data_models2::test {
namespace {

// The first row is read; the second one gives the dataset a column that the first has no cell of.
const char* const kRows =
    "a SelfTime=6 SelfElapsedTime=100i SourceLine=7u RowKey=-9l SelfFloatOps=18446744073709551615ul"
    " SelfIntOps=0 TotalMem=nan TotalTime=-2 SelfMemL1=1e-13 SelfMemL2=2e-12 SelfMemL3=inf Location=\"\""
    " Rva=\":b\" Isa=\"it's\" TypeDetail=\"e f\" DataTypes=\",c\" LoopType=\";\" MangledName=\".d\"\n"
    "b SelfMemL4=1";
constexpr FieldId kMissingColumn = FieldId::SelfMemDram;
// Those of both rows and the missing one.
const std::vector<FieldId> kFieldsRead = [] {
    std::vector<FieldId> fields{kMissingColumn};
    for (const auto& row : tableOf(kRows).rows)
        for (const auto& cell : row.cells) fields.push_back(cell.first);
    return fields;
}();
const std::vector<variant_t> kConstants{1e9, 2.5, 1u, -3, 0.0};

struct Host {
    sptr_t<IDataset> dataset = makeDataset(kRows);
    sptr_t<RowNode> row = rowsOf(dataset).front();

    variant_t cell(FieldId field) const {
        variant_t value;
        return dataset->getValue(row, dataset->getColumn(field), 0, value) ? value : variant_t();
    }
    variant_t read(const ValueGetter& getter) const {
        getter->init(dataset);
        return getter->get(dataset, row);
    }
};

variant_t sum(const variant_t& a, const variant_t& b) {
    return a.isNumber() && b.isNumber() ? variant_t(a.toDouble() + b.toDouble()) : variant_t();
}
variant_t quotient(const variant_t& a, const variant_t& b) {
    if (!a.isNumber() || !b.isNumber()) return {};
    return b.toDouble() > 1e-12 ? a.toDouble() / b.toDouble() : 0.0;
}
variant_t logarithm(const variant_t& a) {
    return a.isNumber() && a.toDouble() > 0.0 ? variant_t(std::log10(a.toDouble())) : variant_t();
}
variant_t translation(const variant_t& a) {
    return a.isText() ? variant_t("[d " + std::string(a.text()) + "]") : variant_t();
}
variant_t join(const std::vector<variant_t>& values, char separator) {
    std::string result;
    for (const auto& value : values) {
        const std::string text = toText(value);
        if (!result.empty() && !text.empty() && !std::strchr(".:;,", text.front())) result += separator;
        result += text;
    }
    return result.empty() ? variant_t() : variant_t(result);
}

struct Sample {
    ValueGetter getter;
    variant_t expected;
    bool isValid = true;
};

// With `anything` also null operands, and joins inside: their printed form doesn't tell how many they join.
Sample randomTree(const Host& host, int depth, bool anything) {
    if (anything && pick(0, 20) == 0) return {nullptr, {}, false};
    const auto leaf = [&] {
        const FieldId field = *rc::gen::elementOf(kFieldsRead);
        return std::pair(field, Sample{defGetter(field), host.cell(field), field != kMissingColumn});
    };
    const auto operand = [&] { return randomTree(host, depth - 1, anything); };
    switch (depth > 0 ? pick(0, anything ? 8 : 7) : pick(0, 2)) {
        case 0: {
            const auto constant = *rc::gen::elementOf(kConstants);
            return {fakeGetter(constant), constant};
        }
        case 1:
            return leaf().second;
        case 2: {
            const auto [field, left] = leaf();
            const auto [other, right] = leaf();
            return {sumGetter(field, other), sum(left.expected, right.expected),
                    left.isValid && right.isValid};
        }
        case 3: {
            const auto left = operand(), right = operand();
            return {divGetter(left.getter, right.getter), quotient(left.expected, right.expected),
                    left.isValid && right.isValid};
        }
        case 4: {
            const auto [field, left] = leaf();
            const auto right = operand();
            const bool isValid = left.isValid && right.isValid;
            if (*rc::gen::arbitrary<bool>())
                return {divGetter(field, right.getter), quotient(left.expected, right.expected), isValid};
            return {divGetter(right.getter, field), quotient(right.expected, left.expected), isValid};
        }
        case 5: {
            const auto inner = operand();
            return {log10Getter(inner.getter), logarithm(inner.expected), inner.isValid};
        }
        case 6: {
            const auto inner = operand();
            return {translateGetter("d", inner.getter), translation(inner.expected), inner.isValid};
        }
        default:
            break;
    }
    std::vector<ValueGetter> getters;
    std::vector<variant_t> values;
    bool isValid = true;
    for (int count = pick(0, 5); count > 0; --count) {
        const auto item = operand();
        getters.push_back(item.getter);
        values.push_back(item.expected);
        isValid = isValid && item.isValid;
    }
    const char separator = *rc::gen::element(' ', ':');
    return {joinGetter(getters, separator), join(values, separator), isValid};
}

bool isSame(const variant_t& a, const variant_t& b) {
    const bool isSameNumber =
        a.toDouble() == b.toDouble() || (std::isnan(a.toDouble()) && std::isnan(b.toDouble()));
    return a.kind() == b.kind() && isSameNumber && a.text() == b.text();
}

TEST(ValueGetters, ReadWhatARecursiveEvaluatorDoes) {
    const Host host;
    const auto check = [&] {
        const auto [getter, expected, isValid] = randomTree(host, pick(0, 5), true);
        if (!getter) return;
        getter->init(host.dataset);
        const auto value = getter->get(host.dataset, host.row);
        if (!isSame(value, expected))
            RC_FAIL(fmt::format("{}: {} and not {}", getter->getExpr(), toText(value), toText(expected)));
        RC_ASSERT(getter->isValid() == isValid);
        getter->init(host.dataset);  // once more changes nothing
        getter->init(nullptr);
        RC_ASSERT(isSame(getter->get(host.dataset, host.row), expected));
    };
    EXPECT_TRUE(rc::check([&] {
        for (int trees = 0; trees < 10; ++trees) check();
    }));
}

// Reads a printed expression back. A join takes all that is on the stack.
variant_t evaluate(const Host& host, const std::string& expression) {
    std::vector<std::string> items;
    boost::split(items, expression, [](char c) { return c == '\x07'; });
    std::vector<variant_t> stack;
    const auto pop = [&stack] {
        const auto top = stack.back();
        stack.pop_back();
        return top;
    };
    for (const auto& item : items) {
        const auto field =
            std::find_if(kFields.begin(), kFields.end(), [&](const auto& info) { return info.name == item; });
        if (field != kFields.end()) {
            stack.push_back(host.cell(field->id));
        } else if (item == "+" || item == "/") {
            const auto right = pop(), left = pop();
            stack.push_back(item == "+" ? sum(left, right) : quotient(left, right));
        } else if (item == "log10") {
            stack.push_back(logarithm(pop()));
        } else if (item == "translate") {
            const auto argument = pop();
            const auto message = std::string(pop().text());
            const auto at = message.find("%1");
            stack.push_back(argument.isText() ? message.substr(0, at) + std::string(argument.text()) +
                                                    message.substr(at + 2)
                                              : variant_t());
        } else if (item.starts_with("join")) {
            stack = {join(stack, item.size() > 4 ? item[4] : ' ')};
        } else {
            stack.push_back(item.starts_with('"') ? variant_t(item.substr(1, item.size() - 2))
                                                  : variant_t(std::stod(item)));
        }
    }
    EXPECT_EQ(stack.size(), 1u);
    return stack.back();
}

TEST(ValueGetters, PrintAnExpressionThatReadsBackToTheSameValue) {
    const Host host;
    EXPECT_TRUE(rc::check([&] {
        std::vector<ValueGetter> getters;
        for (int count = pick(1, 4); count > 0; --count) getters.push_back(randomTree(host, 3, false).getter);
        const auto getter =
            getters.size() == 1 ? getters.front() : joinGetter(getters, *rc::gen::element(' ', '-'));
        const auto value = host.read(getter);
        const auto again = evaluate(host, getter->getExpr());
        RC_ASSERT(toText(again) == toText(value));
        RC_ASSERT(again.isNumber() == value.isNumber());
    }));
}

TEST(ValueGetters, AreBoundFromInitToDeInit) {
    const Host host;
    const auto shared = defGetter(FieldId::SelfTime);
    const auto tree = log10Getter(divGetter(shared, shared));
    EXPECT_FALSE(tree->isValid());
    EXPECT_TRUE(tree->get(host.dataset, host.row).isEmpty());
    EXPECT_EQ(host.read(tree).toDouble(), 0.0);
    EXPECT_TRUE(tree->isValid());
    tree->deInit();
    tree->deInit();
    EXPECT_FALSE(tree->isValid());
    EXPECT_TRUE(tree->get(host.dataset, host.row).isEmpty());
    EXPECT_EQ(divGetter(ValueGetter(), FieldId::SelfTime)->getExpr() + log10Getter(nullptr)->getExpr(), "");
}

}  // namespace
}  // namespace data_models2::test
