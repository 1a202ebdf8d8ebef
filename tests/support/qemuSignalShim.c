/* Preloaded into the 32-bit suites when they run under qemu-i386 (scripts/set-build.sh).
 * qemu-i386 keeps the threads' TLS entries in one table for the whole process, so a signal
 * handler's return reloads the newest thread's TLS into the thread that took the signal. Qt 4's
 * QProcess starts a thread and catches SIGCHLD; taken on the main thread, the main thread goes on
 * as that thread ("new parent is in a different thread") and Qt crashes at exit. So SIGCHLD is
 * blocked on the main thread and open on every thread started later, and the child processes
 * (the PC's own /bin/sh among them) do not inherit this library. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>

struct start
{
    void* (*routine)(void*);
    void* arg;
};

static void setChildSignal(int how)
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    pthread_sigmask(how, &set, NULL);
}

static void* startUnblocked(void* p)
{
    struct start s = *(struct start*)p;
    free(p);
    setChildSignal(SIG_UNBLOCK);
    return s.routine(s.arg);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attr, void* (*routine)(void*),
                   void* arg)
{
    typedef int (*Create)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static Create real;
    struct start* s = malloc(sizeof *s);
    if (!real)
        real = (Create)dlsym(RTLD_NEXT, "pthread_create");
    if (!s)
        return real(thread, attr, routine, arg);
    s->routine = routine;
    s->arg = arg;
    const int error = real(thread, attr, startUnblocked, s);
    if (error)
        free(s);
    return error;
}

__attribute__((constructor)) static void blockOnMainThread(void)
{
    setChildSignal(SIG_BLOCK);
    unsetenv("LD_PRELOAD");
}
