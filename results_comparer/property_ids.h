// Texts and numbers of many rows as small numbers that compare in one step.
#pragma once

#include "results_comparer/match_indicator.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace data_models2::results_comparer_algs {

// What is missing first when a row has no property, in the order in which things are looked for.
enum class Lack : std::uint32_t { Row, Specification, Dataset, Value, Content };

// Equal ids stand for equal properties, or for the same lack of one. Ids of one PropertyIds compare.
struct PropertyId {
    std::uint32_t code = 0;  // even: a lack, odd: a number

    bool isThere() const { return code % 2 != 0; }
    bool operator==(const PropertyId&) const = default;
};

// `matchValidity` of each thing that the property needs, in order, then equality of the property. Rows that
// get equally far have equal ids; what one lacks and the other has is no match.
inline MatchStatus matchProperties(PropertyId a, PropertyId b) {
    if (a != b) return MatchStatus::NoMatch;
    return a.isThere() ? MatchStatus::Match : MatchStatus::Invalid;
}

constexpr MatchStatus matchIf(bool isMatch) { return isMatch ? MatchStatus::Match : MatchStatus::NoMatch; }

class PropertyIds {
public:
    static constexpr PropertyId missing(Lack lack) { return {static_cast<std::uint32_t>(lack) * 2}; }
    PropertyId of(std::int64_t number) { return idOf(m_numbers, number); }
    PropertyId of(std::string text) { return idOf(m_texts, std::move(text)); }

private:
    template <class Map>
    PropertyId idOf(Map& map, typename Map::key_type key) {
        const auto [entry, isNew] = map.try_emplace(std::move(key), m_size);
        m_size += isNew;
        return {entry->second * 2 + 1};
    }

    std::unordered_map<std::int64_t, std::uint32_t> m_numbers;
    std::unordered_map<std::string, std::uint32_t> m_texts;
    std::uint32_t m_size = 0;
};

}  // namespace data_models2::results_comparer_algs
