// guest_loader LIBRARY SNAPSHOT: loads the library at run time, lets it begin a rescan in the background, and unloads it at once; then
// does it all again. Exit status 0: all of it went well.
#include "Job.h"

#include <dlfcn.h>

#include <iostream>

namespace brevan::test {
namespace {

using GetInstance = CDeviceManager* (*)(unsigned int, unsigned int);
using ReleaseInstance = void (*)(CDeviceManager*);

template <class Function>
Function symbol(void* library, const char* name)
{
    return reinterpret_cast<Function>(dlsym(library, name));
}

/// The first scan of the process rescans; later ones find the disk without, and rescan behind the application's back.
std::string scan(CDeviceManager& manager, std::string snapshot)
{
    if (login(manager) != 1) {
        return "no login";
    }
    auto& attach = handler<CDiskAttachHandler>(manager, HANDLER_DISK_ATTACH);
    auto& scanner = handler<CDiskScannerHandler>(manager, HANDLER_DISK_SCANNER);
    waitForNewSecond();
    attach.attachSnapshotToHost(snapshot, variable("GUEST_INITIATOR"), "127.0.0.1");
    const bool isFound = !scanner.scanSnapshotAfterAttach(snapshot).empty();
    const bool isFoundAgain = !scanner.scanSnapshotAfterAttach(snapshot).empty();
    return isFound && isFoundAgain ? "" : "the disk was not found";
}

std::string loadAndUnload(const char* path, const std::string& snapshot)
{
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        return dlerror();
    }
    const auto getInstance = symbol<GetInstance>(library, "_ZN14CDeviceManager11getInstanceEjj");
    const auto releaseInstance = symbol<ReleaseInstance>(library, "_ZN14CDeviceManager15releaseInstanceEPS_");
    if (getInstance == nullptr || releaseInstance == nullptr) {
        return "the library lacks a function";
    }
    CDeviceManager* manager = getInstance(1, 500000);
    const std::string wrong = scan(*manager, snapshot);
    releaseInstance(manager);
    return dlclose(library) == 0 ? wrong : dlerror();
}

}  // namespace
}  // namespace brevan::test

int main(int argc, char** argv)
{
    if (argc != 3) {
        return 2;
    }
    for (int round = 0; round < 2; ++round) {
        const std::string wrong = brevan::test::loadAndUnload(argv[1], argv[2]);
        if (!wrong.empty()) {
            std::cerr << "round " << round << ": " << wrong << "\n";
            return 1;
        }
    }
    std::this_thread::sleep_for(std::chrono::seconds(2));  // the rescans end meanwhile, in code that was unloaded
    return 0;
}
