// Preloaded (LD_PRELOAD) into the shell that runs the page's start command: the shell waits
// SLOW_READER_START_MS before it runs the reader, as on a loaded set where the shell has forked
// but not yet started the reader when the next command comes. Other programs start at once,
// and without this library: it is built without sanitizers, for system programs.
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include <dlfcn.h>

namespace {

bool isReader(const char* path)
{
    static const char suffix[] = "/usr/local/brova/bin/lumenProbe";
    const size_t length = path ? std::strlen(path) : 0;
    return length >= sizeof suffix - 1
        && std::strcmp(path + length - (sizeof suffix - 1), suffix) == 0;
}

} // namespace

extern "C" int execve(const char* path, char* const argv[], char* const envp[])
{
    typedef int (*Execve)(const char*, char* const[], char* const[]);
    static const Execve real = reinterpret_cast<Execve>(dlsym(RTLD_NEXT, "execve"));
    const char* delay = std::getenv("SLOW_READER_START_MS");
    if (isReader(path) && delay) {
        const long ms = std::atol(delay);
        const struct timespec pause = { ms / 1000, (ms % 1000) * 1000000 };
        nanosleep(&pause, nullptr);
    }
    std::vector<char*> environment;
    for (char* const* entry = envp; entry && *entry; ++entry) {
        if (std::strncmp(*entry, "LD_PRELOAD=", 11) != 0)
            environment.push_back(*entry);
    }
    environment.push_back(nullptr);
    return real(path, argv, environment.data());
}
