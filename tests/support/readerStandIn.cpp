// Stands in for the power reader in tests: notes its start below its device root and waits
// to be killed. The page starts it by its full path, so its name tells the root.
#include <csignal>
#include <cstdio>
#include <string>

#include <unistd.h>

int main(int, char** argv)
{
    const std::string self = argv[0];
    const size_t root = self.rfind("/usr/local/brova/bin/lumenProbe");
    if (root == std::string::npos)
        return 1;
    if (FILE* log = std::fopen((self.substr(0, root) + "/reader-starts").c_str(), "a")) {
        std::fprintf(log, "%d\n", int(getpid()));
        std::fclose(log);
    }
    for (;;)
        pause();
}
