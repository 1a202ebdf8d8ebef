#include "offsetBar.h"

OffsetBar::OffsetBar(QWidget* parent) : CWidget(parent) { }
OffsetBar::~OffsetBar() { }
void OffsetBar::setRangedOffset(double, double, double) { }
void OffsetBar::setRangedOffset(int, int, int) { }
void OffsetBar::clear() { }
int OffsetBar::markerX() const { return -1; }
void OffsetBar::paintEvent(QPaintEvent* event) { CWidget::paintEvent(event); }
