#ifndef FILEREPLACE_H
#define FILEREPLACE_H

#include <QByteArray>

// Files that must never be seen half-written, after a crash or a power cut at any moment: the
// new contents are written beside the file under another name, then take its place in one step.
namespace FileReplace {

// Makes the written file `pending` durable, renames it over `target` and makes the folder's new
// entry durable. When a step fails, `pending` is removed and `target` stays as it was.
bool commit(const QByteArray& pending, const QByteArray& target);

} // namespace FileReplace

#endif // FILEREPLACE_H
