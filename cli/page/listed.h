// A place in a set of what lives, for as long as it does.
#pragma once

#include <set>

namespace cli::page {

template <class Item>
class Listed {
public:
    using All = std::set<Item*>;

    // The set outlives the item, whose member this is.
    Listed(All& all, Item* item) : m_all(all), m_item(item) { m_all.insert(m_item); }
    ~Listed() { m_all.erase(m_item); }
    Listed(const Listed&) = delete;
    Listed& operator=(const Listed&) = delete;

private:
    All& m_all;
    Item* const m_item;
};

}  // namespace cli::page
