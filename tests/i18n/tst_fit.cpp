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

// A text's width on one line in a font.
int width(const QFont& font, const QString& text)
{
    return QFontMetrics(font).boundingRect(QRect(0, 0, kUnbounded, kUnbounded), 0, text).width();
}

// needed and room in pixels, along the one direction that matters for the widget.
void fit(const QString& text, int needed, int room, const char* what)
{
    const QString found = QString("\"%1\" in %2: %3 px, room %4 px").arg(text, what);
    QVERIFY2(needed <= room || text.trimmed().isEmpty(), qPrintable(found.arg(needed).arg(room)));
}

void fitLabel(QLabel* l)
{
    // A label that shrinks its font to fit is measured at the toolkit's text size.
    QFont font = l->font();
    CLabel* own = qobject_cast<CLabel*>(l);
    if (own && own->autoStyleEnabled())
        font.setPixelSize(CWidgetStyle::kTextPixelSize);
    const int m = l->margin();
    const QRect room = l->contentsRect().adjusted(m, m, -m, -m);
    const QRect need = QFontMetrics(font).boundingRect(
        QRect(0, 0, l->wordWrap() ? room.width() : kUnbounded, kUnbounded),
        Qt::TextExpandTabs | (l->wordWrap() ? Qt::TextWordWrap : 0), l->text());
    fit(l->text(), need.width(), room.width(), "label width");
    if (l->wordWrap())
        fit(l->text(), need.height(), room.height(), "wrapped label height");
}

// Every visible text of root and its children.
void check(QWidget* root)
{
    QCoreApplication::processEvents();
    foreach (QWidget* w, root->findChildren<QWidget*>() << root) {
        if (!w->isVisible())
            continue;
        if (QLabel* l = qobject_cast<QLabel*>(w)) {
            fitLabel(l);
        } else if (QAbstractButton* b = qobject_cast<QAbstractButton*>(w)) {
            QStyleOptionButton option;
            option.initFrom(b);
            option.text = b->text();
            const bool box = qobject_cast<QCheckBox*>(b);
            const QRect room = b->style()->subElementRect(
                box ? QStyle::SE_CheckBoxContents : QStyle::SE_PushButtonContents, &option, b);
            fit(b->text(), width(b->font(), b->text()), room.width(), box ? "check box" : "button");
        } else if (QComboBox* c = qobject_cast<QComboBox*>(w)) {
            QStyleOptionComboBox option;
            option.initFrom(c);
            const QRect room = c->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                          QStyle::SC_ComboBoxEditField, c);
            for (int i = 0; i < c->count(); ++i)
                fit(c->itemText(i), width(c->font(), c->itemText(i)), room.width(), "selector");
        } else if (QTabBar* t = qobject_cast<QTabBar*>(w)) {
            QFont bold = t->font(); // the toolkit's tabs: bold, 12 px padding each side, 2 px apart
            bold.setBold(true);
            for (int i = 0; i < t->count(); ++i)
                fit(t->tabText(i), width(bold, t->tabText(i)), t->tabRect(i).width() - 26, "tab");
        }
    }
}

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
        if (lang != "en") {
            QVERIFY(translator.load("opm_" + lang, OPM_QM_DIR));
            QVERIFY(translator.translate("QObject", "Wavelength") != QString("Wavelength"));
        }
        qApp->installTranslator(&translator);
        TestDeviceRoot root;
        QVERIFY(root.installReader());
        QWidget screen;
        screen.setFixedSize(800, 480);
        COpmMainPage* main = new COpmMainPage(&screen);
        main->setGeometry(141, 61, 658, 398);
        screen.show();
        NerioOpm* page = P::setupTab(main);
        // On hold (the longer titles, which a tick shows): the power meter in each unit, then the
        // loss meter with its limits in dB/km (with a length).
        P::click(page, P::Hold);
        const P::Button units[] = { P::MW, P::UW, P::DBm };
        for (int i = 0; i < 3; ++i) {
            P::click(page, units[i]);
            P::tick(page);
            check(page);
        }
        P::choose(page, P::Mode, 1);
        P::click(page, P::Limits);
        P::choose(page, P::LossUnit, 1);
        P::tick(page);
        check(page);
        P::click(page, P::Reference);
        QVERIFY(P::dialog(page));
        check(P::dialog(page));
        P::click(page, P::Cancel);

        // From here on every box is modal. Of the keypad the title is ours, the keys the toolkit's.
        ModalBoxCloser closer;
        closer.handler = [](QWidget* box) {
            QLabel* title = box->findChild<QLabel*>("title");
            if (qobject_cast<QMessageBox*>(box) || !title)
                check(box);
            else
                fitLabel(title);
            return false;
        };
        // Two input errors, the full store's warning and the keypad of F1.
        P::enter(page, P::Length, "0");
        P::enter(page, P::Min, "20");
        Result reading = {};
        while (PageFixture::stored() < CBrovaOpmDataEngine::kMaxResults)
            CBrovaOpmDataEngine::getSingleInstance()->addResultItem(reading);
        P::click(page, P::Save);
        QTest::keyClick(main, Qt::Key_F1);
        QVERIFY2(closer.count() == 4, qPrintable(closer.boxes().join(" | ")));

        main->findChild<CTabWidget*>()->setCurrentIndex(1);
        check(main);
    }
};

QTEST_MAIN(TestFit)
#include "tst_fit.moc"
