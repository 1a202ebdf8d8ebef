#ifndef READERPROCESS_H
#define READERPROCESS_H

#include <QByteArray>
#include <QList>

// The power reader's process: started and killed by the shell commands of DevicePaths, and
// found by its program file.
namespace ReaderProcess {

// Runs a command through the shell; its exit status is of no interest to the application.
void runCommand(const QByteArray& command);

// Ids of the running processes whose program is the reader's file.
QList<int> processes();

// Runs the start command, then waits at most timeoutMs until a reader runs that did not run
// before: the shell returns at once and starts the reader later, and a kill before that would
// miss it. False when none came in time; true at once when there is no reader program to run.
bool start(int timeoutMs);

// Runs the kill command. After a start that timed out it first gives that start's reader the
// same time again to appear, so that the kill does not miss it and leave it beside the next.
void kill();

} // namespace ReaderProcess

#endif // READERPROCESS_H
