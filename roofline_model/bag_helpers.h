// Filling and reading property bags.
#pragma once

#include "host_interfaces/values.h"

#include "roofline_model/row_data_access.h"

#include <boost/property_tree/ptree.hpp>

#include <string>
#include <type_traits>
#include <utility>

namespace data_models2 {

// The numeric attribute `name`, or `defaultValue` when it is missing or no number. T is double, long long or
// unsigned long long.
template <class T>
T getBagAttribute(const variant_bag_t& bag, const std::string& name, const T& defaultValue) {
    const auto found = bag.find(name);
    const variant_t value = found == bag.not_found() ? variant_t() : found->second.data();
    if (!value.isNumber()) return defaultValue;
    if constexpr (std::is_same_v<T, double>)
        return value.toDouble();
    else
        return toInteger<T>(value);
}

// An attribute of a bag. T is int, double, bool, std::string or variant_bag_t.
template <class T>
struct VBagAttr {
    std::string name;
    T value;
};

struct VBagHelper {
    // Stores one attribute. A value of that name is replaced; a bag is appended, since the children of a list
    // share their name.
    template <class T>
    static void addAttribute(variant_bag_t& bag, const VBagAttr<T>& attribute) {
        const auto node = [&] {
            if constexpr (std::is_same_v<T, variant_bag_t>)
                return attribute.value;
            else
                return variant_bag_t(variant_t(attribute.value));
        }();
        const auto found = bag.find(attribute.name);
        if (std::is_same_v<T, variant_bag_t> || found == bag.not_found())
            bag.push_back({attribute.name, node});
        else
            found->second = node;
    }

    // Appends a new sub-bag with the attributes in order; its name may repeat. The reference holds until the
    // bag goes.
    template <class... Attrs>
    static variant_bag_t& addVariant(variant_bag_t& bag, const std::string& name,
                                     const Attrs&... attributes) {
        variant_bag_t& sub = bag.push_back({name, variant_bag_t()})->second;
        (addAttribute(sub, attributes), ...);
        return sub;
    }
};

}  // namespace data_models2
