// The choice among candidate pairs word for word and as slow as that is: what the filter is held against.
#pragma once

#include "host_interfaces/comparison.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <stack>
#include <vector>

namespace data_models2::results_comparer_algs {

class LiteralFilter {
public:
    // Stops after `maxNodes` nodes with the best found by then.
    explicit LiteralFilter(std::size_t maxNodes) : m_nodesLeft(maxNodes) {}

    bool run(std::vector<RowMatchInfo>& matches) {
        if (matches.empty()) return false;
        std::stable_sort(matches.begin(), matches.end(),
                         [](const auto& left, const auto& right) { return right < left; });
        m_list = &matches;
        std::shared_ptr<Node> best;
        expand(0, nullptr);
        while (!m_stack.empty() && m_nodesLeft != 0) {
            --m_nodesLeft;
            const auto node = m_stack.top();
            m_stack.pop();
            auto index = node->next;
            if (findNextCompatible(node.get(), index))
                expand(index, node.get());
            else if (!best || node->score > best->score)
                best = node;
        }
        m_finished = m_stack.empty();
        if (!best) return false;
        std::vector<RowMatchInfo> result;
        for (const auto index : best->chosen) result.push_back(matches[index]);
        matches.swap(result);
        return true;
    }
    bool finished() const { return m_finished; }

private:
    struct Node {
        double score;
        std::vector<std::size_t> chosen;
        std::size_t next;
    };

    static std::shared_ptr<Node> makeNode(const Node* parent, std::size_t index, const RowMatchInfo& match,
                                          std::size_t next) {
        auto node = std::make_shared<Node>(parent ? *parent : Node{0.0, {}, 0});
        node->score = parent ? parent->score + match.score : match.score;
        node->chosen.push_back(index);
        node->next = next;
        return node;
    }
    bool isCompatible(const Node* node, const RowMatchInfo& match) const {
        return !node || std::none_of(node->chosen.begin(), node->chosen.end(), [&](std::size_t index) {
            const auto& chosen = (*m_list)[index];
            return chosen.first == match.first || chosen.second == match.second;
        });
    }
    bool findNextCompatible(const Node* node, std::size_t& index) const {
        if (!node) return true;
        while (index < m_list->size() && !isCompatible(node, (*m_list)[index])) ++index;
        return index < m_list->size();
    }
    double upperBound(const Node* node) const {
        if (!node) return 0.0;
        double sum = node->score;
        for (auto i = node->next; i < m_list->size(); ++i)
            if (isCompatible(node, (*m_list)[i])) sum += (*m_list)[i].score;
        return sum;
    }
    double greedyCompletion(std::shared_ptr<Node> node) const {
        if (!node) return 0.0;
        for (auto index = node->next; findNextCompatible(node.get(), index); index = node->next)
            node = makeNode(node.get(), index, (*m_list)[index], index + 1);
        return node->score;
    }
    void expand(std::size_t index, const Node* parent) {
        const auto& current = (*m_list)[index];
        m_stack.push(makeNode(parent, index, current, index + 1));
        double bestBound = 0.0;
        double bestGreedy = 0.0;
        for (auto i = index + 1; i < m_list->size(); ++i) {
            const auto& other = (*m_list)[i];
            if ((other.first == current.first) == (other.second == current.second)) continue;
            if (!(std::abs(other.score - current.score) <= 1e-6)) continue;
            if (!isCompatible(parent, other)) continue;
            const auto candidate = makeNode(parent, i, other, index + 1);
            const double bound = upperBound(candidate.get());
            if (bestBound == 0.0) bestBound = upperBound(m_stack.top().get());
            if (bound > bestBound) {
                bestBound = bound;
                m_stack.push(candidate);
                continue;
            }
            const double greedy = greedyCompletion(candidate);
            if (bestGreedy == 0.0) bestGreedy = greedyCompletion(m_stack.top());
            if (bestGreedy < greedy) {
                bestGreedy = greedy;
                m_stack.push(candidate);
            }
        }
    }

    const std::vector<RowMatchInfo>* m_list = nullptr;
    std::stack<std::shared_ptr<Node>> m_stack;
    std::size_t m_nodesLeft;
    bool m_finished = false;
};

}  // namespace data_models2::results_comparer_algs
