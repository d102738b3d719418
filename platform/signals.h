// Signals whose default would end the process without a word.
#pragma once

namespace rcp {

/// From now on writing beyond the limit of a file's size fails instead of ending the process
/// (SIGXFSZ), so that it is reported like every other write that fails.
void ignoreFileSizeSignal();
/// Gives the signal back as the launcher found it: what is ignored here would be ignored in the
/// platform, too.
void restoreFileSizeSignal();

}  // namespace rcp
