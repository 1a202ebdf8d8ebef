#ifndef OPMPAGEPROBE_H
#define OPMPAGEPROBE_H

// The one way the suites see inside the pages: typed accessors to their controls and state (the
// probe is the pages' friend), the steps an operator or the reader takes, and the fixture every
// page test builds in.

#include "ccheckbox.h"
#include "ccombobox.h"
#include "cdialog.h"
#include "clabel.h"
#include "clineedit.h"
#include "cpushbutton.h"
#include "offsetBar.h"
#include "opmMain.h"
#include "opmShowResult.h"
#include "testSupport.h"

#include <QtTest>

#include <cstring>

// A text field, read no further than its width, its bytes as Latin-1.
template <size_t N>
inline QString fieldText(const char (&field)[N])
{
    return QString::fromLatin1(field, int(strnlen(field, N)));
}

struct OpmPageProbe
{
    enum Button { Hold, Save, Reference, DBm, MW, UW, Limits, Set, Cancel };
    enum Selector { Wave, Mode, LossUnit };
    enum Field { Min, Max, Length };

    // The operator's steps; only these signals reach the page's slots. type() sets a field's text
    // without its signal, as a restored setup does. escape() ends the reference dialog without
    // its buttons.
    static QAbstractButton* button(NerioOpm* p, Button b);
    static CComboBox* selector(NerioOpm* p, Selector s);
    static CLineEdit* field(NerioOpm* p, Field f);
    static void click(NerioOpm* p, Button b);
    static void choose(NerioOpm* p, Selector s, int index);
    static void enter(NerioOpm* p, Field f, const QString& text);
    static void type(NerioOpm* p, Field f, const QString& text) { field(p, f)->setText(text); }
    static void escape(NerioOpm* p);
    // One poll of the reader, as the page's timer makes it.
    static void tick(NerioOpm* p);

    // What the Setup tab shows. Colours by name: red, green, black, grey, white.
    static QString reading(NerioOpm* p) { return p->m_pOpmCurValue->text(); }
    static QString readingColour(NerioOpm* p) { return colour(p->m_pOpmCurValue->textColor()); }
    static QString title(NerioOpm* p) { return p->m_pOpmInfoTitle->text(); }
    static QString summary(NerioOpm* p) { return p->m_pSummary->text(); }
    static QString unitButton(NerioOpm* p) { return p->m_pdBm->text(); }
    static QString caption(NerioOpm* p) { return p->m_pLimits->text(); }
    static QString refLabel(NerioOpm* p) { return p->m_pOpmRefLabel->text(); }
    // The open reference dialog's text of the reading and of the stored reference; the dialogs
    // open (a closed one is deleted).
    static QString dialogText(NerioOpm* p);
    static CDialog* dialog(NerioOpm* p) { return p->m_pReferenceDialog; }
    static int openDialogs(NerioOpm* p) { return p->findChildren<CDialog*>().size(); }
    // "power" or "loss" when the controls show exactly that mode's layout.
    static QString layout(NerioOpm* p);
    // The row of limits: the check box; Minimum, Maximum, the loss unit and Length by their texts,
    // each in brackets while disabled; the Length caption's colour: "on -60 10 dB/km 2.5 white".
    static QString limitsRow(NerioOpm* p);
    static OffsetBar* bar(NerioOpm* p) { return p->m_pOffsetBarResult; }
    static QString barRange(NerioOpm* p) { return bar(p)->minLabel() + ".." + bar(p)->maxLabel(); }
    static QTimer* timer(NerioOpm* p) { return p->m_pTimer; }

    // What the page holds.
    static const Result& result(NerioOpm* p) { return p->m_result; }
    static const OpmShareRecord& capture(NerioOpm* p) { return p->m_sOpmRef; }
    static QString references(NerioOpm* p); // the five, blank between
    static int waveLength(NerioOpm* p) { return p->m_eWaveLength; }
    static int lossUnit(NerioOpm* p) { return p->m_eLossLengthType; }
    static OpmShareRecord* record(NerioOpm* p) { return p->m_addr; }

    // Whether every text field the page keeps ends inside its width, and every text field of a
    // saved reading. A copy that runs past a field stays inside its object, where the address
    // sanitizer cannot see it; these can. The fuzz harnesses check them after every input.
    static bool fieldsEnded(NerioOpm* p);
    static bool fieldsEnded(const Result& r);

    // The Result tab's lines and its Clear; the main page's Setup tab.
    static QStringList lines(COpmShowResultPage* p);
    static CPushButton* clear(COpmShowResultPage* p) { return p->m_pClear; }
    static NerioOpm* setupTab(COpmMainPage* p) { return p->m_pTableOpmSetup; }

    static QString colour(const QColor& c);
};

// The order every page test builds in: a closer for any box, its own device root, the reader's
// side, then the page (with an empty result store and, when given, a settings file of these
// "key=value" lines).
struct PageFixture
{
    explicit PageFixture(const QByteArray& setup = QByteArray(), bool build = true);
    ~PageFixture() { buildPage(false); }
    // A new page on the same root, as after a restart.
    void buildPage(bool rebuild = true);
    // The reader shows a reading, then the page polls it once.
    void show(const char* wavelength, const char* value, const char* unit = "dBm", int flag = 1);
    static int stored() { return CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(); }

    ModalBoxCloser closer;
    TestDeviceRoot root;
    RecordWriter reader;
    NerioOpm* page;
};

#endif // OPMPAGEPROBE_H
