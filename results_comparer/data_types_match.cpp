// Comparing the texts that tell the data types of a row, with bold mark-up around the dominant one.
#include "results_comparer/cpu_match_indicators.h"
#include "results_comparer/prepared_indicator.h"
#include "results_comparer/row_readings.h"

namespace data_models2::results_comparer_algs::cpu_match_indicators {
namespace {

// Places of the weights.
constexpr unsigned kPlain = 0, kBold = 1;
constexpr double kPlainWeight = 1.0, kBoldWeight = 1.2;

// Between the first marks of begin and end; to the end of the text when none ends it. Empty without bold.
std::string boldPartOf(const std::string& text) {
    constexpr std::string_view kBegin = "<b>", kEnd = "</b>";
    const auto mark = text.find(kBegin);
    if (mark == std::string::npos) return {};
    const auto begin = mark + kBegin.size();
    const auto end = text.find(kEnd);
    return text.substr(begin, end == std::string::npos || end < begin ? std::string::npos : end - begin);
}

struct DataTypes {
    PropertyId text;  // of what stands before the details
    PropertyId bold;  // missing when there is no bold part
};

// Unlike `requireData` a number is no text.
bool readText(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset, std::string& text) {
    const auto column = dataset->getColumn(FieldId::DataTypes);
    variant_t cell;
    return dataset->getValue(row, column, 0, cell) && cell.isText() &&
           dataset->getString(row, column, 0, text);
}

// Whether texts hold others, by their ids. A row of the first result meets all of the second's before the
// next one comes, so the last answer for each text of the second side is the one that is asked again.
class Holding {
public:
    PropertyId add(const std::string& text, PropertyIds& ids) {
        const auto id = ids.of(text);
        if (m_texts.size() <= id.code) m_texts.resize(id.code + 1);
        m_texts[id.code] = text;
        return id;
    }
    bool secondHolds(PropertyId second, PropertyId first) const {
        return last(m_held, first, second, [&] { return holds(second, first); });
    }
    bool firstHolds(PropertyId first, PropertyId second) const {
        return last(m_holding, first, second, [&] { return holds(first, second); });
    }

private:
    struct Answer {
        PropertyId first;  // a missing one for none yet
        bool holds = false;
    };
    bool holds(PropertyId text, PropertyId part) const {
        return m_texts[text.code].find(m_texts[part.code]) != std::string::npos;
    }
    template <class Ask>
    bool last(std::vector<Answer>& answers, PropertyId first, PropertyId second, Ask ask) const {
        if (answers.empty()) answers.resize(m_texts.size());
        auto& answer = answers[second.code];
        if (answer.first != first) answer = {first, ask()};
        return answer.holds;
    }

    std::vector<std::string> m_texts;  // by id
    mutable std::vector<Answer> m_held;
    mutable std::vector<Answer> m_holding;
};

WeighedStatus judge(const DataTypes& a, const DataTypes& b, const Holding& holding) {
    const bool isBoldA = a.bold.isThere(), isBoldB = b.bold.isThere();
    if (isBoldA && isBoldB) return {matchIf(a.bold == b.bold), kBold};
    if (isBoldA && b.text.isThere()) return {matchIf(holding.secondHolds(b.text, a.bold)), kPlain};
    if (isBoldB && a.text.isThere()) return {matchIf(holding.firstHolds(a.text, b.bold)), kPlain};
    return {matchProperties(a.text, b.text), kPlain};
}

}  // namespace

std::unique_ptr<IPreparedIndicator> DataTypesMatch::prepare(const RowLists& rows,
                                                            const IProgress& progress) const {
    PropertyIds ids;
    const auto holding = std::make_shared<Holding>();
    return prepareIndicator(
        rows, progress, {kPlainWeight, kBoldWeight},
        [&](const sptr_t<RowNode>& row, Side side) -> DataTypes {
            std::string text;
            if (!of(side)) return {ids.missing(Lack::Dataset), {}};
            if (!readText(row, of(side), text)) return {ids.missing(Lack::Value), {}};
            text.erase(std::min(text.find("; ["), text.size()));
            const auto bold = boldPartOf(text);
            return {holding->add(text, ids), bold.empty() ? PropertyId() : holding->add(bold, ids)};
        },
        [holding](const DataTypes& a, const DataTypes& b) { return judge(a, b, *holding); });
}

}  // namespace data_models2::results_comparer_algs::cpu_match_indicators
