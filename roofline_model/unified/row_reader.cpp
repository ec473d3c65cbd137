#include "roofline_model/unified/row_reader.h"

#include <string>
#include <unordered_map>

namespace data_models2 {

RowReader::RowReader(const LoopParamSets& sets, sptr_t<IDataset> dataset) : m_dataset(std::move(dataset)) {
    std::unordered_map<std::string, std::size_t> known;  // in one table equal expressions have equal values
    for (const auto& set : sets) {
        m_bindings.emplace_back(set.first, m_dataset);
        auto& index = m_index.emplace_back();
        for (const auto& param : set.first) {
            const auto [slot, isNew] = known.try_emplace(param.getExpr(), m_slots.size());
            if (isNew) m_slots.push_back({&param, param.isValid(), 0, {}});
            index.push_back(slot->second);
        }
    }
}

void RowReader::setRow(const sptr_t<RowNode>& row) {
    m_row = row;
    ++m_rowNumber;
}

void RowReader::read(Slot& slot) {
    slot.value = slot.param->getValue(m_dataset, m_row);
    slot.row = m_rowNumber;
}

}  // namespace data_models2
