#include "opmMain.h"

#include "ckeypadfactory.h"
#include "ctabwidget.h"
#include "cwidgetstyle.h"
#include "devicePaths.h"
#include "fixedText.h"
#include "opmShowResult.h"
#include "plate2promserv.h"

#include <QDebug>
#include <QKeyEvent>

#include <cstdio>
#include <cstdlib>
#include <ctime>

// ---------------------------------------------------------------------------------------------
// Result store

CBrovaOpmDataEngine* CBrovaOpmDataEngine::m_pInstance = 0;

namespace {

// Every text field that leaves the store ends inside its width, so its readers may use "%s".
void endTextFields(Result& record)
{
    char* const fields[] = { record.testMode, record.waveLenth,  record.minimum,
                             record.maximum,  record.value,      record.ref,
                             record.pass,     record.limitsUnit, record.fiberLength };
    for (size_t i = 0; i < sizeof fields / sizeof fields[0]; ++i)
        fields[i][sizeof record.testMode - 1] = '\0';
}

} // namespace

CBrovaOpmDataEngine* CBrovaOpmDataEngine::getSingleInstance()
{
    if (!m_pInstance)
        m_pInstance = new CBrovaOpmDataEngine;
    return m_pInstance;
}

void CBrovaOpmDataEngine::addResultItem(Result& record)
{
    if (m_resultCache.size() > size_t(kMaxResults - 1))
        m_resultCache.pop_front();
    const time_t now = time(0);
    struct tm local = {};
    localtime_r(&now, &local);
    char stamp[64];
    snprintf(stamp, sizeof stamp, "%.4d-%.2d-%.2d %.2d:%.2d:%.2d", local.tm_year + 1900,
             local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    FixedText::copy(record.time, stamp);
    printf("addResultItem %s \n", record.time);
    m_resultCache.push_back(record);
    endTextFields(m_resultCache.back());
}

int CBrovaOpmDataEngine::getResultItemCount() { return int(m_resultCache.size()); }

Result CBrovaOpmDataEngine::getLastResultItem()
{
    Result last = {};
    if (!m_resultCache.empty())
        last = m_resultCache.back();
    return last;
}

void CBrovaOpmDataEngine::clearAllresultItem() { m_resultCache.clear(); }

void CBrovaOpmDataEngine::getAllResultItem(std::list<Result>& p_resultCache)
{
    p_resultCache.insert(p_resultCache.end(), m_resultCache.begin(), m_resultCache.end());
}

// ---------------------------------------------------------------------------------------------
// Main page

namespace {

// How long a start waits for its reader: ample for a loaded set, short enough to go unnoticed.
const int kReaderStartMs = 500;

// Starts the reader and waits until it runs, so that a kill right after the start cannot miss
// it and leave two readers writing the one record.
void startReader()
{
    if (!DevicePaths::startReader(kReaderStartMs))
        printf("COpmMainPage: no reader %d ms after its start \n", kReaderStartMs);
}

} // namespace

COpmMainPage::COpmMainPage(QWidget* parent) : CWidget(parent)
{
    puts("COpmMainPage::COpmMainPage ");
    setBorderWidth(0);
    setBackgroundColor(CWidgetStyle::getColor(0));

    const int width =
        CWidgetStyle::getScreenRegion(0).width() - CWidgetStyle::getScreenRegion(3).width() - 2;
    const int height = CWidgetStyle::getScreenRegion(5).width();

    m_pTabWidget = new CTabWidget(this);
    m_pTabWidget->setBorderWidth(0);
    m_pTabWidget->setBorderColor(CWidgetStyle::getColor(0));
    m_pTabWidget->setSize(width, height);

    m_pTableOpmSetup = new NerioOpm(m_pTabWidget);
    m_pTableOpmSetup->setSize(width, height);
    m_pTabWidget->addTab(m_pTableOpmSetup, tr("Setup"));

    m_pTableShowResult = new COpmShowResultPage(m_pTabWidget);
    m_pTableShowResult->setSize(width, height);
    m_pTabWidget->addTab(m_pTableShowResult, tr("Result"));

    setFocusPolicy(Qt::StrongFocus);
    setBackgroundColor(CWidgetStyle::getColor(0));
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
    DevicePaths::runCommand(DevicePaths::killReaderCommand());
}

QString COpmMainPage::getKeyboard(const QString& title, const QString& text)
{
    return CKeyPadFactory::accessKeyPad(title, text, 5, 0, 100, this);
}

void COpmMainPage::enterInit()
{
    puts("COpmMainPage::enterInit ");
    DevicePaths::runCommand(DevicePaths::killReaderCommand());
    startReader();
}

void COpmMainPage::exitClean()
{
    puts("COpmMainPage::exitClean ");
    DevicePaths::runCommand(DevicePaths::killReaderCommand());
}

void COpmMainPage::onTabChanged(int) { }

void COpmMainPage::clientQuit()
{
    puts("COpmMainPage::clientQuit ");
    DevicePaths::runCommand(DevicePaths::killReaderCommand());
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
