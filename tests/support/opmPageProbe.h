#ifndef OPMPAGEPROBE_H
#define OPMPAGEPROBE_H

// What the page suites share: access to the Setup tab's private state, the page's state as named
// facts, the steps an operator or the reader takes, and cases written as rows of a table.

#include "ccheckbox.h"
#include "ccombobox.h"
#include "cdialog.h"
#include "clabel.h"
#include "clineedit.h"
#include "cpushbutton.h"
#include "devicePaths.h"
#include "fixedText.h"
#include "offsetBar.h"
#include "opmMain.h"
#include "opmShowResult.h"
#include "testSupport.h"

#include <QtTest>

#include <cstring>
#include <memory>

using Keys = TestCompat::StringMap;

// A text field of a record, read no further than its width.
template <size_t N>
inline QString fieldText(const char (&field)[N])
{
    return QString::fromLatin1(field, int(FixedText::length(field)));
}

// The keys of the first map, with those of the second added or replaced.
inline Keys with(Keys keys, const Keys& more)
{
    for (auto it = more.constBegin(); it != more.constEnd(); ++it)
        keys.insert(it.key(), it.value());
    return keys;
}

// Settings file keys under the names of the page's facts (see PageFixture::state).
inline Keys inFile(const Keys& keys)
{
    Keys file;
    for (auto it = keys.constBegin(); it != keys.constEnd(); ++it)
        file.insert("file:" + it.key(), it.value());
    return file;
}

// How a bar reads and where it sits; barFor: a bar given these numbers.
inline QString barText(const OffsetBar& bar)
{
    return QString::fromLatin1("%1..%2 %3% x%4")
            .arg(bar.minLabel(), bar.maxLabel()).arg(bar.percent()).arg(bar.markerX());
}
inline QString barFor(double low, double high, double value)
{
    OffsetBar bar;
    bar.setRangedOffset(low, high, value);
    return barText(bar);
}

struct OpmPageProbe
{
    static QStringList lines(COpmShowResultPage* p)
    {
        QStringList texts;
        for (CLabel* line : p->m_pSummary)
            texts << line->text();
        return texts;
    }
    static CPushButton* m_pClear(COpmShowResultPage* p) { return p->m_pClear; }
    static NerioOpm* m_pTableOpmSetup(COpmMainPage* p) { return p->m_pTableOpmSetup; }
    static CDialog* m_pReferenceDialog(NerioOpm* p) { return p->m_pReferenceDialog; }
    static QTimer* m_pTimer(NerioOpm* p) { return p->m_pTimer; }
    // One poll of the reader, without the cost of a step.
    static void tick(NerioOpm* p) { p->onTimer(); }
    static OpmShareRecord* m_addr(NerioOpm* p) { return p->m_addr; }

    // Whether every text field the page keeps ends inside its width. A copy that runs past a
    // field stays inside the page object, where the address sanitizer cannot see it; this can.
    static bool textsEnded(NerioOpm* p)
    {
        const auto ended = [](const char* field, size_t size) {
            return std::memchr(field, '\0', size) != nullptr;
        };
        const auto recordEnded = [&](const OpmShareRecord& r) {
            return ended(r.wavelenth, sizeof r.wavelenth) && ended(r.unit, sizeof r.unit)
                    && ended(r.value, sizeof r.value) && ended(r.deviceType, sizeof r.deviceType);
        };
        const Result& r = p->m_result;
        bool all = recordEnded(p->Opm) && recordEnded(p->m_sOpmRef)
                && ended(r.time, sizeof r.time);
        for (const char* field : { r.testMode, r.waveLenth, r.minimum, r.maximum, r.value, r.ref,
                                   r.pass, r.limitsUnit, r.fiberLength })
            all = all && ended(field, sizeof r.testMode);
        for (const auto& ref : p->m_aWaveLengthRef)
            all = all && ended(ref, sizeof ref);
        return all;
    }

    // Steps separated by ';'. The operator's: "click <button>", "choose <selector> <index>" and
    // "enter <field> <text>" (only these signals reach the page's slots), "escape" or "close" on
    // the reference dialog; "type <field> <text>" sets a field's text without its signal, as a
    // restored setup does. The reader's: "show <wavelength> <value> [unit] [flag]" ('_' stands
    // for a blank) and "request" (a save request). "show" and "tick" poll the reader once, as the
    // page's timer would.
    static void act(NerioOpm* p, RecordWriter& reader, const QString& steps)
    {
        for (const QString& text : steps.split(';', TestCompat::SkipEmptyParts)) {
            const QStringList step = text.simplified().split(' ');
            const TestCompat::Map<QString, QAbstractButton*> buttons {
                { "hold", p->m_pHold }, { "save", p->m_pSave }, { "reference", p->m_pReference },
                { "dBm", p->m_pdBm }, { "mW", p->m_pmW }, { "uW", p->m_puW },
                { "limits", p->m_pLimits }, { "set", p->m_pReferenceSet },
                { "cancel", p->m_pReferenceCancel } };
            const TestCompat::Map<QString, CComboBox*> selectors {
                { "wave", p->m_pWaveLength }, { "mode", p->m_pTestMode },
                { "lossUnit", p->m_pLossMeterUnit } };
            const TestCompat::Map<QString, CLineEdit*> fields {
                { "min", p->m_pMinimum }, { "max", p->m_pMaximum }, { "length", p->m_pLossLength } };
            if (step[0] == "show") {
                reader.setReading(qPrintable(step[1]), qPrintable(step.value(3, "dBm")),
                                  qPrintable(step.value(2).replace('_', ' ')), step.value(4, "1").toInt());
            } else if (step[0] == "request") {
                reader.record()->needSave = 1;
            } else if (step[0] == "click" && buttons.value(step.value(1))) {
                buttons.value(step[1])->click();
            } else if (step[0] == "choose" && selectors.value(step.value(1))) {
                selectors.value(step[1])->setCurrentIndex(step.value(2).toInt());
                QMetaObject::invokeMethod(selectors.value(step[1]), "activated", Q_ARG(int, step.value(2).toInt()));
            } else if (step[0] == "enter" && fields.value(step.value(1))) {
                fields.value(step[1])->setText(step.value(2));
                QMetaObject::invokeMethod(fields.value(step[1]), "textEdited", Q_ARG(QString, step.value(2)));
            } else if (step[0] == "type" && fields.value(step.value(1))) {
                fields.value(step[1])->setText(step.value(2));
            } else if (step[0] == "escape" && p->m_pReferenceDialog) {
                QTest::keyClick(p->m_pReferenceDialog, Qt::Key_Escape);
            } else if (step[0] == "close" && p->m_pReferenceDialog) {
                p->m_pReferenceDialog->close();
            } else if (step[0] != "tick") {
                QFAIL(qPrintable("no such step: " + text));
            }
            if (step[0] == "show" || step[0] == "tick")
                QMetaObject::invokeMethod(p, "onTimer");
        }
    }

    // What the page shows and holds, by short names. Flags are 0 and 1; selector index/state
    // pairs; min, max and length the value held and the field's text; layout "power" or "loss"
    // when the controls show exactly that mode's layout; terminated: the saved value and the
    // captured one end within their fields.
    static Keys state(NerioOpm* p)
    {
        const auto n = [](double value) { return QString::number(value); };
        const auto colour = [](const QColor& c) {
            return Keys { { "#ff0000", "red" }, { "#00ff00", "green" }, { "#000000", "black" },
                          { "#a0a0a4", "grey" }, { "#ffffff", "white" } }.value(c.name(), c.name());
        };
        QStringList refs;
        for (const auto& ref : p->m_aWaveLengthRef)
            refs << fieldText(ref);
        QString layout;
        for (QWidget* w : std::initializer_list<QWidget*> {
                     p->m_pdBm, p->m_pmW, p->m_puW, p->m_pReference, p->m_pLossMeterUnit, p->m_pLossLength,
                     p->m_pLabelLossLength, p->m_pOpmRefLabel, p->m_pOffsetBarResult })
            layout += w->isHidden() ? '-' : '+';
        layout += ' ' + n(p->m_pLimits->minimumWidth()) + '/' + n(p->m_pLimits->maximumWidth());
        layout = Keys { { "+++-----+ 190/190", "power" }, { "---++++++ 120/120", "loss" } }
                         .value(layout, layout);
        const Result& r = p->m_result;
        const OffsetBar* bar = p->m_pOffsetBarResult;
        const QRect place = bar->geometry();
        return { { "label", p->m_pOpmCurValue->text() },
                 { "colour", colour(p->m_pOpmCurValue->textColor()) },
                 { "title", p->m_pOpmInfoTitle->text() }, { "summary", p->m_pSummary->text() },
                 { "unitButton", p->m_pdBm->text() }, { "caption", p->m_pLimits->text() },
                 { "layout", layout },
                 { "wave", n(p->m_pWaveLength->currentIndex()) + '/' + n(p->m_eWaveLength) },
                 { "refs", refs.join(" ") }, { "refLabel", p->m_pOpmRefLabel->text() },
                 { "capture", fieldText(p->m_sOpmRef.value) + '/' + n(p->m_sOpmRef.flag) },
                 { "dialog", p->m_pReferenceDialog ? "open" : "none" },
                 { "mode", n(p->m_pTestMode->currentIndex()) + '/' + n(p->m_eTestMode) },
                 { "modeText", p->m_pTestMode->currentText() }, { "unit", n(p->m_eRusultUnit) },
                 { "timer", p->m_pTimer->isActive() ? n(p->m_pTimer->interval()) : "off" },
                 { "lossUnit", n(p->m_pLossMeterUnit->currentIndex()) + '/' + n(p->m_eLossLengthType)
                                       + ' ' + colour(p->m_pLabelLossLength->textColor()) },
                 { "limits", n(p->m_pLimits->isChecked()) + n(p->m_bPowerLimits) + n(r.isLimit) },
                 { "enabled", n(p->m_pMinimum->isEnabled()) + n(p->m_pMaximum->isEnabled())
                                      + n(p->m_pLossMeterUnit->isEnabled())
                                      + n(p->m_pLossLength->isEnabled()) },
                 { "min", n(p->m_fPowerMin) + ' ' + p->m_pMinimum->text() },
                 { "max", n(p->m_fPowerMax) + ' ' + p->m_pMaximum->text() },
                 { "length", n(p->m_fLength) + " '" + p->m_pLossLength->text() + '\'' },
                 { "bar", barText(*bar) }, { "pass", n(p->m_bPass) },
                 { "barPlace", n(place.x()) + ',' + n(place.y()) + ' ' + n(place.width()) + 'x'
                                       + n(place.height()) },
                 { "barInScale", n(bar->percent() >= 0 && bar->percent() <= 100 && bar->markerX() >= -1
                                   && bar->markerX() <= 245) },
                 { "terminated", n(std::memchr(r.value, 0, sizeof r.value)
                                   && std::memchr(p->m_sOpmRef.value, 0, sizeof p->m_sOpmRef.value)) },
                 { "value", fieldText(r.value) }, { "waveLenth", fieldText(r.waveLenth) },
                 { "limitsUnit", fieldText(r.limitsUnit) },
                 { "resultLimits", fieldText(r.minimum) + ' ' + fieldText(r.maximum) },
                 { "fiberLength", fieldText(r.fiberLength) }, { "testMode", fieldText(r.testMode) },
                 { "ref", fieldText(r.ref) }, { "verdict", fieldText(r.pass) } };
    }
};

// The settings file's [COpmSetup] group as it is on disk (QSettings caches in-process).
inline Keys storedSetup()
{
    Keys keys;
    QFile file(DevicePaths::settingFile());
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    bool inGroup = false;
    for (const QByteArray& raw : text.split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        const int eq = line.indexOf(QLatin1Char('='));
        if (line.startsWith(QLatin1Char('[')))
            inGroup = line == QLatin1String("[COpmSetup]");
        else if (inGroup && eq > 0)
            keys.insert(line.left(eq).trimmed(),
                        line.mid(eq + 1).trimmed().remove(QRegExp("^\"|\"$")));
    }
    return keys;
}

inline QByteArray setupText(const Keys& keys)
{
    QByteArray text = "[COpmSetup]\n";
    for (auto it = keys.constBegin(); it != keys.constEnd(); ++it)
        text += it.key().toUtf8() + '=' + it.value().toUtf8() + '\n';
    return text;
}

// The order every page test builds in: a closer for any box, its own device root, the reader's
// side, then the page (with an empty result store and, when given, a settings file).
struct PageFixture
{
    explicit PageFixture(const Keys& settings = Keys(), bool build = true)
    {
        CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
        if (!settings.isEmpty())
            root.writeFile(QString::fromLatin1("/home/Setting/opmSetup.conf"), setupText(settings));
        if (build)
            buildPage();
    }
    ~PageFixture() { buildPage(false); }
    // A new page on the same root, as after a restart.
    void buildPage(bool rebuild = true)
    {
        page.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (rebuild)
            page.reset(new NerioOpm);
    }
    NerioOpm* get() const { return page.get(); }
    void act(const QString& steps) { OpmPageProbe::act(get(), reader, steps); }

    // The page's state with the reader's side (the wavelength asked for, the save request), the
    // store's count, the boxes shown and the last one's "title: text", and the settings file:
    // its number of keys and each key as "file:<key>".
    Keys state()
    {
        const Keys file = storedSetup();
        Keys keys = with(OpmPageProbe::state(get()), inFile(file));
        keys.insert("target", QString::number(reader.record()->wavelenthTarget));
        keys.insert("needSave", QString::number(reader.record()->needSave));
        keys.insert("stored",
                    QString::number(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount()));
        keys.insert("boxes", QString::number(closer.count()));
        keys.insert("file", QString::number(file.size()));
        if (closer.count())
            keys.insert("box", closer.boxes().last().title + ": " + closer.boxes().last().text);
        return keys;
    }
    // Each named fact as expected.
    void verify(const Keys& expected)
    {
        const Keys shown = state();
        for (auto it = expected.constBegin(); it != expected.constEnd(); ++it)
            QVERIFY2(shown.contains(it.key()) && shown.value(it.key()) == it.value(),
                     qPrintable(it.key() + ": '" + shown.value(it.key()) + "', expected '" + it.value()
                                + "'"));
    }

    ModalBoxCloser closer;
    TestDeviceRoot root;
    RecordWriter reader;
    std::unique_ptr<NerioOpm> page;
};

// A case as a row of a table: the page built on `settings`, its settings file then removed, the
// `steps`, and the `expected` facts. Without a "file:" key among them no file may be written;
// with one, a file of all thirteen keys.
inline void addScenarioColumns()
{
    QTest::addColumn<Keys>("settings");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<Keys>("expected");
}

inline void runScenario()
{
    QFETCH(Keys, settings);
    QFETCH(QString, steps);
    QFETCH(Keys, expected);

    PageFixture fx(settings);
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    fx.act(steps);
    const auto first = expected.lowerBound("file:");
    const bool saved = first != expected.end() && first.key().startsWith("file:");
    fx.verify(with({ { "file", saved ? "13" : "0" } }, expected));
}

#endif // OPMPAGEPROBE_H
