// Every text the main page shows, in each language, fits its widget at the set's screen size:
// single-line labels, buttons, check boxes and selector items their width, wrapped labels their
// height. Also shows that the toolkit in use reads the .qm files Qt 5's lrelease wrote.
#include "ctabwidget.h"
#include "cwidgetstyle.h"
#include "opmPageProbe.h"

#include <QMessageBox>
#include <QStyleOption>
#include <QTabBar>
#include <QTranslator>

using P = OpmPageProbe;

namespace {

const int kUnbounded = 1 << 16;

int advance(const QFontMetrics& fm, const QString& text)
{
    return fm.boundingRect(QRect(0, 0, kUnbounded, kUnbounded), 0, text).width();
}

// The texts of one language that need more room than their widgets give.
struct FitCheck
{
    QString lang;
    QStringList failures;

    // needed and room in pixels, along the one direction that matters for the widget.
    void fit(const QString& text, int needed, int room, const char* what)
    {
        const QString found = QString::fromLatin1("%1: \"%2\" in %3: %4 px, room %5 px")
                                  .arg(lang, text, QLatin1String(what))
                                  .arg(needed)
                                  .arg(room);
        if (needed > room && !text.trimmed().isEmpty() && !failures.contains(found))
            failures << found;
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
        fit(l->text(), need.width(), room.width(), "label width");
        if (l->wordWrap())
            fit(l->text(), need.height(), room.height(), "wrapped label height");
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
            box ? "check box" : "button");
    }
    void tabs(QTabBar* bar)
    {
        QFont bold = bar->font(); // the toolkit's tabs: bold, 12 px padding each side, 2 px apart
        bold.setBold(true);
        for (int i = 0; i < bar->count(); ++i)
            fit(bar->tabText(i), advance(QFontMetrics(bold), bar->tabText(i)),
                bar->tabRect(i).width() - 26, "tab");
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
    // The Setup tab as it is and on hold.
    void checkHeld(NerioOpm* page)
    {
        check(page);
        P::click(page, P::Hold);
        check(page);
        P::click(page, P::Hold);
    }
};

} // namespace

class TestFit : public QObject
{
    Q_OBJECT

private slots:
    void everyTextFits_data()
    {
        addColumns<QString>("lang");
        foreach (const QString& lang, QString("en de es fr ru zh_CN").split(' '))
            addRow(lang, lang);
    }
    void everyTextFits()
    {
        QFETCH(QString, lang);
        QTranslator translator;
        if (lang != QLatin1String("en")) {
            QVERIFY(translator.load(QLatin1String("opm_") + lang, QLatin1String(OPM_QM_DIR)));
            QVERIFY(translator.translate("QObject", "Wavelength") != QLatin1String("Wavelength"));
        }
        qApp->installTranslator(&translator);
        TestDeviceRoot root;
        QVERIFY(root.installReader());
        FitCheck fits;
        fits.lang = lang;
        QWidget screen;
        screen.setFixedSize(800, 480);
        COpmMainPage* main = new COpmMainPage(&screen);
        main->setGeometry(141, 61, 658, 398);
        screen.show();
        NerioOpm* page = P::setupTab(main);
        // The power meter in each unit, then the loss meter with its limits in dB/km (with length).
        const P::Button units[] = { P::MW, P::UW, P::DBm };
        for (int i = 0; i < 3; ++i) {
            P::click(page, units[i]);
            fits.checkHeld(page);
        }
        P::choose(page, P::Mode, 1);
        P::click(page, P::Limits);
        P::choose(page, P::LossUnit, 1);
        fits.checkHeld(page);
        P::click(page, P::Reference);
        QVERIFY(P::dialog(page));
        fits.check(P::dialog(page));
        P::click(page, P::Cancel);

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
        // Two input errors, the full store's warning and the keypad of F1.
        P::enter(page, P::Length, QLatin1String("0"));
        P::enter(page, P::Min, QLatin1String("20"));
        CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
        Result reading = {};
        while (store->getResultItemCount() < CBrovaOpmDataEngine::kMaxResults)
            store->addResultItem(reading);
        P::click(page, P::Save);
        store->clearAllresultItem();
        QTest::keyClick(main, Qt::Key_F1);
        QVERIFY2(closer.count() == 4, qPrintable(closer.boxes().join(QLatin1String(" | "))));

        main->findChild<CTabWidget*>()->setCurrentIndex(1);
        fits.check(main);
        qApp->removeTranslator(&translator);
        QVERIFY2(fits.failures.isEmpty(), qPrintable(fits.failures.join(QLatin1String("\n"))));
    }
};

QTEST_MAIN(TestFit)
#include "tst_fit.moc"
