// Every text the main page shows, in each language, fits its widget at the set's screen size:
// single-line labels, buttons, check boxes and selector items their width, wrapped labels their
// height. Also shows that the toolkit in use reads the .qm files Qt 5's lrelease wrote.
#include "cdialog.h"
#include "clabel.h"
#include "ctabwidget.h"
#include "cwidgetstyle.h"
#include "opm.h"
#include "opmMain.h"
#include "opmReading.h"
#include "testSupport.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStyleOption>
#include <QTabBar>
#include <QTranslator>
#include <QtTest>

namespace {

// Remembers which context and source text each shown text came from.
class CRecordingTranslator : public QTranslator
{
public:
#if QT_VERSION >= 0x050000
    QString translate(const char* context, const char* source, const char* disambiguation = 0,
                      int n = -1) const override
    {
        return note(context, source, QTranslator::translate(context, source, disambiguation, n));
    }
#else
    QString translate(const char* context, const char* source, const char* disambiguation) const
    {
        return note(context, source, QTranslator::translate(context, source, disambiguation));
    }
#endif
    QString note(const char* context, const char* source, const QString& text) const
    {
        const QString shown = text.isEmpty() ? QString::fromUtf8(source) : text;
        origins.insert(shown, QString::fromLatin1("%1 \"%2\"").arg(context, source));
        return text;
    }
    mutable QMap<QString, QString> origins;
};

const int kUnbounded = 1 << 16;

int advance(const QFontMetrics& fm, const QString& text)
{
    return fm.boundingRect(QRect(0, 0, kUnbounded, kUnbounded), 0, text).width();
}

struct FitCheck
{
    QString lang;
    const CRecordingTranslator* translator;
    QStringList failures;
    double widest = 0;
    QString widestText; // of the widgets whose width the text cannot change

    // needed and room in pixels, along the one direction that matters for the widget.
    void fit(const QString& text, int needed, int room, const char* what, bool fixed = true)
    {
        const QString found = QString::fromLatin1("\"%1\" in %2: %3 px, room %4 px")
                                  .arg(text, QLatin1String(what))
                                  .arg(needed)
                                  .arg(room);
        if (needed > room && !text.trimmed().isEmpty() && !failures.contains(found))
            failures << lang + QLatin1String(": ")
                    + translator->origins.value(text, QLatin1String("(untranslated)"))
                    + QLatin1String(" as ") + found
                    + QString::fromLatin1(", %1 px over").arg(needed - room);
        if (fixed && room > 0 && double(needed) / room > widest) {
            widest = double(needed) / room;
            widestText = found;
        }
    }
    void label(QLabel* l)
    {
        // A label that shrinks its font to fit is measured at the toolkit's text size.
        QFont font = l->font();
        CLabel* own = qobject_cast<CLabel*>(l);
        if (own && own->autoStyleEnabled())
            font.setPixelSize(CWidgetStyle::kTextPixelSize);
        const QFontMetrics fm(font);
        const int m = l->margin();
        const QRect room = l->contentsRect().adjusted(m, m, -m, -m);
        const QRect need =
            fm.boundingRect(QRect(0, 0, l->wordWrap() ? room.width() : kUnbounded, kUnbounded),
                            Qt::TextExpandTabs | (l->wordWrap() ? Qt::TextWordWrap : 0), l->text());
        fit(l->text(), need.width(), room.width(), "label width",
            l->minimumWidth() == l->maximumWidth());
        if (l->wordWrap())
            fit(l->text(), need.height(), room.height(), "wrapped label height", false);
    }
    void button(QAbstractButton* b)
    {
        QStyleOptionButton option;
        option.initFrom(b);
        option.text = b->text();
        const bool box = qobject_cast<QCheckBox*>(b);
        const QRect room = b->style()->subElementRect(
            box ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents, &option, b);
        fit(b->text(), advance(b->fontMetrics(), b->text()), room.width(),
            box ? "check box" : "button", box);
    }
    void tabs(QTabBar* bar)
    {
        QFont bold = bar->font(); // the toolkit's tabs: bold, 12 px padding each side, 2 px apart
        bold.setBold(true);
        for (int i = 0; i < bar->count(); ++i)
            fit(bar->tabText(i), advance(QFontMetrics(bold), bar->tabText(i)),
                bar->tabRect(i).width() - 26, "tab", false);
    }
    void combo(QComboBox* c)
    {
        QStyleOptionComboBox option;
        option.initFrom(c);
        const QRect room = c->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                      QStyle::SC_ComboBoxEditField, c);
        for (int i = 0; i < c->count(); ++i)
            fit(c->itemText(i), advance(c->fontMetrics(), c->itemText(i)), room.width(),
                "selector");
    }
    void check(QWidget* root)
    {
        QCoreApplication::processEvents();
        foreach (QWidget* w, root->findChildren<QWidget*>() << root) {
            if (!w->isVisible() || qobject_cast<QLineEdit*>(w))
                continue;
            if (QLabel* l = qobject_cast<QLabel*>(w))
                label(l);
            else if (QAbstractButton* b = qobject_cast<QAbstractButton*>(w))
                button(b);
            else if (QComboBox* c = qobject_cast<QComboBox*>(w))
                combo(c);
            else if (QTabBar* t = qobject_cast<QTabBar*>(w))
                tabs(t);
        }
    }
};

template <typename T>
T* withText(QWidget* root, const QString& text)
{
    foreach (T* w, root->findChildren<T*>())
        if (w->text() == text)
            return w;
    return 0;
}

QComboBox* comboWith(QWidget* root, const QString& item)
{
    foreach (QComboBox* c, root->findChildren<QComboBox*>())
        if (c->findText(item) >= 0)
            return c;
    return 0;
}

// The edit beside a caption, as the operator sees it.
QLineEdit* editBeside(QWidget* page, const QString& caption)
{
    QLabel* label = withText<QLabel>(page, caption);
    foreach (QLineEdit* e, page->findChildren<QLineEdit*>())
        if (label && e->isVisible()
            && qAbs(e->geometry().center().y() - label->geometry().center().y()) < 10)
            return e;
    return 0;
}

void choose(QComboBox* combo, int index)
{
    combo->setCurrentIndex(index);
    QMetaObject::invokeMethod(combo, "activated", Q_ARG(int, index));
}

} // namespace

class TestFit : public QObject
{
    Q_OBJECT

private slots:
    void everyTextFits_data()
    {
        QTest::addColumn<QString>("lang");
        foreach (const QString& lang,
                 QString::fromLatin1("en de es fr ru zh_CN").split(QLatin1Char(' ')))
            QTest::newRow(qPrintable(lang)) << lang;
    }
    void everyTextFits()
    {
        QFETCH(QString, lang);
        CRecordingTranslator translator;
        if (lang != QLatin1String("en")) {
            QVERIFY(translator.load(QLatin1String("opm_") + lang, QLatin1String(OPM_QM_DIR)));
            QVERIFY(translator.translate("QObject", "Wavelength", 0)
                    != QLatin1String("Wavelength"));
        }
        qApp->installTranslator(&translator);
        TestDeviceRoot root;
        QVERIFY(root.installReader());
        FitCheck fits;
        fits.lang = lang;
        fits.translator = &translator;
        QWidget screen;
        screen.setFixedSize(800, 480);
        COpmMainPage* main = new COpmMainPage(&screen);
        main->setGeometry(141, 61, 658, 398);
        screen.show();
        NerioOpm* page = main->findChild<NerioOpm*>();
        QVERIFY(page);
        fits.check(page);
        QAbstractButton* hold = withText<QAbstractButton>(page, QObject::tr("Hold"));
        QVERIFY(hold);
        foreach (const QString& unit, QString::fromLatin1("mW uW dBm").split(QLatin1Char(' '))) {
            withText<QAbstractButton>(page, unit)->click();
            fits.check(page);
        }
        hold->click();
        fits.check(page);
        hold->click();

        choose(comboWith(page, QObject::tr("Power Meter(OPM)")), 1);
        withText<QCheckBox>(page, QObject::tr("Loss Limits"))->click();
        choose(comboWith(page, QLatin1String("dB")), 1);
        fits.check(page);
        hold->click();
        fits.check(page);
        hold->click();
        withText<QAbstractButton>(page, QObject::tr("Reference"))->click();
        CDialog* dialog = page->findChild<CDialog*>();
        QVERIFY(dialog);
        fits.check(dialog);
        withText<QAbstractButton>(dialog, QObject::tr("Cancel"))->click();

        // From here on every box is modal. Of the keypad the title is ours, the keys the toolkit's.
        ModalBoxCloser closer;
        closer.handler = [&fits](QWidget* box) {
            QLabel* title = box->findChild<QLabel*>(QLatin1String("title"));
            if (qobject_cast<QMessageBox*>(box) || !title)
                fits.check(box);
            else
                fits.label(title);
            return false;
        };

        QLineEdit* length = editBeside(page, QObject::tr("Length (km)"));
        QVERIFY(length);
        length->clear();
        QTest::keyClicks(length, QLatin1String("0"));
        QLineEdit* minimum = editBeside(page, QObject::tr("Minimum"));
        minimum->clear();
        QTest::keyClicks(minimum, QLatin1String("20"));
        CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
        Result reading = {};
        while (store->getResultItemCount() < CBrovaOpmDataEngine::kMaxResults)
            store->addResultItem(reading);
        withText<QAbstractButton>(page, QObject::tr("Save"))->click();
        store->clearAllresultItem();
        QTest::keyClick(main, Qt::Key_F1);
        QVERIFY2(closer.count() == 4, qPrintable(closer.boxes().join(QLatin1String(" | "))));

        main->findChild<CTabWidget*>()->setCurrentIndex(1);
        fits.check(main);
        qApp->removeTranslator(&translator);
        qDebug("%s: widest %s", qPrintable(lang), qPrintable(fits.widestText));
        QVERIFY2(fits.failures.isEmpty(), qPrintable(fits.failures.join(QLatin1String("\n"))));
    }
};

QTEST_MAIN(TestFit)
#include "tst_fit.moc"
