// The declarations that the cross-check compiles with.
#include "scripts/macos-sdk/Frameworks/CoreFoundation.framework/Headers/CoreFoundation.h"
