#include "probeSignals.h"

#include <csignal>
#include <initializer_list>

namespace ProbeSignals {

namespace {

// Each counter changes only while its own signal is handled, and a signal never interrupts its
// own handler; the main loop only reads them.
volatile sig_atomic_t g_stop = 0;
volatile sig_atomic_t g_save = 0;
volatile sig_atomic_t g_notConnected = 0;
volatile sig_atomic_t g_noLight = 0;

void onSignal(int signal)
{
    switch (signal) {
    case SIGUSR1:
        g_save = g_save + 1;
        break;
    case SIGUSR2:
        g_notConnected = g_notConnected + 1;
        break;
    case SIGHUP:
        g_noLight = g_noLight + 1;
        break;
    default:
        g_stop = 1;
        break;
    }
}

} // namespace

void install()
{
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    // No SA_RESTART: a signal cuts the loop's sleep short so that it is answered at once.
    for (int signal : { SIGUSR1, SIGUSR2, SIGHUP, SIGTERM, SIGINT })
        sigaction(signal, &action, nullptr);
}

bool stopRequested() { return g_stop != 0; }
int saveRequests() { return g_save; }
int notConnectedToggles() { return g_notConnected; }
int noLightToggles() { return g_noLight; }

} // namespace ProbeSignals
