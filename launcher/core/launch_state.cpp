#include "launcher/core/launch_state.h"

#include "launcher/core/command_line.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "platform/text.h"

namespace rcp {

bool userFirstLaunch = false;
bool invokeDylib = false;
std::wstring mainProcessName;
std::wstring platformExecutable;

namespace {

bool bWaitMode = false;
bool runningLock = false;
bool bDebugFileExists = false;
std::wstring debugFilePath;

}  // namespace

void setWaitMode() {
    bWaitMode = true;
}
bool isWaitMode() {
    return bWaitMode;
}

void setMainProcess(bool isMain) {
    runningLock = isMain;
}
bool isMainProcess() {
    return runningLock;
}

void getMainProcessName(std::wstring& name, const PropertyList& properties) {
    if (invokeDylib) {
        name = L"Velmo";
    } else {
        getEclipseExeName(name, properties);
    }
}

void getLogLocation(std::wstring& location, const std::wstring& workspace) {
    location = osPath(workspace + L"/logs");
}

bool debugFileExists(const std::wstring& path) {
    debugFilePath = osPath(path);
    bDebugFileExists = exists(debugFilePath);
    return bDebugFileExists;
}

void waitForDeletionOfDebugFile() {
    while (bDebugFileExists) {
        sysSleep(1);
        bDebugFileExists = exists(debugFilePath);
    }
}

std::wstring getTickString() {
    const timeval tick = getTick();
    return std::to_wstring(static_cast<unsigned long>(tick.tv_sec) * 1'000'000UL +
                           static_cast<unsigned long>(tick.tv_usec));
}

}  // namespace rcp
