#ifndef TOOLKITVALUES_H
#define TOOLKITVALUES_H

// The numbers the plug-in hands to the set's toolkit, named for what the plug-in uses them
// for. Their meaning lies in the toolkit; the plug-in passes them as they are, so that it builds
// against the set's own headers as well as against the stand-ins.
namespace OpmToolkit {

// Colour codes of CWidgetStyle::getColor.
const int kPageColour = 0; // the pages, their caption labels and the tab container
const int kDialogColour = 1; // the reference dialog and its buttons

// Region codes of CWidgetStyle::getScreenRegion: a tab is as wide as the screen less the side
// panel, and as high as the keypad area is wide.
const int kScreenRegion = 0;
const int kSidePanelRegion = 3;
const int kTabHeightRegion = 5;

// Keypad types of CLineEdit::setSKPType and CKeyPadFactory::accessKeyPad.
const int kNumberKeyPad = 3; // the page's limit and length fields
const int kTextKeyPad = 5; // the report's file name
// The two integers of the report's keypad call.
const int kTextKeyPadMin = 0;
const int kTextKeyPadMax = 100;

// CLabel::WrapMode of the reference dialog's long texts.
const int kWrapWords = 1;

} // namespace OpmToolkit

#endif // TOOLKITVALUES_H
