// Stands in for the platform's launcher library: records what its two entry points receive. The
// arguments of the first call are written down during that call, because the launcher may cut the
// same array before it makes the second one.
#include "record.h"

#define STANDIN_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

standin::Text& initialCall() {
    static standin::Text text;
    return text;
}

}  // namespace

// The prototypes that the launcher calls through; there is no header for them.
STANDIN_EXPORT void setInitialArgs(int argc, char** argv, char* library);
STANDIN_EXPORT int run(int argc, char** argv, char** vmArgs);

#ifndef STANDIN_WITHOUT_SET_INITIAL_ARGS
STANDIN_EXPORT void setInitialArgs(int argc, char** argv, char* library) {
    standin::Text& text = initialCall();
    text.add(",\n  \"argc\": ");
    text.addNumber(argc);
    text.add(",\n  \"argv\": ");
    text.addList(argv);
    text.add(",\n  \"library\": ");
    text.addQuoted(library == nullptr ? "" : library);
    standin::hold();
}
#endif

#ifndef STANDIN_WITHOUT_RUN
STANDIN_EXPORT int run(int argc, char** argv, char** vmArgs) {
    standin::Text report;
    report.add("{\n  \"kind\": \"library\"");
    report.add(initialCall().data());
    report.add(",\n  \"runArgc\": ");
    report.addNumber(argc);
    report.add(",\n  \"runArgv\": ");
    report.addList(argv);
    report.add(",\n  \"vmArgs\": ");
    report.addList(vmArgs);
    standin::addProcess(report);
    report.add("\n}\n");
    standin::deliver(report);
    standin::stay();
    return 17;  // not 0, to show that the launcher ends with 0 whatever comes back
}
#endif
