#pragma once

#include <nlohmann/json.hpp>

// Instantiated once, in json.cpp, instead of in every source that makes or reads a value.
extern template class nlohmann::basic_json<>;
