// Preloaded in a test: notes as which user it was loaded. Nothing that runs as root may.
#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace {

[[gnu::constructor]] void noteUser()
{
    const std::string note = "/tmp/trap/preloaded-" + std::to_string(geteuid());
    close(open(note.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
}

}  // namespace
