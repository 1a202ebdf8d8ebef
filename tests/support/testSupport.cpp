#include "testSupport.h"

#include "devicePaths.h"
#include "keyClaim.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMap>
#include <QMessageBox>
#include <QProcess>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

const char kSetupDefaults[] =
    "Wavelength=850\nTestMode=PowerMeter\nUNIT=dB\nPowerLimit=disable\nPowerLimitMinimum=-60\n"
    "PowerLimitMaximum=10\nLossUnit=db\nLossLength=1\nReference850=0\nReference1310=0\n"
    "Reference1490=0\nReference1550=0\nReference1625=0\n";

QStringList setupLines(const QByteArray& text)
{
    // Read as QSettings reads a text it wrote: without its quotes, a byte above 0x7f from \x and
    // its hex digits.
    QByteArray unquoted = text;
    unquoted.replace('"', "");
    QRegExp escaped("\\\\x([0-9a-f]{2})");
    for (int at; (at = escaped.indexIn(QString::fromLatin1(unquoted))) >= 0;)
        unquoted.replace(at, 4, QByteArray(1, char(escaped.cap(1).toInt(0, 16))));
    QMap<QString, QString> keys;
    foreach (const QByteArray& line, unquoted.split('\n')) {
        if (line.contains('='))
            keys.insert(QString::fromLatin1(line.left(line.indexOf('='))),
                        QString::fromLatin1(line.mid(line.indexOf('=') + 1)));
    }
    QStringList sorted;
    foreach (const QString& key, keys.keys())
        sorted << key + '=' + keys.value(key);
    return sorted;
}

QStringList storedSetup()
{
    QFile file(DevicePaths::settingFile());
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const int group = text.indexOf("[COpmSetup]\n");
    QByteArray lines = group < 0 ? QByteArray() : text.mid(group + 12);
    if (lines.contains("\n["))
        lines.truncate(lines.indexOf("\n["));
    return setupLines(lines);
}

QString storedValue(const QString& key)
{
    const QStringList lines = storedSetup().filter(QRegExp("^" + QRegExp::escape(key) + "="));
    return lines.isEmpty() ? QString() : lines.first().section(QLatin1Char('='), 1);
}

namespace {

char g_root[4096] = "";

// Keys come from a folder's inode and may repeat between folders: take a folder whose key no
// other suite or reader check running beside this one (nor a crashed earlier run) holds.
TestCompat::TempDir* folderWithOwnSegment(KeyClaim* claim)
{
    std::vector<std::unique_ptr<TestCompat::TempDir> > taken;
    for (int attempt = 0; attempt < 64; ++attempt) {
        std::unique_ptr<TestCompat::TempDir> dir(new TestCompat::TempDir);
        if (!dir->isValid())
            return dir.release();
        const key_t key = ftok(QFile::encodeName(dir->path()).constData(), 1);
        if (key != -1 && claim->take(key)
            && shmget(key, kOpmShareSegmentSize, IPC_CREAT | IPC_EXCL | 0666) != -1)
            return dir.release();
        claim->release();
        taken.push_back(std::move(dir));
    }
    qFatal("no folder with a shared-memory key of its own");
    return 0;
}

} // namespace

// The tests' device root: whatever folder the running TestDeviceRoot stands for.
const char* deviceRoot() { return g_root; }

TestDeviceRoot::TestDeviceRoot()
    : m_claim(new KeyClaim), m_dir(folderWithOwnSegment(m_claim.get())), m_standIn(false)
{
    if (!isValid())
        return;
    const QByteArray root = QFile::encodeName(m_dir->path());
    if (size_t(root.size()) >= sizeof g_root)
        qFatal("test root path too long");
    std::memcpy(g_root, root.constData(), size_t(root.size()) + 1);
    for (const char* dir :
         { "/home", "/usr/local/brova/bin", "/usr/local/brova/lib", "/etc/brova" })
        QDir().mkpath(m_dir->path() + dir);
    m_previousCwd = QDir::currentPath().toLocal8Bit();
    if (chdir(root.constData()) != 0)
        qFatal("cannot enter the test root");
}

TestDeviceRoot::~TestDeviceRoot()
{
    if (!isValid())
        return;
    ReaderProcess::runCommand(DevicePaths::killReaderCommand() + " 2>/dev/null");
    const key_t key = ftok(".", 1);
    const int id = key == -1 ? -1 : shmget(key, 0, 0);
    if (id != -1)
        shmctl(id, IPC_RMID, 0);
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
    m_standIn = program.isNull();
    return QFile::copy(program.isNull() ? QString(READER_STAND_IN_PATH) : program, target)
        && QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// A reader may still be on its way from the shell to the program: the count is taken only once
// every running reader has noted its start (the stand-in does, a real reader has no note), so
// that one still starting cannot make it look right for a moment.
bool TestDeviceRoot::readersSettleAt(int expected, int timeoutMs) const
{
    for (int waited = 0; waited < timeoutMs; waited += 10) {
        const QList<int> pids = runningReaders();
        const QList<QByteArray> started = readFile("/reader-starts").split('\n');
        bool allStarted = true;
        foreach (int pid, pids)
            allStarted = allStarted && (!m_standIn || started.contains(QByteArray::number(pid)));
        if (allStarted && pids.size() == expected)
            return true;
        QTest::qWait(10);
    }
    return false;
}

RecordWriter::RecordWriter() : m_record(0)
{
    const key_t key = ftok(".", 1);
    const int id = key == -1 ? -1 : shmget(key, kOpmShareSegmentSize, IPC_CREAT | 0666);
    void* addr = id == -1 ? reinterpret_cast<void*>(-1) : shmat(id, 0, 0);
    if (isShareMemAttached(addr))
        m_record = static_cast<OpmShareRecord*>(addr);
}

// strncpy zeroes the rest of a field and leaves no NUL where the text fills it, as a reader may.
#pragma GCC diagnostic ignored "-Wstringop-truncation"
void RecordWriter::setReading(const char* wavelength, const char* unit, const char* value, int flag)
{
    if (!isAttached())
        return;
    std::strncpy(m_record->wavelenth, wavelength, sizeof m_record->wavelenth);
    std::strncpy(m_record->unit, unit, sizeof m_record->unit);
    std::strncpy(m_record->value, value, sizeof m_record->value);
    m_record->flag = flag;
}

ModalBoxCloser::ModalBoxCloser(int intervalMs)
{
    connect(&m_timer, SIGNAL(timeout()), this, SLOT(closeActive()));
    m_timer.start(intervalMs);
}

void ModalBoxCloser::closeActive()
{
    QWidget* box = QApplication::activeModalWidget();
    if (!box)
        return;
    QMessageBox* message = qobject_cast<QMessageBox*>(box);
    m_boxes << box->windowTitle() + ": " + (message ? message->text() : QString());
    // Whatever the handler does or checks, the box must not stay open.
    const bool handled = handler && handler(box);
    if (!handled || QApplication::activeModalWidget() == box) {
        if (QDialog* dialog = qobject_cast<QDialog*>(box))
            dialog->reject();
        else
            box->close();
    }
}

StdoutCapture::StdoutCapture() : m_saved(dup(STDOUT_FILENO)), m_file(std::tmpfile())
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
    std::rewind(m_file);
    QFile captured;
    const QByteArray text = captured.open(m_file, QIODevice::ReadOnly) ? captured.readAll() : "";
    captured.close();
    std::fclose(m_file);
    m_file = 0;
    return text;
}

ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    const bool ended =
        process.waitForFinished(30000) && process.exitStatus() == QProcess::NormalExit;
    ProgramRun run;
    run.status = ended ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

bool answerKeyPad(QWidget* box, const QString& entry)
{
    QAbstractButton* ok = box->findChild<QAbstractButton*>("OK");
    QAbstractButton* cancel = box->findChild<QAbstractButton*>("Cancel");
    QLineEdit* edit = box->findChild<QLineEdit*>();
    if (box->objectName() != QLatin1String("CKeyPad") || !ok || !cancel || !edit)
        return false;
    if (entry != QLatin1String("%OK%"))
        edit->setText(entry.isNull() ? QString("typed, then cancelled") : entry);
    (entry.isNull() ? cancel : ok)->click();
    return true;
}

TestCompat::TempDir::TempDir()
{
    QString application = QCoreApplication::applicationName();
    if (application.isEmpty())
        application = QString::fromLatin1("qt_temp");
    QByteArray name = QFile::encodeName(QDir::tempPath() + '/' + application + "-XXXXXX");
    if (mkdtemp(name.data()))
        m_path = QFile::decodeName(name);
}
