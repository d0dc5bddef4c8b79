#pragma once

#include "host/fakelayer.h"
#include "layer/layertest.h"

#include <QWidget>

/// What the tests of the information pages share.
namespace PageTest {

/// A layer of another class than the pages know.
class ForeignLayer : public FakeLayer
{
public:
    ForeignLayer()
        : FakeLayer(QRectF(0, 0, 10, -10))
    {
    }
};

/// A page of one of the classes.
std::unique_ptr<QWidget> makePage(const QString &className);
extern const QStringList kPageClasses;
void setLayer(QWidget &page, Korvane::Map::Layer *layer);

/// Text of the line edit, plain text edit or combo box \a name of \a page; the test fails where there is none.
QString textOf(const QWidget &page, const char *name);
/// Texts of all edits of \a page that have one, as "name=text" in the order of their names.
QStringList filledFields(const QWidget &page);
/// What the combo box \a name offers.
QStringList itemsOf(const QWidget &page, const char *name);

/// What is on the clipboard after a click on the page's button; kUntouched when the page put nothing there.
QString copiedText(QWidget &page);
extern const QString kUntouched;

/// \a lines, each with a carriage return behind it.
QString withReturns(const QStringList &lines);

} // namespace PageTest
