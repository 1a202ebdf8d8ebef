// Stands in for the power reader in tests: notes its start below its device root and waits
// to be killed.
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include <unistd.h>

int main()
{
    char self[PATH_MAX] = {};
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0)
        return 1;
    std::string root(self, size_t(n));
    const std::string suffix = "/usr/local/brova/bin/lumenProbe";
    if (root.size() < suffix.size()
        || root.compare(root.size() - suffix.size(), suffix.size(), suffix) != 0)
        return 1;
    root.resize(root.size() - suffix.size());
    if (FILE* log = std::fopen((root + "/reader-starts").c_str(), "a")) {
        std::fprintf(log, "%d\n", int(getpid()));
        std::fclose(log);
    }
    for (;;)
        pause();
}
