#include "checkedReader.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const char kLogName[] = "reader.log";
const int kFolderTries = 20;

std::string scratchTemplate()
{
    const char* tmp = std::getenv("TMPDIR");
    std::string base = tmp && *tmp ? tmp : "/tmp";
    return base + "/opmrecord-check-XXXXXX";
}

// Everything in the folder is ours: the reader's log and whatever the reader left there.
void removeFolder(const std::string& folder)
{
    if (DIR* dir = opendir(folder.c_str())) {
        while (const struct dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..")
                unlink((folder + "/" + name).c_str());
        }
        closedir(dir);
    }
    rmdir(folder.c_str());
}

// In the child: never returns. The reason for a failed exec goes back through the pipe.
void execInFolder(const std::string& folder, const std::vector<std::string>& command, int report)
{
    setpgid(0, 0);
    const int in = open("/dev/null", O_RDONLY);
    const int out = open((folder + "/" + kLogName).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (in < 0 || out < 0 || chdir(folder.c_str()) != 0 || dup2(in, 0) < 0 || dup2(out, 1) < 0
        || dup2(out, 2) < 0) {
        const int error = errno;
        (void)!write(report, &error, sizeof error);
        _exit(127);
    }
    std::vector<char*> args;
    for (const std::string& arg : command)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    const int error = errno;
    (void)!write(report, &error, sizeof error);
    _exit(127);
}

} // namespace

void sleepMs(long ms)
{
    const struct timespec period = { ms / 1000, (ms % 1000) * 1000000L };
    nanosleep(&period, nullptr);
}

long long nowMs()
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

key_t recordKeyOf(const char* folder) { return ftok(folder, 1); }

std::string commandPathFrom(const std::string& currentFolder, const std::string& program)
{
    if (program.empty() || program[0] == '/' || program.find('/') == std::string::npos)
        return program;
    return currentFolder + "/" + program;
}

CheckedReader::~CheckedReader()
{
    long took = 0;
    if (m_pid > 0 && running())
        terminate(1000, &took);
    if (m_key != -1) {
        const int id = shmget(m_key, 0, 0);
        if (id != -1)
            shmctl(id, IPC_RMID, nullptr);
    }
    if (!m_folder.empty())
        removeFolder(m_folder);
}

bool CheckedReader::prepare(std::string* error)
{
    // A folder passed over is kept until one is found: removed, its inode and so its key could
    // come straight back.
    std::vector<std::string> passedOver;
    bool madeFolders = true;
    for (int i = 0; i < kFolderTries && m_folder.empty(); ++i) {
        std::string path = scratchTemplate();
        if (!mkdtemp(&path[0])) {
            *error = "cannot make a scratch folder from " + path + ": " + std::strerror(errno);
            madeFolders = false;
            break;
        }
        const key_t key = m_keyOf(path.c_str());
        if (key != -1 && m_claim.take(key) && shmget(key, 0, 0) == -1) {
            m_folder = path;
            m_key = key;
        } else {
            m_claim.release();
            passedOver.push_back(path);
        }
    }
    for (const std::string& folder : passedOver)
        rmdir(folder.c_str());
    if (m_folder.empty() && madeFolders)
        *error = "no scratch folder with a key of its own";
    return !m_folder.empty();
}

bool CheckedReader::start(const std::vector<std::string>& command, std::string* error)
{
    int report[2];
    if (command.empty() || pipe2(report, O_CLOEXEC) != 0) {
        *error = command.empty() ? "no reader command given" : std::strerror(errno);
        return false;
    }
    const pid_t pid = fork();
    if (pid == 0)
        execInFolder(m_folder, command, report[1]);
    close(report[1]);
    if (pid < 0) {
        *error = std::string("fork: ") + std::strerror(errno);
        close(report[0]);
        return false;
    }
    m_pid = pid;
    setpgid(pid, pid); // also here, so that no signal to the group can come before it exists
    int childError = 0;
    const ssize_t n = read(report[0], &childError, sizeof childError);
    close(report[0]);
    if (n == sizeof childError) {
        *error = "cannot start \"" + command[0] + "\": " + std::strerror(childError);
        running();
        return false;
    }
    return true;
}

void CheckedReader::noteStatus(int status)
{
    char text[32];
    if (WIFSIGNALED(status))
        std::snprintf(text, sizeof text, "signal %d", WTERMSIG(status));
    else
        std::snprintf(text, sizeof text, "status %d", WEXITSTATUS(status));
    m_ended = text;
}

bool CheckedReader::running()
{
    if (m_pid <= 0 || !m_ended.empty())
        return false;
    int status = 0;
    if (waitpid(m_pid, &status, WNOHANG) != m_pid)
        return true;
    noteStatus(status);
    return false;
}

bool CheckedReader::terminate(long graceMs, long* tookMs)
{
    const long long start = nowMs();
    *tookMs = 0;
    if (!running())
        return false;
    kill(-m_pid, SIGTERM);
    while (nowMs() - start < graceMs) {
        if (!running()) {
            *tookMs = long(nowMs() - start);
            kill(-m_pid, SIGKILL); // anything it started and left behind
            return true;
        }
        sleepMs(5);
    }
    kill(-m_pid, SIGKILL);
    int status = 0;
    if (waitpid(m_pid, &status, 0) == m_pid)
        noteStatus(status);
    *tookMs = long(nowMs() - start);
    return false;
}

std::string CheckedReader::outputTail(size_t maxBytes) const
{
    std::FILE* log = std::fopen((m_folder + "/" + kLogName).c_str(), "rb");
    if (!log)
        return std::string();
    std::fseek(log, 0, SEEK_END);
    const long size = std::ftell(log);
    const long from = size > long(maxBytes) ? size - long(maxBytes) : 0;
    std::fseek(log, from, SEEK_SET);
    std::string text(size_t(size - from), '\0');
    text.resize(std::fread(&text[0], 1, text.size(), log));
    std::fclose(log);
    return text;
}
