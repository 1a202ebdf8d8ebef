#ifndef PROBESIGNALS_H
#define PROBESIGNALS_H

// The signals the reader answers to. The handlers only count; the main loop acts on the counts.
//   SIGUSR1        the set's save key: ask the page to save
//   SIGUSR2        toggle "module not connected"
//   SIGHUP         toggle "no light"
//   SIGTERM/SIGINT end
namespace ProbeSignals {

void install();
bool stopRequested();

// How many times each signal arrived since install(); only ever grows.
int saveRequests();
int notConnectedToggles();
int noLightToggles();

} // namespace ProbeSignals

#endif // PROBESIGNALS_H
