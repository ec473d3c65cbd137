// The instruction mix of a row, from datasets that know one.
#include "embedded_host/services/instruction_mix.h"

namespace data_models2 {

InstructionMix getInstructionMixMap(const sptr_t<RowNode>& row, const sptr_t<IDataset>& dataset) {
    const auto* const source = dynamic_cast<const embedded_host::IInstructionMixSource*>(dataset.get());
    return row && source ? source->instructionMix(*row) : InstructionMix();
}

}  // namespace data_models2
