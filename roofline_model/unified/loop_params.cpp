#include "roofline_model/unified/loop_params.h"

#include "roofline_model/translation.h"

#include <algorithm>

namespace data_models2 {

namespace {

template <class Items, class Write>
void forEachApplicable(const Items& items, const RooflineConfiguration& configuration, Write write) {
    for (const auto& item : items)
        if (configuration.hasTypes(item.getRooflineTypes())) write(item);
}

void dumpRooflineTypes(rabbit::object& object, const RooflineTypes& types) {
    rabbit::array result(object.allocator());
    for (const auto& type : types) result.push(type);
    object.append("types", std::move(result));
}

template <class Item>
rabbit::array dumpAll(const std::vector<Item>& items, void (Item::*dump)(rabbit::object&) const,
                      rabbit::Allocator& allocator) {
    rabbit::array result(allocator);
    result.reserve(items.size());
    for (const auto& item : items) {
        rabbit::object object(allocator);
        (item.*dump)(object);
        result.push(std::move(object));
    }
    return result;
}

}  // namespace

void RooflineItem::dump(rabbit::object& object) const { dumpRooflineTypes(object, m_types); }

LoopParam::LoopParam(const char* name, const ValueGetter& getter, const RooflineTypes& types, int type)
    : RooflineItem(types),
      m_name(name),
      m_getter(type & param_type::kLog10 ? log10Getter(getter) : getter),
      m_type(type) {}

bool LoopParam::isApplicable(const RooflineTypes& types) const {
    const auto& own = getRooflineTypes();
    return std::find_first_of(own.begin(), own.end(), types.begin(), types.end()) != own.end();
}

bool LoopParam::isCoordinate() const { return m_name.starts_with('x') || m_name.starts_with('y'); }

variant_t LoopParam::getValue(const sptr_t<IDataset>& dataset, const sptr_t<RowNode>& row) const {
    return m_getter ? m_getter->get(dataset, row) : variant_t();
}

void LoopParam::init(const sptr_t<IDataset>& dataset) const {
    if (m_getter) m_getter->init(dataset);
}

void LoopParam::deInit() const {
    if (m_getter) m_getter->deInit();
}

void LoopParam::dumpParam(rabbit::object& object) const {
    RooflineItem::dump(object);
    object.append("name", m_name);
    object.append("expr", getExpr());
    if (isNecessary()) object.append("necessary", true);
}

LoopParamsInitializer::LoopParamsInitializer(const LoopParams& params, const sptr_t<IDataset>& dataset)
    : m_params(params) {
    for (const auto& param : m_params) param.init(dataset);
}

LoopParamsInitializer::~LoopParamsInitializer() {
    for (const auto& param : m_params) param.deInit();
}

LoopParams getLoopParams4RooflineConfiguration(const LoopParams& all,
                                               const RooflineConfiguration& configuration) {
    LoopParams result;
    forEachApplicable(all, configuration, [&](const LoopParam& param) { result.push_back(param); });
    return result;
}

void forEachLoopParamSet(const LoopParamSets& sets, const std::function<void(const LoopParam&)>& fn) {
    for (const auto& set : sets) std::for_each(set.first.begin(), set.first.end(), fn);
}

void RooflineProperty::translate() const {
    if (!std::exchange(m_translated, true)) m_value = roofline::translate(m_value);
}

void RooflineProperty::toJSON(rabbit::object& object) const {
    translate();
    object.set(m_name, m_value);
}

void RooflineProperty::dump(rabbit::object& object) const {
    translate();
    RooflineItem::dump(object);
    object.append("name", m_name);
    object.append("value", m_value);
}

void RooflineAttribute::translate() const {
    if (std::exchange(m_translated, true)) return;
    m_caption = roofline::translate(m_caption);
    m_measure = roofline::translate(m_measure);
}

void RooflineAttribute::toJSON(rabbit::object& object) const {
    translate();
    rabbit::object item(object.allocator());
    item.set("name", m_caption);
    item.set("measure", m_measure);
    item.set("isMem", m_isMem);
    object.set(m_key, std::move(item));
}

void RooflineAttribute::toJSON(rabbit::object& object, const RooflineAttrsTotal& total) const {
    const auto found = total.values.find(m_key);
    if (found != total.values.end()) object.set(m_key, found->second);
}

void RooflineAttribute::dump(rabbit::object& object) const {
    translate();
    RooflineItem::dump(object);
    object.append("name", m_key);
    object.append("caption", m_caption);
    object.append("measure", m_measure);
    object.append("isMem", m_isMem);
}

void addRooflineProperties(rabbit::object& object, const RooflineProperties& properties,
                           const RooflineConfiguration& configuration) {
    forEachApplicable(properties, configuration, [&](const auto& property) { property.toJSON(object); });
}

void addRooflineAttributes(rabbit::object& object, const RooflineAttributes& attributes,
                           const RooflineConfiguration& configuration) {
    forEachApplicable(attributes, configuration, [&](const auto& attribute) { attribute.toJSON(object); });
}

void addProgramTotalRooflineAttributes(rabbit::object& object, const RooflineAttributes& attributes,
                                       const RooflineConfiguration& configuration,
                                       const RooflineAttrsTotal& total) {
    forEachApplicable(attributes, configuration,
                      [&](const auto& attribute) { attribute.toJSON(object, total); });
}

rabbit::array dumpLoopParams(const LoopParams& params, rabbit::Allocator& allocator) {
    return dumpAll(params, &LoopParam::dumpParam, allocator);
}

rabbit::array dumpRooflineProperties(const RooflineProperties& properties, rabbit::Allocator& allocator) {
    return dumpAll(properties, &RooflineProperty::dump, allocator);
}

rabbit::array dumpRooflineAttributes(const RooflineAttributes& attributes, rabbit::Allocator& allocator) {
    return dumpAll(attributes, &RooflineAttribute::dump, allocator);
}

}  // namespace data_models2
