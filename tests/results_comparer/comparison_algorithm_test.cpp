// Candidates are those of the plain definition: every pair, every indicator, one by one.
#include "results_comparer/comparison_algorithm.h"

#include "results_comparer/cpu_match_indicators.h"
#include "results_comparer/factories.h"
#include "tests/embedded_host/result_text.h"
#include "tests/roofline_model/test_host.h"

#include <algorithm>
#include <limits>
#include <random>

namespace data_models2::results_comparer_algs {
namespace {

using Model = std::shared_ptr<ISurveyingViewModel>;

// Cancels itself at a poll; writes down what is reported.
class Progress final : public DummyProgress {
public:
    explicit Progress(int pollsBeforeCancel = std::numeric_limits<int>::max()) : m_left(pollsBeforeCancel) {}
    void start(const std::string& what, std::uint64_t totalSteps) override {
        reports.push_back(fmt::format("{} 0/{}", what, m_total = totalSteps));
    }
    void advance(std::uint64_t done) override { reports.push_back(fmt::format("{}/{}", done, m_total)); }
    void finish() override { reports.push_back("end"); }
    bool isCancelled() const override { return m_left == 0 || --m_left == 0; }

    std::vector<std::string> reports;

private:
    mutable int m_left;
    std::uint64_t m_total = 0;
};

Model modelOf(const test::Table& table) { return test::makeViewModel(new test::Dataset(table)); }

// Rows whose cells come from few values, so that properties are shared, differ and are missing.
test::Table randomTable(int rows) {
    const auto one = [](const std::vector<variant_t>& values) { return *rc::gen::elementOf(values); };
    const variant_t none;
    test::Table table;
    for (int i = 0; i < rows; ++i) {
        test::TestRow row;
        row.parent = i > 0 && test::pick(0, 2) ? test::pick(0, i) : -1;
        row.isNull = test::pick(0, 12) == 0;
        for (const std::uint64_t bit : {0x4, 0x4, 0x8, 0x20, 0x80, 0x100, 0x40000})
            if (test::pick(0, 2)) *row.type |= bit;
        if (test::pick(0, 8) == 0) *row.type |= row_type::kNotExecuted;
        if (test::pick(0, 10) == 0) row.type.reset();
        row.cells = {
            {FieldId::Rva, one({1u, 1u, 1u, none})},
            {FieldId::MangledName, one({none, "f", "__f", "f_par_loop1", "g"})},
            {FieldId::SourceLocation, one({none, "", "a.c:1", "a.c:2", "b.c"})},
            {FieldId::SourceLine, one({none, 1u, 4u, 5u})},
            {FieldId::NestingLevel, one({none, 0u, 1u, 2u})},
            {FieldId::ComparisonMetric, one({none, 1u, 2u})},
            {FieldId::DataTypes, one({none, "Int32", "<b>Int32</b>", "<b>A</b>; Int32", "A; Int32; [x]"})}};
        std::erase_if(row.cells, [](const auto& cell) { return cell.second.isEmpty(); });
        table.rows.push_back(std::move(row));
    }
    return table;
}

Rows plainRows(const sptr_t<IDataset>& dataset, const IComparisonConfiguration& configuration) {
    Rows rows;
    const auto take = [&](const sptr_t<RowNode>& row) {
        bool isTaken = row != nullptr;
        for (const auto& check : configuration.getEligibilityChecks(false))
            isTaken = isTaken && (*check)(row, dataset);
        if (isTaken) rows.push_back(row);
        return isTaken;
    };
    for (const auto& row : test::rowsOf(dataset)) {
        RowIterator children;
        if (!take(row) || row->getChildren(children, 0, 1) == -1) continue;
        for (; !children.isEnd(); ++children) take(*children);
    }
    return rows;
}

struct Candidate {
    double score;
    std::uint64_t first, second;
    auto operator<=>(const Candidate&) const = default;
};
std::vector<Candidate> plainCandidates(const Model& first, const Model& second, double threshold,
                                       const IComparisonConfiguration& configuration) {
    std::vector<Candidate> candidates;
    const auto checks = configuration.getComparabilityChecks(false);
    const auto indicators = configuration.getMatchIndicators(first, second, false);
    for (const auto& a : plainRows(first->getDataset(DataType::Cpu), configuration)) {
        for (const auto& b : plainRows(second->getDataset(DataType::Cpu), configuration)) {
            if (!std::all_of(checks.begin(), checks.end(), [&](const auto& check) { return (*check)(a, b); }))
                continue;
            double applicable = 0.0, matched = 0.0;
            for (const auto& indicator : indicators) {
                const auto [status, weight] = (*indicator)(a, b);
                if (status != MatchStatus::Invalid) applicable += weight;
                if (status == MatchStatus::Match) matched += weight;
            }
            if (!(applicable > 0.0 && matched > 0.0)) continue;
            const double score = matched * 100.0 / applicable;
            if (threshold <= score) candidates.push_back({score, a->getId(), b->getId()});
        }
    }
    return candidates;
}

std::vector<Candidate> candidatesOf(const std::vector<RowMatchInfo>& matches) {
    std::vector<Candidate> candidates;
    for (const auto& [score, first, second] : matches)
        candidates.push_back({score, first->getId(), second->getId()});
    return candidates;
}

std::vector<Candidate> run(const Model& first, const Model& second, double threshold) {
    std::vector<RowMatchInfo> matches;
    CComparisonAlgorithm(getComparisonConfig(ComparableReportType::Default))
        .run(first, second, DataType::Cpu, threshold, matches, nullptr);
    return candidatesOf(matches);
}

TEST(ComparisonAlgorithm, finds_what_the_plain_definition_finds) {
    EXPECT_TRUE(rc::check([] {
        // Now and then more rows than a block holds.
        const int rows = test::pick(0, 10) ? 8 : 2 * static_cast<int>(PairBlock::kSize);
        const auto first = modelOf(randomTable(test::pick(1, 8))),
                   second = modelOf(randomTable(test::pick(1, rows)));
        const double threshold = *rc::gen::element(0.0, 50.0, 200.0 / 3.0, 100.0);
        const auto found = run(first, second, threshold);
        RC_ASSERT(found == plainCandidates(first, second, threshold, DefaultConfiguration()));

        auto transposed = run(second, first, threshold);
        for (auto& pair : transposed) std::swap(pair.first, pair.second);
        std::sort(transposed.begin(), transposed.end());
        auto sorted = found;
        std::sort(sorted.begin(), sorted.end());
        RC_ASSERT(transposed == sorted);
    }));
}

TEST(ComparisonAlgorithm, stops_at_any_poll_and_keeps_what_it_had) {
    std::string text;
    for (int i = 0; i < 300; ++i) text += fmt::format("f Rva=1 SourceLine={}u\n", i % 7);
    const auto first = modelOf(test::tableOf("f Rva=1 SourceLine=3u\n  g Rva=1\nh Rva=1 SourceLine=1u")),
               second = modelOf(test::tableOf(text));
    const CComparisonAlgorithm algorithm(getComparisonConfig(ComparableReportType::Default));
    std::vector<RowMatchInfo> all, matches;
    Progress whole;
    ASSERT_TRUE(algorithm.run(first, second, DataType::Cpu, 50.0, all, &whole));
    EXPECT_EQ(boost::join(whole.reports, ", "), "Comparing rows 0/6, 1/6, 2/6, 3/6, 4/6, 5/6, 6/6, end");
    const auto found = candidatesOf(all);
    std::size_t most = 0;
    for (int polls = 0;; ++polls) {
        Progress progress(polls);
        matches.clear();
        if (algorithm.run(first, second, DataType::Cpu, 50.0, matches, &progress)) break;
        const auto kept = candidatesOf(matches);
        ASSERT_LE(kept.size(), found.size());
        EXPECT_TRUE(std::equal(kept.begin(), kept.end(), found.begin())) << polls;
        most = std::max(most, kept.size());
        ASSERT_LT(polls, 10000);
    }
    EXPECT_GT(most, 0U);
}

// Lists of one's own; rows of odd ids are no match for each other.
class Lists final : public IComparisonConfiguration {
public:
    class Eligible final : public IEligibilityCheck {
        bool operator()(sptr_t<RowNode> row, sptr_t<IDataset>) const override { return row->getId() != 2; }
    };
    class Comparable final : public IComparabilityCheck {
        bool operator()(sptr_t<RowNode> a, sptr_t<RowNode> b) const override {
            return a->getId() + b->getId() < 8;
        }
    };
    class Even final : public IMatchIndicator {
        MatchResult operator()(sptr_t<RowNode> a, sptr_t<RowNode> b) const override {
            EXPECT_LT(a->getId() + b->getId(), 8U);
            return {(a->getId() * b->getId()) % 2 ? MatchStatus::NoMatch : MatchStatus::Match, 3.0};
        }
    };
    std::vector<std::shared_ptr<IEligibilityCheck>> getEligibilityChecks(bool) const override {
        return eligibility;
    }
    std::vector<std::shared_ptr<IComparabilityCheck>> getComparabilityChecks(bool) const override {
        return comparability;
    }
    std::vector<std::shared_ptr<IMatchIndicator>> getMatchIndicators(Model, Model, bool) const override {
        return indicators;
    }
    std::vector<std::shared_ptr<IEligibilityCheck>> eligibility{std::make_shared<Eligible>()};
    std::vector<std::shared_ptr<IComparabilityCheck>> comparability{std::make_shared<Comparable>()};
    std::vector<std::shared_ptr<IMatchIndicator>> indicators{nullptr, std::make_shared<Even>()};
};

TEST(ComparisonAlgorithm, takes_checks_and_indicators_of_any_kind) {
    const auto model = modelOf(test::tableOf("a\n  hidden\n    unseen\nb\n  child\n    grandchild"));
    const auto text = [&](const auto& change, DataType type = DataType::Cpu) {
        auto lists = std::make_shared<Lists>();
        change(*lists);
        std::vector<RowMatchInfo> matches;
        const bool isDone = CComparisonAlgorithm(lists).run(model, model, type, 0.0, matches, nullptr);
        std::string result = isDone ? "done" : "failed";
        for (const auto& [score, first, second] : matches)
            result += fmt::format(" {}-{}:{}", first->getId(), second->getId(), score);
        return result;
    };
    EXPECT_EQ(text([](Lists&) {}), "done 1-4:100 4-1:100");  // rows 1, 4 and its child 5
    const auto parents =
        std::make_shared<cpu_match_indicators::BUParentalPresenceMatch>(nullptr, nullptr);  // reads no cells
    EXPECT_EQ(text([&](Lists& lists) { lists.indicators.push_back(parents); }),
              "done 1-1:25 1-4:100 4-1:100");
    const auto allByParents = [&](std::size_t times) {
        return text([&](Lists& lists) {
            lists.comparability.clear();
            lists.indicators.assign(times, parents);
        });
    };
    EXPECT_EQ(allByParents(1), "done 1-1:100 1-4:100 4-1:100 4-4:100 5-5:100");
    EXPECT_EQ(allByParents(1), allByParents(PairBlock::kOpinions + 1));  // more than a block holds
    EXPECT_EQ(text([](Lists& lists) { lists.comparability.push_back(nullptr); }), "done");
    EXPECT_EQ(text([](Lists& lists) { lists.eligibility.push_back(nullptr); }), "failed");
    EXPECT_EQ(text([](Lists& lists) { lists.indicators.clear(); }), "failed");
    EXPECT_EQ(text([](Lists& lists) { lists.indicators = {nullptr}; }), "done");
    EXPECT_EQ(text([](Lists&) {}, DataType::Gpu), "failed");  // no such dataset
}

// A loop a row; `line` moves it, `name` decorates its name.
std::string rowText(std::size_t id, const std::string& name, std::size_t line, const char* file,
                    std::size_t level = 1) {
    return fmt::format(R"({{"id":{},"kind":"loop","cells":{{"MangledName":"{}","SourceLine":{},)"
                       R"("SourceLocation":"{}","NestingLevel":{},"SelfFloatOps":1,"SelfElapsedTime":1}}}})",
                       id, name, line, file, level);
}
Model resultOf(const std::vector<std::string>& rows, const char* kind = "cpu") {
    const auto text = embedded_host::test::resultText(boost::join(rows, ","), "", kind);
    return embedded_host::parseResult(text, "result.json")->viewModel();
}

TEST(ResultsComparer, finds_the_rows_of_another_build_again) {
    std::mt19937 random(5);
    for (int round = 0; round < 20; ++round) {
        std::vector<std::string> before, after;
        std::set<std::pair<std::uint64_t, std::uint64_t>> expected, found;
        for (std::size_t id = 0; id < 60; ++id) {
            // Three loops of a name: one of a level of its own, two that only their lines tell apart.
            const auto name = fmt::format("solve{}", id / 3);
            const auto level = id % 3 ? 2U : 1U;
            before.push_back(rowText(id, name, 10 * id, "a.c:1", level));
            if (random() % 8 == 0) continue;
            const auto moved = level == 2 || random() % 3 ? random() % 4 : 300;
            const auto decorated = random() % 2 ? "__" + name + "_par_loop7" : "at line 12 " + name;
            after.push_back(rowText(1000 + id, decorated, 10 * id + moved, "a.c:7", level));
            expected.insert({id, 1000 + id});
        }
        for (std::size_t id = 0; id < 5; ++id)
            after.push_back(rowText(2000 + id, fmt::format("added{}", id), 5000, "b.c"));
        std::shuffle(after.begin(), after.end(), random);
        for (const auto& comparer : {createResultsComparer(), createRooflineResultsComparer()}) {
            ComparisonData data{resultOf(before), resultOf(after), DataType::Cpu, {}};
            ASSERT_TRUE(comparer->compare(data, nullptr));
            found.clear();
            for (const auto& match : data.matches)
                found.insert({match.first->getId(), match.second->getId()});
            EXPECT_EQ(found, expected);
        }
    }
}

// "1-4:50" a pair.
std::string textOf(const ComparisonData& data) {
    std::vector<std::string> pairs;
    for (const auto& [score, first, second] : data.matches)
        pairs.push_back(fmt::format("{}-{}:{:.4g}", first->getId(), second->getId(), score));
    std::sort(pairs.begin(), pairs.end());
    return boost::join(pairs, " ");
}

TEST(ResultsComparer, takes_pairs_from_half_of_the_weight_on) {
    const auto first = modelOf(test::tableOf(R"(f Rva=1 MangledName="a" SourceLocation="x.c")"));
    // Types, parents and files agree, names don't: 3 of 6. Then also the metric, but not bold types: 4
    // of 8.2.
    const auto half = modelOf(test::tableOf(R"(g Rva=1 MangledName="b" SourceLocation="x.c")"));
    ComparisonData data{first, half, DataType::Cpu, {}};
    EXPECT_TRUE(createResultsComparer()->compare(data, nullptr));
    EXPECT_EQ(textOf(data), "1-1:50");
    const auto more = [](const char* name, const char* bold) {
        return modelOf(test::tableOf(fmt::format(
            R"(f Rva=1 MangledName="{}" SourceLocation="x.c" ComparisonMetric=1l DataTypes="<b>{}</b>")",
            name, bold)));
    };
    data = {more("a", "A"), more("b", "B"), DataType::Cpu, {}};
    EXPECT_FALSE(createResultsComparer()->compare(data, nullptr));
    EXPECT_TRUE(createResultsComparer()->compare(data, 48.0, nullptr));
    EXPECT_EQ(textOf(data), "1-1:48.78");
}

TEST(ResultsComparer, compares_kernels_whatever_their_types_and_operations) {
    const auto kernel = [](int id, int type, const char* name, int instances) {
        return fmt::format(
            R"({{"id":{},"type":{},"cells":{{"FunctionName":"{}","InstanceCount":{},"SourceLine":{}}}}})", id,
            type, name, instances, 10 * instances);
    };
    const auto first = resultOf({kernel(1, 4, "axpy(int)", 3), kernel(2, 0, "dot(int)", 5)}, "gpu"),
               second = resultOf({kernel(8, 4, "dot(long)", 5), kernel(9, 0, "axpy(long)", 4)}, "gpu");
    for (const auto& comparer : {createResultsComparer(), createRooflineResultsComparer()}) {
        ComparisonData data{first, second, DataType::Gpu, {}};
        EXPECT_FALSE(comparer->compare(data, 100.5, nullptr));
        EXPECT_TRUE(comparer->compare(data, 30.0, nullptr));
        EXPECT_EQ(textOf(data), "1-9:33.33 2-8:100");  // a loop beside a function
    }
}

TEST(ResultsComparer, keeps_entries_that_are_there_as_candidates) {
    const auto first = resultOf({rowText(1, "f", 1, "a.c"), rowText(2, "g", 50, "b.c")}),
               second = resultOf({rowText(5, "f", 1, "a.c"), rowText(6, "h", 90, "c.c")});
    const auto rowOf = [](const Model& model, int place) {
        return test::rowsOf(model->getDataset(DataType::Cpu))[static_cast<std::size_t>(place)];
    };
    // One that the threshold would refuse, one that gives way to the better pair.
    ComparisonData data{first, second, DataType::Cpu, {{7.0, rowOf(first, 1), rowOf(second, 1)}}};
    data.matches.push_back({99.0, rowOf(first, 0), rowOf(second, 1)});
    EXPECT_TRUE(createResultsComparer()->compare(data, nullptr));
    EXPECT_EQ(textOf(data), "1-5:100 2-6:7");
}

TEST(ResultsComparer, says_that_there_is_nothing_to_compare) {
    const auto comparer = createRooflineResultsComparer();
    const auto one = resultOf({rowText(1, "f", 1, "a.c")}), other = resultOf({rowText(1, "g", 9, "b.c")});
    ComparisonData data{one, other, DataType::Cpu, {}};
    EXPECT_FALSE(comparer->compare(data, nullptr));
    EXPECT_TRUE(comparer->compare(data, 25.0, nullptr));
    data = {one, resultOf({R"({"id":1})"}), DataType::Cpu, {}};  // no operations
    EXPECT_FALSE(comparer->compare(data, 0.0, nullptr));
    data = {one, nullptr, DataType::Cpu, {}};
    EXPECT_FALSE(comparer->compare(data, nullptr));
}

}  // namespace
}  // namespace data_models2::results_comparer_algs
