#include "ckeypadfactory.h"

#include "cpushbutton.h"
#include "cwidgetstyle.h"

#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QVBoxLayout>

namespace {

const char* const kNumericKeys[] = { "7", "8", "9", "4", "5", "6", "1", "2", "3", "-", "0", "." };
const char* const kTextKeys[] = { "1", "2", "3", "4", "5", "6", "7", "8", "9", "0",
                                  "A", "B", "C", "D", "E", "F", "G", "H", "I", "J",
                                  "K", "L", "M", "N", "O", "P", "Q", "R", "S", "T",
                                  "U", "V", "W", "X", "Y", "Z", "-", "_", ".", " " };

// The text a key button types.
const char kKeyProperty[] = "keyText";

class KeyPadDialog : public QDialog
{
    Q_OBJECT
public:
    KeyPadDialog(const QString& title, const QString& text, int type, int min, int max,
                 QWidget* parent)
        : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), m_edit(0)
    {
        setObjectName(QString::fromLatin1("CKeyPad"));
        setModal(true);
        setWindowTitle(title);
        setStyleSheet(
            QString::fromLatin1("QDialog#CKeyPad { background-color: %1; border: 3px solid %2; }"
                                "QLabel { color: %3; font-weight: bold; }"
                                "QLineEdit { font-size: 18px; min-height: 30px; }")
                .arg(CWidgetStyle::getColor(CWidgetStyle::DialogBackground).name(),
                     CWidgetStyle::getColor(CWidgetStyle::ButtonGreen).name(),
                     CWidgetStyle::getColor(CWidgetStyle::TextOnDialog).name()));
        QVBoxLayout* layout = new QVBoxLayout(this);
        QLabel* caption = new QLabel(title, this);
        caption->setObjectName(QString::fromLatin1("title"));
        layout->addWidget(caption);
        if (type == CKeyPadFactory::KeyPadNumeric && min < max) {
            layout->addWidget(
                new QLabel(QString::fromLatin1("Range: %1 ~ %2").arg(min).arg(max), this));
        }
        m_edit = new QLineEdit(text, this);
        if (type == CKeyPadFactory::KeyPadText && max > 0)
            m_edit->setMaxLength(max);
        m_edit->selectAll();
        layout->addWidget(m_edit);
        layout->addLayout(buildKeys(type));
        layout->addLayout(buildActions());
        m_edit->setFocus();
    }

    QString entry() const { return m_edit->text(); }

private:
    QGridLayout* buildKeys(int type)
    {
        QGridLayout* grid = new QGridLayout;
        const bool numeric = type != CKeyPadFactory::KeyPadText;
        const int columns = numeric ? 3 : 10;
        const int count = numeric ? int(sizeof kNumericKeys / sizeof kNumericKeys[0])
                                  : int(sizeof kTextKeys / sizeof kTextKeys[0]);
        for (int i = 0; i < count; ++i) {
            const QString key = QString::fromLatin1(numeric ? kNumericKeys[i] : kTextKeys[i]);
            CPushButton* button =
                new CPushButton(key == QLatin1String(" ") ? tr("Space") : key, this);
            button->setStyle(CPushButton::StyleGray, true);
            button->setFocusPolicy(Qt::NoFocus);
            button->setProperty(kKeyProperty, key);
            connect(button, SIGNAL(clicked()), this, SLOT(insertKey()));
            grid->addWidget(button, i / columns, i % columns);
        }
        return grid;
    }

    QHBoxLayout* buildActions()
    {
        QHBoxLayout* row = new QHBoxLayout;
        addAction(row, tr("Back"), CPushButton::StyleOrange, this, SLOT(backspace()));
        addAction(row, tr("Clear"), CPushButton::StyleOrange, m_edit, SLOT(clear()));
        addAction(row, tr("Cancel"), CPushButton::StyleRed, this, SLOT(reject()));
        QPushButton* ok = addAction(row, tr("OK"), CPushButton::StyleGreen, this, SLOT(accept()));
        ok->setDefault(true);
        return row;
    }

    QPushButton* addAction(QHBoxLayout* row, const QString& caption, CPushButton::ButtonStyle style,
                           QObject* receiver, const char* slot)
    {
        CPushButton* button = new CPushButton(caption, this);
        button->setObjectName(caption);
        button->setStyle(style, false);
        button->setFocusPolicy(Qt::NoFocus);
        connect(button, SIGNAL(clicked()), receiver, slot);
        row->addWidget(button);
        return button;
    }

private slots:
    void insertKey() { m_edit->insert(sender()->property(kKeyProperty).toString()); }
    void backspace() { m_edit->backspace(); }

private:
    QLineEdit* m_edit;
};

} // namespace

bool CKeyPadFactory::runKeyPad(const QString& title, const QString& text, int type, int min,
                               int max, QWidget* parent, QString* entry)
{
    // On the heap: whoever owns parent may destroy it, and the keypad with it, inside the
    // keypad's loop. That counts as a cancel.
    QPointer<KeyPadDialog> keypad = new KeyPadDialog(title, text, type, min, max, parent);
    keypad->adjustSize();
    CWidgetStyle::centerWidget(keypad);
    const bool accepted = keypad->exec() == QDialog::Accepted && keypad;
    if (entry)
        *entry = accepted ? keypad->entry() : text;
    delete keypad.data();
    return accepted;
}

QString CKeyPadFactory::accessKeyPad(const QString& title, const QString& text, int type, int min,
                                     int max, QWidget* parent)
{
    QString entry;
    runKeyPad(title, text, type, min, max, parent, &entry);
    return entry;
}

#include "ckeypadfactory.moc"
