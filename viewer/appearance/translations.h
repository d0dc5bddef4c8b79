#pragma once

#include <QList>
#include <QSharedPointer>
#include <QTranslator>

namespace Viewer {

/// The texts of the viewer, of the host library and of the toolkit (the buttons of its dialogs) in the language of
/// QLocale(), for as long as this lives. Where there are none in that language they stay English. To be made after the
/// application, and before the windows: texts that are there stay.
class Translations
{
public:
    Translations();
    Q_DISABLE_COPY(Translations)

private:
    QTranslator toolkit;
    QList<QSharedPointer<QTranslator>> own;
};

} // namespace Viewer
