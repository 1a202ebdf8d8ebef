#include "cmessagebox.h"

#include "cpushbutton.h"
#include "cwidgetstyle.h"

#include <QAbstractButton>
#include <QGridLayout>
#include <QLabel>
#include <QVector>

CMessageBox::CMessageBox(QWidget* parent)
    : QMessageBox(parent), m_textColor(CWidgetStyle::getColor(CWidgetStyle::TextOnDialog)),
      m_titleBackground(CWidgetStyle::getColor(CWidgetStyle::PanelBackground)), m_title(0)
{
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    m_title = new QLabel(this);
    m_title->setObjectName(QString::fromLatin1("title"));
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setMinimumHeight(30);
    placeTitle();
    applyStyle();
}

int CMessageBox::information(QWidget* parent, const QString& title, const QString& text,
                             StandardButtons buttons, StandardButton defaultButton)
{
    if (parent && parent != parentWidget())
        setParent(parent, windowFlags());
    setWindowTitle(title);
    m_title->setText(title);
    setText(text);
    setIcon(NoIcon);
    placeTitle();
    setStandardButtons(buttons);
    if (defaultButton != NoButton)
        setDefaultButton(defaultButton);
    for (QMap<int, QString>::const_iterator it = m_buttonTexts.constBegin();
         it != m_buttonTexts.constEnd(); ++it) {
        if (QAbstractButton* b = button(StandardButton(it.key())))
            b->setText(it.value());
    }
    setWindowModality(Qt::ApplicationModal);
    return exec();
}

void CMessageBox::setButtonText(int button, const QString& text)
{
    m_buttonTexts.insert(button, text);
    if (QAbstractButton* b = QMessageBox::button(StandardButton(button)))
        b->setText(text);
}

void CMessageBox::setTextColor(const QColor& color)
{
    m_textColor = color;
    applyStyle();
}

void CMessageBox::setTextAlignment(Qt::Alignment alignment)
{
    if (QLabel* label = findChild<QLabel*>(QString::fromLatin1("qt_msgbox_label")))
        label->setAlignment(alignment);
}

void CMessageBox::setTitleBackgroundColor(const QColor& color)
{
    m_titleBackground = color;
    applyStyle();
}

QString CMessageBox::title() const { return windowTitle(); }

void CMessageBox::showEvent(QShowEvent* event)
{
    placeTitle();
    QMessageBox::showEvent(event);
}

// QMessageBox builds its grid anew whenever the icon or the informative text changes, from
// row 0 and without the title: move everything one row down and put the title on top.
namespace {

// Where an item sits in a grid layout.
struct Cell
{
    QLayoutItem* item;
    int row, column, rowSpan, columnSpan;
};

} // namespace

void CMessageBox::placeTitle()
{
    QGridLayout* grid = qobject_cast<QGridLayout*>(layout());
    if (!grid || grid->indexOf(m_title) >= 0)
        return;
    QVector<Cell> cells;
    for (int i = 0; i < grid->count(); ++i) {
        Cell cell = { grid->itemAt(i), 0, 0, 1, 1 };
        grid->getItemPosition(i, &cell.row, &cell.column, &cell.rowSpan, &cell.columnSpan);
        cells << cell;
    }
    while (grid->count() > 0)
        grid->takeAt(0);
    for (int i = 0; i < cells.size(); ++i) {
        const Cell& cell = cells.at(i);
        grid->addItem(cell.item, cell.row + 1, cell.column, cell.rowSpan, cell.columnSpan,
                      cell.item->alignment());
    }
    grid->addWidget(m_title, 0, 0, 1, qMax(1, grid->columnCount()));
}

void CMessageBox::applyStyle()
{
    const QColor green = CWidgetStyle::getColor(CWidgetStyle::ButtonGreen);
    setStyleSheet(
        QString::fromLatin1("CMessageBox { background-color: %1; border: 3px solid %2; }"
                            "QLabel#qt_msgbox_label { color: %3; font-size: 15px; }"
                            "QLabel#title { background-color: %2; color: white; font-weight: bold; "
                            "font-size: 16px; }"
                            "QPushButton { color: white; background-color: %4; border-radius: 4px;"
                            " min-width: 80px; min-height: 30px; font-weight: bold; }")
            .arg(CWidgetStyle::getColor(CWidgetStyle::DialogBackground).name(),
                 m_titleBackground.name(), m_textColor.name(), green.name()));
}
