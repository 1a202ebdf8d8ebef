#ifndef OPMPAGEPROBE_H
#define OPMPAGEPROBE_H

// What the page suites share: access to the pages' private state, the Setup tab's state as named
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

// A text field of a record, read no further than its width.
template <size_t N>
inline QString fieldText(const char (&field)[N])
{
    return QString::fromLatin1(field, int(FixedText::length(field)));
}

// How a bar reads and where its marker sits; barFor: a bar given these numbers.
inline QString barText(const OffsetBar& bar)
{
    return bar.minLabel() + ".." + bar.maxLabel()
        + QString(" %1% x%2").arg(bar.percent()).arg(bar.markerX());
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
        for (int i = 0; i < COpmShowResultPage::kLineCount; ++i)
            texts << p->m_pSummary[i]->text();
        return texts;
    }
    static CPushButton* m_pClear(COpmShowResultPage* p) { return p->m_pClear; }
    static NerioOpm* m_pTableOpmSetup(COpmMainPage* p) { return p->m_pTableOpmSetup; }
    static CDialog* m_pReferenceDialog(NerioOpm* p) { return p->m_pReferenceDialog; }
    static QTimer* m_pTimer(NerioOpm* p) { return p->m_pTimer; }
    static OpmShareRecord* m_addr(NerioOpm* p) { return p->m_addr; }

    // Whether every text field the page keeps ends inside its width, and every text field of a
    // saved reading. A copy that runs past a field stays inside its object, where the address
    // sanitizer cannot see it; these can. The fuzz harnesses check them after every input
    // (defined with them, fuzz/fuzzSupport.cpp).
    static bool textsEnded(NerioOpm* p);
    static bool ended(const Result& r);

    // Steps separated by ';'. The operator's: "click <button>", "choose <selector> <index>" and
    // "enter <field> <text>" (only these signals reach the page's slots), "escape" or "close" on
    // the reference dialog; "type <field> <text>" sets a field's text without its signal, as a
    // restored setup does. The reader's: "show <wavelength> <value> [unit] [flag]" ('_' stands
    // for a blank) and "request" (a save request). "show" and "tick" poll the reader once, as the
    // page's timer would.
    static void act(NerioOpm* p, RecordWriter& reader, const QString& steps)
    {
        const QStringList list = steps.split(';');
        for (int i = 0; i < list.size(); ++i) {
            const QStringList step = list[i].simplified().split(' ');
            const QString verb = step[0];
            QObject* const c = control(p, step.value(1));
            QAbstractButton* const button = qobject_cast<QAbstractButton*>(c);
            CComboBox* const selector = qobject_cast<CComboBox*>(c);
            CLineEdit* const field = qobject_cast<CLineEdit*>(c);
            if (verb.isEmpty())
                continue;
            if (verb == "show")
                reader.setReading(qPrintable(step.value(1)), qPrintable(step.value(3, "dBm")),
                                  qPrintable(step.value(2).replace('_', ' ')),
                                  step.value(4, "1").toInt());
            else if (verb == "request")
                reader.record()->needSave = 1;
            else if (verb == "click" && button)
                button->click();
            else if (verb == "choose" && selector) {
                selector->setCurrentIndex(step.value(2).toInt());
                QMetaObject::invokeMethod(selector, "activated", Q_ARG(int, step.value(2).toInt()));
            } else if ((verb == "enter" || verb == "type") && field) {
                field->setText(step.value(2));
                if (verb == "enter")
                    QMetaObject::invokeMethod(field, "textEdited", Q_ARG(QString, step.value(2)));
            } else if (verb == "escape" && p->m_pReferenceDialog)
                QTest::keyClick(p->m_pReferenceDialog, Qt::Key_Escape);
            else if (verb == "close" && p->m_pReferenceDialog)
                p->m_pReferenceDialog->close();
            else if (verb != "tick")
                QFAIL(qPrintable("no such step: " + list[i]));
            if (verb == "show" || verb == "tick")
                QMetaObject::invokeMethod(p, "onTimer");
            QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete);
        }
    }
    // The operator's controls by the names the steps use.
    static QObject* control(NerioOpm* p, const QString& name)
    {
        QObject* const controls[] = { p->m_pHold,       p->m_pSave,         p->m_pReference,
                                      p->m_pdBm,        p->m_pmW,           p->m_puW,
                                      p->m_pLimits,     p->m_pReferenceSet, p->m_pReferenceCancel,
                                      p->m_pWaveLength, p->m_pTestMode,     p->m_pLossMeterUnit,
                                      p->m_pMinimum,    p->m_pMaximum,      p->m_pLossLength };
        const int at =
            QString(
                "hold save reference dBm mW uW limits set cancel wave mode lossUnit min max length")
                .split(' ')
                .indexOf(name);
        return at < 0 ? 0 : controls[at];
    }

    // What the page shows and holds, by short names: flags as 0 and 1, selectors as index/state,
    // min and max as the value held/the field's text, length likewise; layout "power" or "loss"
    // when the controls show exactly that mode's layout.
    static Keys state(NerioOpm* p)
    {
        QStringList refs;
        for (int i = 0; i < 5; ++i)
            refs << fieldText(p->m_aWaveLengthRef[i]);
        QString layout;
        QWidget* const modeWidgets[] = { p->m_pdBm,
                                         p->m_pmW,
                                         p->m_puW,
                                         p->m_pReference,
                                         p->m_pLossMeterUnit,
                                         p->m_pLossLength,
                                         p->m_pLabelLossLength,
                                         p->m_pOpmRefLabel };
        for (int i = 0; i < 8; ++i)
            layout += modeWidgets[i]->isHidden() ? '-' : '+';
        layout += n(p->m_pLimits->minimumWidth()) + '/' + n(p->m_pLimits->maximumWidth());
        layout = layout == "+++-----190/190" ? "power"
            : layout == "---+++++120/120"    ? "loss"
                                             : layout;
        const Result& r = p->m_result;
        const QRect place = p->m_pOffsetBarResult->geometry();
        Keys k;
        k["label"] = p->m_pOpmCurValue->text();
        k["colour"] = colour(p->m_pOpmCurValue->textColor());
        k["title"] = p->m_pOpmInfoTitle->text();
        k["summary"] = p->m_pSummary->text();
        k["unitButton"] = p->m_pdBm->text();
        k["caption"] = p->m_pLimits->text();
        k["layout"] = layout;
        k["wave"] = n(p->m_pWaveLength->currentIndex()) + '/' + n(p->m_eWaveLength);
        k["refs"] = refs.join(" ");
        k["refLabel"] = p->m_pOpmRefLabel->text();
        k["capture"] = fieldText(p->m_sOpmRef.value) + '/' + n(p->m_sOpmRef.flag);
        const CDialog* d = p->m_pReferenceDialog;
        k["dialog"] = !d                                  ? "none"
            : d->windowModality() == Qt::ApplicationModal ? "modal"
                                                          : "modeless";
        k["dialogLines"] = d ? p->m_pRefLabel2->text() + '|' + p->m_pRefLabel3->text() : QString();
        int dialogs = 0;
        foreach (const CDialog* dialog, p->findChildren<CDialog*>())
            dialogs += dialog->isVisible();
        k["dialogs"] = n(dialogs);
        k["mode"] = n(p->m_pTestMode->currentIndex()) + '/' + n(p->m_eTestMode);
        k["unit"] = n(p->m_eRusultUnit);
        k["timer"] = p->m_pTimer->isActive() ? n(p->m_pTimer->interval()) : "off";
        k["lossUnit"] = n(p->m_pLossMeterUnit->currentIndex()) + '/' + n(p->m_eLossLengthType) + ' '
            + colour(p->m_pLabelLossLength->textColor());
        k["limits"] = n(p->m_pLimits->isChecked()) + n(p->m_bPowerLimits) + n(r.isLimit);
        k["enabled"] = n(p->m_pMinimum->isEnabled()) + n(p->m_pMaximum->isEnabled())
            + n(p->m_pLossMeterUnit->isEnabled()) + n(p->m_pLossLength->isEnabled());
        k["min"] = n(p->m_fPowerMin) + '/' + p->m_pMinimum->text();
        k["max"] = n(p->m_fPowerMax) + '/' + p->m_pMaximum->text();
        k["length"] = n(p->m_fLength) + '/' + p->m_pLossLength->text();
        k["bar"] = barText(*p->m_pOffsetBarResult);
        k["barPlace"] = QString("%1,%2 %3x%4")
                            .arg(place.x())
                            .arg(place.y())
                            .arg(place.width())
                            .arg(place.height());
        k["pass"] = n(p->m_bPass);
        k["value"] = fieldText(r.value);
        k["waveLenth"] = fieldText(r.waveLenth);
        k["limitsUnit"] = fieldText(r.limitsUnit);
        k["resultLimits"] = fieldText(r.minimum) + ' ' + fieldText(r.maximum);
        k["fiberLength"] = fieldText(r.fiberLength);
        k["testMode"] = fieldText(r.testMode);
        k["ref"] = fieldText(r.ref);
        k["verdict"] = fieldText(r.pass);
        return k;
    }
    static QString n(double value) { return QString::number(value); }
    static QString colour(const QColor& c)
    {
        const Keys names =
            facts("#ff0000=red; #00ff00=green; #000000=black; #a0a0a4=grey; #ffffff=white");
        return names.value(c.name(), c.name());
    }
};

// The order every page test builds in: a closer for any box, its own device root, the reader's
// side, then the page (with an empty result store and, when given, a settings file).
struct PageFixture
{
    explicit PageFixture(const Keys& settings = Keys(), bool build = true) : page(0)
    {
        CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
        if (!settings.isEmpty())
            root.writeFile("/home/Setting/opmSetup.conf", setupText(settings));
        if (build)
            buildPage();
    }
    ~PageFixture() { buildPage(false); }
    // A new page on the same root, as after a restart.
    void buildPage(bool rebuild = true)
    {
        delete page;
        page = 0;
        QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete);
        if (rebuild)
            page = new NerioOpm;
    }
    void act(const QString& steps) { OpmPageProbe::act(page, reader, steps); }

    // The page's state with the reader's side (the wavelength asked for, the save request), the
    // store's count, the boxes shown and the last one, and the settings file: its number of keys
    // and each key as "file:<key>".
    Keys state()
    {
        const Keys file = storedSetup();
        Keys keys = OpmPageProbe::state(page);
        for (Keys::const_iterator it = file.constBegin(); it != file.constEnd(); ++it)
            keys.insert("file:" + it.key(), it.value());
        keys["target"] = QString::number(reader.record()->wavelenthTarget);
        keys["needSave"] = QString::number(reader.record()->needSave);
        keys["stored"] =
            QString::number(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount());
        keys["boxes"] = QString::number(closer.count());
        keys["file"] = QString::number(file.size());
        if (closer.count())
            keys["box"] = closer.boxes().last();
        return keys;
    }
    // Each named fact as expected.
    void verify(const Keys& expected)
    {
        const Keys shown = state();
        for (Keys::const_iterator it = expected.constBegin(); it != expected.constEnd(); ++it)
            QVERIFY2(shown.contains(it.key()) && shown.value(it.key()) == it.value(),
                     qPrintable(it.key() + ": '" + shown.value(it.key()) + "', expected '"
                                + it.value() + "'"));
    }

    ModalBoxCloser closer;
    TestDeviceRoot root;
    RecordWriter reader;
    NerioOpm* page;
};

// A case as a row of a table: the page built on `settings`, its settings file then removed, the
// `steps`, and the `expected` facts (all three written as facts). Without a "file:" fact no
// file may be written; with one, a file of all thirteen keys.
inline void addScenarioColumns()
{
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("expected");
}

inline void runScenario()
{
    QFETCH(QString, settings);
    QFETCH(QString, steps);
    QFETCH(QString, expected);

    PageFixture fx(facts(settings));
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    fx.act(steps);
    fx.verify(facts((expected.contains("file:") ? "file=13;" : "file=0;") + expected));
}

#endif // OPMPAGEPROBE_H
