// Reads the parameters of several configurations row by row; what two of them have in common is read once a
// row.
#pragma once

#include "roofline_model/unified/loop_params.h"

#include <cstddef>
#include <deque>
#include <vector>

namespace data_models2 {

// The parameters are bound for the life of the reader: one pass at a time. `sets` must live longer.
class RowReader {
public:
    RowReader(const LoopParamSets& sets, sptr_t<IDataset> dataset);

    // Goes to another row.
    void setRow(const sptr_t<RowNode>& row);
    // Where the value of a parameter stands; parameters with the same expression share a place.
    std::size_t slotOf(std::size_t set, std::size_t param) const { return m_index[set][param]; }
    bool isValid(std::size_t slot) const { return m_slots[slot].isValid; }
    // Holds until the next row.
    const variant_t& getValue(std::size_t slot) {
        Slot& place = m_slots[slot];
        if (place.row != m_rowNumber) read(place);
        return place.value;
    }

private:
    struct Slot {
        const LoopParam* param;
        bool isValid;
        std::size_t row = 0;  // the value's row; rows count from 1
        variant_t value;
    };

    void read(Slot& slot);

    sptr_t<IDataset> m_dataset;
    std::deque<LoopParamsInitializer> m_bindings;
    std::vector<Slot> m_slots;
    std::vector<std::vector<std::size_t>> m_index;  // slot by set and parameter
    sptr_t<RowNode> m_row;
    std::size_t m_rowNumber = 0;
};

}  // namespace data_models2
