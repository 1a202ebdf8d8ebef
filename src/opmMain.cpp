#include "opmMain.h"

#include "ckeypadfactory.h"
#include "ctabwidget.h"
#include "cwidgetstyle.h"
#include "devicePaths.h"
#include "opmReport.h"
#include "opmShowResult.h"
#include "plate2promserv.h"
#include "readerProcess.h"
#include "toolkitValues.h"

#include <QDateTime>
#include <QDebug>
#include <QKeyEvent>
#include <QPointer>

#include <cstdio>
#include <cstdlib>
#include <list>

#include <unistd.h>

namespace {

// How long a start waits for its reader: ample for a loaded set, short enough to go unnoticed.
const int kReaderStartMs = 500;

// Starts the reader and waits until it runs, so that a kill right after the start cannot miss
// it and leave two readers writing the one record.
void startReader()
{
    if (!ReaderProcess::start(kReaderStartMs))
        printf("COpmMainPage: no reader %d ms after its start \n", kReaderStartMs);
}

} // namespace

COpmMainPage::COpmMainPage(QWidget* parent) : CWidget(parent)
{
    puts("COpmMainPage::COpmMainPage ");
    setBorderWidth(0);
    setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));

    const int width = CWidgetStyle::getScreenRegion(OpmToolkit::kScreenRegion).width()
        - CWidgetStyle::getScreenRegion(OpmToolkit::kSidePanelRegion).width() - 2;
    const int height = CWidgetStyle::getScreenRegion(OpmToolkit::kTabHeightRegion).width();

    m_pTabWidget = new CTabWidget(this);
    m_pTabWidget->setBorderWidth(0);
    m_pTabWidget->setBorderColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));
    m_pTabWidget->setSize(width, height);

    m_pTableOpmSetup = new NerioOpm(m_pTabWidget);
    m_pTableOpmSetup->setSize(width, height);
    m_pTabWidget->addTab(m_pTableOpmSetup, tr("Setup"));

    m_pTableShowResult = new COpmShowResultPage(m_pTabWidget);
    m_pTableShowResult->setSize(width, height);
    m_pTabWidget->addTab(m_pTableShowResult, tr("Result"));

    setFocusPolicy(Qt::StrongFocus);
    setBackgroundColor(CWidgetStyle::getColor(OpmToolkit::kPageColour));
    connect(m_pTabWidget, SIGNAL(currentChanged(int)), this, SLOT(onTabChanged(int)));
    setFocusPolicy(Qt::StrongFocus);
    m_pTableOpmSetup->setFocus();

    m_pE2promserv = new halmanager::PlatE2PromServ(deviceRoot());
    startReader();
}

COpmMainPage::~COpmMainPage()
{
    puts("COpmMainPage::~COpmMainPage ");
    delete m_pE2promserv;
    m_pE2promserv = 0;
    ReaderProcess::kill();
}

QString COpmMainPage::getKeyboard(const QString& title, const QString& text)
{
    return CKeyPadFactory::accessKeyPad(title, text, OpmToolkit::kTextKeyPad,
                                        OpmToolkit::kTextKeyPadMin, OpmToolkit::kTextKeyPadMax,
                                        this);
}

void COpmMainPage::enterInit()
{
    puts("COpmMainPage::enterInit ");
    ReaderProcess::kill();
    startReader();
}

void COpmMainPage::exitClean()
{
    puts("COpmMainPage::exitClean ");
    ReaderProcess::kill();
}

void COpmMainPage::onTabChanged(int) { }

void COpmMainPage::clientQuit()
{
    puts("COpmMainPage::clientQuit ");
    ReaderProcess::kill();
    close();
    exit(0);
}

void COpmMainPage::translate() { }

void COpmMainPage::keyPressEvent(QKeyEvent* event)
{
    QWidget::keyPressEvent(event);
    printf("COpmMainPage::keyPressEvent %d \n", event->key());
    qDebug() << QString("--------opm---------Key:%1").arg(event->key(), 0, 10, QLatin1Char(' '));
    if (event->key() == Qt::Key_F1)
        saveOpmResult();
}

// ---------------------------------------------------------------------------------------------
// The report (opmReport): the page names the file and hands over the results and the EEPROM.

void COpmMainPage::saveOpmResult()
{
    const QString dir = DevicePaths::resultDir();
    if (access(dir.toLocal8Bit().constData(), F_OK) != 0)
        ReaderProcess::runCommand(DevicePaths::makeResultDirCommand());

    const QString proposed =
        QDateTime::currentDateTime().toString(QString::fromLatin1("yyyyMMdd-hhmmss"));
    // The keypad runs its own loop, in which the host may destroy the page: then nothing is left
    // to export from.
    QPointer<COpmMainPage> alive = this;
    const QString name = getKeyboard(tr("Save Opm Result"), proposed);
    if (!alive)
        return;
    const QByteArray path = (dir + QLatin1Char('/') + name + QLatin1String(".html")).toLocal8Bit();

    std::list<Result> results;
    CBrovaOpmDataEngine::getSingleInstance()->getAllResultItem(results);
    if (!opmExportReport(path, results, *m_pE2promserv))
        puts("opm create save result file error ");
}

void COpmMainPage::saveGeneralInfoOfSet(FILE* pfOutput, int font_size)
{
    opmWriteGeneralInfo(pfOutput, font_size, *m_pE2promserv);
}

void COpmMainPage::writeOpmHtmlData(FILE* html)
{
    if (!html)
        return;
    std::list<Result> results;
    CBrovaOpmDataEngine::getSingleInstance()->getAllResultItem(results);
    opmWriteResults(html, results);
}
