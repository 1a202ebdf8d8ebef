// Preloaded (LD_PRELOAD) into the shell that runs the page's start command: the shell waits
// SLOW_READER_START_MS before it runs the reader, as on a loaded set where the shell has forked
// but not yet started the reader when the next command comes. Other programs start at once,
// and without this library (taken out of the environment before the shell reads it): it is
// built without sanitizers, for system programs.
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <dlfcn.h>

static long g_delayMs = 0;

__attribute__((constructor)) static void readDelay()
{
    const char* delay = std::getenv("SLOW_READER_START_MS");
    g_delayMs = delay ? std::atol(delay) : 0;
    unsetenv("LD_PRELOAD");
}

extern "C" int execve(const char* path, char* const argv[], char* const envp[])
{
    typedef int (*Execve)(const char*, char* const[], char* const[]);
    static const Execve real = reinterpret_cast<Execve>(dlsym(RTLD_NEXT, "execve"));
    if (path && std::strstr(path, "/usr/local/brova/bin/lumenProbe")) {
        const struct timespec pause = { g_delayMs / 1000, (g_delayMs % 1000) * 1000000 };
        nanosleep(&pause, nullptr);
    }
    return real(path, argv, envp);
}
