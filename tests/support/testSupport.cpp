#include "testSupport.h"

#include "devicePaths.h"
#include "qtCompat.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QWidget>

#include <cstdio>
#include <cstring>
#include <vector>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#ifndef READER_STAND_IN_PATH
#error "READER_STAND_IN_PATH names the reader stand-in program"
#endif

namespace {
char g_root[4096] = "";
}

// The tests' device root: whatever folder the running TestDeviceRoot stands for.
const char* deviceRoot() { return g_root; }

namespace {

// Keys come from a folder's inode and may repeat between folders: take a folder whose key no
// other suite running beside this one (or a crashed earlier run) holds a segment for.
std::unique_ptr<TestCompat::TempDir> folderWithOwnSegment()
{
    std::vector<std::unique_ptr<TestCompat::TempDir>> taken;
    for (int attempt = 0; attempt < 64; ++attempt) {
        std::unique_ptr<TestCompat::TempDir> dir(new TestCompat::TempDir);
        if (!dir->isValid())
            return dir;
        const key_t key = ftok(QFile::encodeName(dir->path()).constData(), 1);
        if (key != -1 && shmget(key, kOpmShareSegmentSize, IPC_CREAT | IPC_EXCL | 0666) != -1)
            return dir;
        taken.push_back(std::move(dir));
    }
    qFatal("no folder with a shared-memory key of its own");
    return nullptr;
}

} // namespace

TestDeviceRoot::TestDeviceRoot() : m_dir(folderWithOwnSegment())
{
    if (!isValid())
        return;
    const QByteArray root = QFile::encodeName(m_dir->path());
    if (size_t(root.size()) >= sizeof g_root)
        qFatal("test root path too long");
    std::memcpy(g_root, root.constData(), size_t(root.size()) + 1);
    for (const char* dir : { "/home", "/usr/local/brova/bin", "/usr/local/brova/lib", "/etc/brova" })
        QDir().mkpath(m_dir->path() + QLatin1String(dir));
    m_previousCwd = QDir::currentPath().toLocal8Bit();
    if (chdir(root.constData()) != 0)
        qFatal("cannot enter the test root");
}

TestDeviceRoot::~TestDeviceRoot()
{
    if (!isValid())
        return;
    DevicePaths::runCommand(DevicePaths::killReaderCommand() + " 2>/dev/null");
    const key_t key = ftok(".", 1);
    if (key != -1) {
        const int id = shmget(key, 0, 0);
        if (id != -1)
            shmctl(id, IPC_RMID, nullptr);
    }
    if (!m_previousCwd.isEmpty() && chdir(m_previousCwd.constData()) != 0)
        qWarning("cannot return to %s", m_previousCwd.constData());
    g_root[0] = '\0';
}

QByteArray TestDeviceRoot::readFile(const QString& setPath) const
{
    QFile f(file(setPath));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool TestDeviceRoot::writeFile(const QString& setPath, const QByteArray& data) const
{
    QDir().mkpath(QFileInfo(file(setPath)).path());
    QFile f(file(setPath));
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(data) == data.size();
}

bool TestDeviceRoot::installReader(const QString& program) const
{
    const QString target = DevicePaths::readerProgram();
    QFile::remove(target);
    return QFile::copy(program, target)
            && QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

bool TestDeviceRoot::installReaderStandIn() const
{
    return installReader(QString::fromLatin1(READER_STAND_IN_PATH));
}

int TestDeviceRoot::readerStarts() const
{
    return readFile(QString::fromLatin1("/reader-starts")).count('\n');
}

int TestDeviceRoot::runningReaders() const
{
    const QString program = QFileInfo(DevicePaths::readerProgram()).canonicalFilePath();
    int running = 0;
    const QStringList pids = QDir(QString::fromLatin1("/proc")).entryList(QDir::Dirs);
    for (const QString& pid : pids) {
        bool isPid = false;
        pid.toInt(&isPid);
        if (isPid && !program.isEmpty()
            && QFileInfo(QString::fromLatin1("/proc/%1/exe").arg(pid)).canonicalFilePath() == program)
            ++running;
    }
    return running;
}

RecordWriter::RecordWriter()
{
    const key_t key = ftok(".", 1);
    const int id = key == -1 ? -1 : shmget(key, kOpmShareSegmentSize, IPC_CREAT | 0666);
    void* addr = id == -1 ? reinterpret_cast<void*>(-1) : shmat(id, nullptr, 0);
    if (isShareMemAttached(addr))
        m_record = static_cast<OpmShareRecord*>(addr);
}

void RecordWriter::setReading(const char* wavelength, const char* unit, const char* value, int flag)
{
    if (!isAttached())
        return;
    std::strncpy(m_record->wavelenth, wavelength, sizeof m_record->wavelenth - 1);
    m_record->wavelenth[sizeof m_record->wavelenth - 1] = '\0';
    std::strncpy(m_record->unit, unit, sizeof m_record->unit - 1);
    m_record->unit[sizeof m_record->unit - 1] = '\0';
    std::strncpy(m_record->value, value, sizeof m_record->value - 1);
    m_record->value[sizeof m_record->value - 1] = '\0';
    m_record->flag = flag;
}

void RecordWriter::setRawValue(const char (&bytes)[16])
{
    if (isAttached())
        std::memcpy(m_record->value, bytes, sizeof bytes);
}

ModalBoxCloser::ModalBoxCloser(int intervalMs)
{
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(closeActive()));
    m_timer.start(intervalMs);
}

ModalBoxCloser::~ModalBoxCloser() { m_timer.stop(); }

void ModalBoxCloser::closeActive()
{
    QWidget* box = QApplication::activeModalWidget();
    if (!box)
        return;
    Box seen;
    seen.title = box->windowTitle();
    if (auto* messageBox = qobject_cast<QMessageBox*>(box)) {
        seen.text = messageBox->text();
    } else {
        QStringList texts;
        for (QLabel* label : box->findChildren<QLabel*>())
            texts << label->text();
        seen.text = texts.join(QString(QLatin1Char('\n')));
    }
    m_boxes.append(seen);
    // Whatever the handler does or checks, the box must not stay open.
    const bool handled = handler && handler(box);
    if (!handled || QApplication::activeModalWidget() == box) {
        if (auto* dialog = qobject_cast<QDialog*>(box))
            dialog->reject();
        else
            box->close();
    }
}

StdoutCapture::StdoutCapture(Mode mode)
    : m_saved(dup(STDOUT_FILENO)),
      m_file(mode == Keep ? std::tmpfile() : std::fopen("/dev/null", "w"))
{
    std::fflush(stdout);
    if (m_file && m_saved != -1)
        dup2(fileno(m_file), STDOUT_FILENO);
}

QByteArray StdoutCapture::take()
{
    if (!m_file || m_saved == -1)
        return QByteArray();
    std::fflush(stdout);
    dup2(m_saved, STDOUT_FILENO);
    close(m_saved);
    m_saved = -1;
    QByteArray text;
    const long size = std::fseek(m_file, 0, SEEK_END) == 0 ? std::ftell(m_file) : 0;
    if (size > 0) {
        text.resize(int(size));
        std::rewind(m_file);
        text.resize(int(std::fread(text.data(), 1, size_t(text.size()), m_file)));
    }
    std::fclose(m_file);
    m_file = nullptr;
    return text;
}

bool pressKeyPad(QWidget* box, const QString& button)
{
    auto* pressed = box->findChild<QAbstractButton*>(button);
    if (box->objectName() != QLatin1String("CKeyPad") || !pressed)
        return false;
    pressed->click();
    return true;
}

bool answerKeyPad(QWidget* box, const QString& entry)
{
    if (entry.isNull())
        return pressKeyPad(box, QString::fromLatin1("Cancel"));
    auto* edit = box->findChild<QLineEdit*>();
    if (!edit)
        return false;
    edit->setText(entry);
    return pressKeyPad(box, QString::fromLatin1("OK"));
}

TestCompat::TempDir::TempDir()
{
#if QT_VERSION >= 0x050000
    if (m_dir.isValid())
        m_path = m_dir.path();
#else
    // Named after the application, as QTemporaryDir does.
    QString application = QCoreApplication::applicationName();
    if (application.isEmpty())
        application = QString::fromLatin1("qt_temp");
    QByteArray name =
        QFile::encodeName(QDir::tempPath() + QLatin1Char('/') + application + QLatin1String("-XXXXXX"));
    if (mkdtemp(name.data()))
        m_path = QFile::decodeName(name);
#endif
}

TestCompat::TempDir::~TempDir()
{
#if QT_VERSION < 0x050000
    if (isValid())
        removeRecursively(m_path);
#endif
}
