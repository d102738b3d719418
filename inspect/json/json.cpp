#include "inspect/json/json.h"

template class nlohmann::basic_json<>;
