// Finding a field's description by its name or its number.
#pragma once

#include "host_interfaces/ids.h"

#include <string_view>

namespace embedded_host {

// Null for a name or a number that no field has; else points into `kFields`. Constant time.
const data_models2::FieldInfo* findField(std::string_view name);
const data_models2::FieldInfo* findField(data_models2::FieldId id);

}  // namespace embedded_host
