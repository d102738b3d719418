#include "platform/signals.h"

#include <signal.h>

namespace rcp {
namespace {

using Handler = void (*)(int);

Handler formerHandler = SIG_DFL;

}  // namespace

void ignoreFileSizeSignal() {
    formerHandler = signal(SIGXFSZ, SIG_IGN);
}

void restoreFileSizeSignal() {
    if (formerHandler != SIG_ERR) {
        (void)signal(SIGXFSZ, formerHandler);
    }
}

}  // namespace rcp
