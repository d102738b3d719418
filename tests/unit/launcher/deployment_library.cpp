// Stands in for the library with which a locked-down deployment ends the user's session. Its answer
// is "yes" unless the environment says otherwise.
#include <stdlib.h>

extern "C" __attribute__((visibility("default"))) bool logoff();

bool logoff() {
    return getenv("DEPLOYMENT_REFUSES") == nullptr;
}
