#include "diagnostics/observer.h"

namespace rcp {

Observer* observer = nullptr;

}  // namespace rcp
