#include "opm.h"

NerioOpm::NerioOpm(QWidget* parent) : CWidget(parent) { }
NerioOpm::~NerioOpm() { }
bool NerioOpm::initialize() { return false; }
void NerioOpm::translate() { }
void NerioOpm::clientQuit() { }
void NerioOpm::onParmLineEditChanged() { }
void NerioOpm::onComboxChanged(int) { }
void NerioOpm::onParmComboxChanged(int) { }
void NerioOpm::onComboxWavelenChanged(int) { }
void NerioOpm::onBtnChanged() { }
void NerioOpm::onReferBtnChanged() { }
void NerioOpm::onStateChanged() { }
void NerioOpm::handleDialog() { }
void NerioOpm::onTimer() { }
void NerioOpm::showEvent(QShowEvent*) { }
void NerioOpm::hideEvent(QHideEvent*) { }
