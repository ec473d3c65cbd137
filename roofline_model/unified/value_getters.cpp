#include "roofline_model/unified/value_getters.h"

#include "host_interfaces/host_functions.h"

#include "roofline_model/translation.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace data_models2 {

namespace {

constexpr char kExprSeparator = '\x07';
constexpr double kSmallestDivisor = 1e-12;

bool isUsable(const ValueGetter& getter) { return getter && getter->isValid(); }

class CDefValueGetter final : public IValueGetter {
public:
    explicit CDefValueGetter(FieldId field) : m_field(field) {}
    void init(const sptr_t<IDataset>& dataset) override {
        if (dataset) m_column = dataset->getColumn(m_field);
    }
    bool isValid() const override { return m_column != nullptr; }
    void deInit() override { m_column.reset(); }
    variant_t get(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const override {
        variant_t cell;
        if (m_column && dataset && dataset->getValue(row, m_column, 0, cell)) return cell;
        return {};
    }
    std::string getExpr() const override { return getFieldStringId(m_field); }

private:
    FieldId m_field;
    sptr_t<ColumnNode> m_column;
};

class CBinaryOpValueGetter : public IValueGetter {
public:
    CBinaryOpValueGetter(ValueGetter left, ValueGetter right)
        : m_left(std::move(left)), m_right(std::move(right)) {}
    void init(const sptr_t<IDataset>& dataset) override {
        if (m_left) m_left->init(dataset);
        if (m_right) m_right->init(dataset);
    }
    bool isValid() const override { return isUsable(m_left) && isUsable(m_right); }
    void deInit() override {
        if (m_left) m_left->deInit();
        if (m_right) m_right->deInit();
    }
    variant_t get(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const override {
        if (!m_left || !m_right) return {};
        const variant_t a = m_left->get(dataset, row);
        const variant_t b = m_right->get(dataset, row);
        if (!a.isNumber() || !b.isNumber()) return {};
        return doBinaryOperation(a.toDouble(), b.toDouble());
    }
    std::string getExpr() const override {
        if (!m_left || !m_right) return {};
        return m_left->getExpr() + kExprSeparator + m_right->getExpr() + kExprSeparator + getOperationStr();
    }
    virtual double doBinaryOperation(double a, double b) const = 0;
    virtual std::string getOperationStr() const = 0;

private:
    ValueGetter m_left;
    ValueGetter m_right;
};

class CSumValueGetter final : public CBinaryOpValueGetter {
public:
    using CBinaryOpValueGetter::CBinaryOpValueGetter;
    double doBinaryOperation(double a, double b) const override { return a + b; }
    std::string getOperationStr() const override { return "+"; }
};

class CDivValueGetter final : public CBinaryOpValueGetter {
public:
    using CBinaryOpValueGetter::CBinaryOpValueGetter;
    double doBinaryOperation(double a, double b) const override { return b > kSmallestDivisor ? a / b : 0.0; }
    std::string getOperationStr() const override { return "/"; }
};

class CUnaryOpValueGetter : public IValueGetter {
public:
    explicit CUnaryOpValueGetter(ValueGetter operand) : m_operand(std::move(operand)) {}
    void init(const sptr_t<IDataset>& dataset) override {
        if (m_operand) m_operand->init(dataset);
    }
    bool isValid() const override { return isUsable(m_operand); }
    void deInit() override {
        if (m_operand) m_operand->deInit();
    }
    variant_t get(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const override {
        return m_operand ? doUnaryOperation(m_operand->get(dataset, row)) : variant_t();
    }
    std::string getExpr() const override {
        return m_operand ? m_operand->getExpr() + kExprSeparator + getOperationStr() : std::string();
    }
    virtual variant_t doUnaryOperation(const variant_t& value) const = 0;
    virtual std::string getOperationStr() const = 0;

protected:
    bool hasOperand() const { return m_operand != nullptr; }

private:
    ValueGetter m_operand;
};

class CLog10ValueGetter final : public CUnaryOpValueGetter {
public:
    using CUnaryOpValueGetter::CUnaryOpValueGetter;
    variant_t doUnaryOperation(const variant_t& value) const override {
        if (!value.isNumber()) return {};
        const double number = value.toDouble();
        return number > 0.0 ? variant_t(std::log10(number)) : variant_t();
    }
    std::string getOperationStr() const override { return "log10"; }
};

class CTranslateValueGetter final : public CUnaryOpValueGetter {
public:
    CTranslateValueGetter(ValueGetter operand, std::string key)
        : CUnaryOpValueGetter(std::move(operand)), m_key(std::move(key)) {}
    variant_t doUnaryOperation(const variant_t& value) const override {
        return value.isText() ? variant_t(roofline::translate(m_key, value)) : variant_t();
    }
    std::string getOperationStr() const override { return "translate"; }
    std::string getExpr() const override {
        if (!hasOperand()) return {};
        return '"' + roofline::translate(m_key, "%1") + '"' + kExprSeparator + CUnaryOpValueGetter::getExpr();
    }

private:
    std::string m_key;
};

class CFakeGetter final : public IValueGetter {
public:
    explicit CFakeGetter(variant_t value) : m_value(std::move(value)) {}
    void init(const sptr_t<IDataset>&) override {}
    bool isValid() const override { return true; }
    void deInit() override {}
    variant_t get(const sptr_t<IDataset>&, const sptr_t<RowNode>&) const override { return m_value; }
    std::string getExpr() const override { return toText(m_value); }

private:
    variant_t m_value;
};

class CJoinValuesGetter final : public IValueGetter {
public:
    CJoinValuesGetter(std::vector<ValueGetter> getters, char separator)
        : m_getters(std::move(getters)), m_separator(separator) {}
    void init(const sptr_t<IDataset>& dataset) override {
        for (const auto& getter : m_getters)
            if (getter) getter->init(dataset);
    }
    bool isValid() const override { return std::all_of(m_getters.begin(), m_getters.end(), isUsable); }
    void deInit() override {
        for (const auto& getter : m_getters)
            if (getter) getter->deInit();
    }
    variant_t get(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const override {
        constexpr std::string_view kOwnPunctuation = ".:;,";
        std::string result;
        for (const auto& getter : m_getters) {
            if (!getter) continue;
            const std::string text = toText(getter->get(dataset, row));
            if (text.empty()) continue;
            if (!result.empty() && kOwnPunctuation.find(text.front()) == std::string_view::npos)
                result += m_separator;
            result += text;
        }
        return result.empty() ? variant_t() : variant_t(std::move(result));
    }
    std::string getExpr() const override {
        std::string result;
        for (const auto& getter : m_getters)
            if (getter) result += getter->getExpr() + kExprSeparator;
        if (!result.empty()) result += "join";
        if (m_separator != ' ') result += m_separator;
        return result;
    }

private:
    std::vector<ValueGetter> m_getters;
    char m_separator;
};

}  // namespace

ValueGetter defGetter(FieldId field) { return std::make_shared<CDefValueGetter>(field); }
ValueGetter sumGetter(FieldId a, FieldId b) {
    return std::make_shared<CSumValueGetter>(defGetter(a), defGetter(b));
}
ValueGetter divGetter(FieldId a, FieldId b) { return divGetter(defGetter(a), defGetter(b)); }
ValueGetter divGetter(const ValueGetter& a, FieldId b) { return divGetter(a, defGetter(b)); }
ValueGetter divGetter(FieldId a, const ValueGetter& b) { return divGetter(defGetter(a), b); }
ValueGetter divGetter(const ValueGetter& a, const ValueGetter& b) {
    return std::make_shared<CDivValueGetter>(a, b);
}
ValueGetter log10Getter(const ValueGetter& a) { return std::make_shared<CLog10ValueGetter>(a); }
ValueGetter fakeGetter(const variant_t& value) { return std::make_shared<CFakeGetter>(value); }
ValueGetter translateGetter(const std::string& key, const ValueGetter& a) {
    return std::make_shared<CTranslateValueGetter>(a, key);
}
ValueGetter joinGetter(const std::vector<ValueGetter>& getters, char separator) {
    return std::make_shared<CJoinValuesGetter>(getters, separator);
}

}  // namespace data_models2
