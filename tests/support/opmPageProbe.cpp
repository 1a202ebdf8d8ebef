#include "opmPageProbe.h"

#include "devicePaths.h"

#include <cstring>

namespace {

// Each 16-byte field (of fields, size bytes in all) ends inside it.
bool ended(const void* fields, size_t size)
{
    const char* bytes = static_cast<const char*>(fields);
    bool all = true;
    for (size_t at = 0; at < size; at += 16)
        all = all && std::memchr(bytes + at, '\0', size - at < 16 ? size - at : 16);
    return all;
}

void deliverDeletes() { QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete); }

} // namespace

QAbstractButton* OpmPageProbe::button(NerioOpm* p, Button b)
{
    QAbstractButton* const buttons[] = { p->m_pHold,   p->m_pSave,         p->m_pReference,
                                         p->m_pdBm,    p->m_pmW,           p->m_puW,
                                         p->m_pLimits, p->m_pReferenceSet, p->m_pReferenceCancel };
    return buttons[b];
}

CComboBox* OpmPageProbe::selector(NerioOpm* p, Selector s)
{
    return s == Wave ? p->m_pWaveLength : s == Mode ? p->m_pTestMode : p->m_pLossMeterUnit;
}

CLineEdit* OpmPageProbe::field(NerioOpm* p, Field f)
{
    return f == Min ? p->m_pMinimum : f == Max ? p->m_pMaximum : p->m_pLossLength;
}

void OpmPageProbe::click(NerioOpm* p, Button b)
{
    if (QAbstractButton* pressed = button(p, b))
        pressed->click();
    deliverDeletes();
}

void OpmPageProbe::choose(NerioOpm* p, Selector s, int index)
{
    selector(p, s)->setCurrentIndex(index);
    QMetaObject::invokeMethod(selector(p, s), "activated", Q_ARG(int, index));
    deliverDeletes();
}

void OpmPageProbe::enter(NerioOpm* p, Field f, const QString& text)
{
    field(p, f)->setText(text);
    QMetaObject::invokeMethod(field(p, f), "textEdited", Q_ARG(QString, text));
    deliverDeletes();
}

void OpmPageProbe::escape(NerioOpm* p)
{
    QTest::keyClick(p->m_pReferenceDialog, Qt::Key_Escape);
    deliverDeletes();
}

void OpmPageProbe::tick(NerioOpm* p)
{
    QMetaObject::invokeMethod(p, "onTimer");
    deliverDeletes();
}

QString OpmPageProbe::dialogText(NerioOpm* p)
{
    return p->m_pRefLabel2->text() + '\n' + p->m_pRefLabel3->text();
}

QString OpmPageProbe::layout(NerioOpm* p)
{
    QString shown = QString::number(p->m_pLimits->minimumWidth()) + ' ';
    for (QWidget* w : std::initializer_list<QWidget*> {
             p->m_pdBm, p->m_pmW, p->m_puW, p->m_pReference, p->m_pLossMeterUnit, p->m_pLossLength,
             p->m_pLabelLossLength, p->m_pOpmRefLabel })
        shown += w->isHidden() ? '-' : '+';
    return shown == "190 +++-----" ? "power" : shown == "120 ---+++++" ? "loss" : shown;
}

QString OpmPageProbe::limitsRow(NerioOpm* p)
{
    QString row = p->m_pLimits->isChecked() ? "on" : "off";
    QWidget* const widgets[] = { p->m_pMinimum, p->m_pMaximum, p->m_pLossMeterUnit,
                                 p->m_pLossLength };
    const QString texts[] = { p->m_pMinimum->text(), p->m_pMaximum->text(),
                              p->m_pLossMeterUnit->currentText(), p->m_pLossLength->text() };
    for (int i = 0; i < 4; ++i)
        row += ' ' + (widgets[i]->isEnabled() ? texts[i] : '(' + texts[i] + ')');
    return row + ' ' + colour(p->m_pLabelLossLength->textColor());
}

QString OpmPageProbe::references(NerioOpm* p)
{
    QStringList refs;
    for (int i = 0; i < 5; ++i)
        refs << fieldText(p->m_aWaveLengthRef[i]);
    return refs.join(" ");
}

bool OpmPageProbe::fieldsEnded(NerioOpm* p)
{
    bool all = fieldsEnded(p->m_result) && ended(p->m_aWaveLengthRef, sizeof p->m_aWaveLengthRef);
    for (const OpmShareRecord* r : { &p->Opm, &p->m_sOpmRef })
        all = all && ended(r->wavelenth, 8) && ended(r->unit, 8) && ended(r->value, 16)
            && ended(r->deviceType, 16);
    return all;
}

bool OpmPageProbe::fieldsEnded(const Result& r)
{
    return ended(r.testMode, offsetof(Result, isLimit)) && std::memchr(r.time, '\0', sizeof r.time);
}

QStringList OpmPageProbe::lines(COpmShowResultPage* p)
{
    QStringList texts;
    for (int i = 0; i < COpmShowResultPage::kLineCount; ++i)
        texts << p->m_pSummary[i]->text();
    return texts;
}

QString OpmPageProbe::colour(const QColor& c)
{
    const Qt::GlobalColor known[] = { Qt::red, Qt::green, Qt::black, Qt::gray, Qt::white };
    const char* const names[] = { "red", "green", "black", "grey", "white" };
    for (int i = 0; i < 5; ++i)
        if (c == known[i])
            return names[i];
    return c.name();
}

PageFixture::PageFixture(const QByteArray& setup, bool build) : page(0)
{
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
    if (!setup.isEmpty())
        root.writeFile("/home/Setting/opmSetup.conf", "[COpmSetup]\n" + setup + '\n');
    if (build)
        buildPage();
}

void PageFixture::buildPage(bool rebuild)
{
    delete page;
    page = 0;
    deliverDeletes();
    if (rebuild)
        page = new NerioOpm;
}

void PageFixture::show(const char* wavelength, const char* value, const char* unit, int flag)
{
    reader.setReading(wavelength, unit, value, flag);
    OpmPageProbe::tick(page);
}
